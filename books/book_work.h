// The hidden folder in which a book is made: what is finished in it counts for the next run of the
// same order, and for no other.
#pragma once

#include <string>

#include "books/spoken_section.h"
#include "foundation/files/unique_fd.h"

struct BookOrder;

class BookWork {
public:
    explicit BookWork(const BookOrder& order);

    // Makes the folder, or finds that of an earlier run. Why that cannot be, or empty: another
    // program is at work on it, or what stands at the target is another book's.
    std::string Open();
    void Remove();

    std::string Path(std::size_t index, const char* ending) const;  // of a section's file
    SpokenSection Spoken(std::size_t index) const;
    // Whole or not at all, wherever it is. Why that cannot be, or empty.
    std::string Write(const std::string& path, const std::string& content) const;

private:
    std::string KeyOf() const;
    std::string Claim(const std::string& found);

    const BookOrder& order_;
    std::string folder_;  // with its slash
    UniqueFd lock_;
};

// Of a small file of the folder; empty when there is none.
std::string ContentOf(const std::string& path);
