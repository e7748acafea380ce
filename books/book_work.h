// The hidden folder in which a book is made: what is finished in it counts for the next run of the
// same order, and for no other.
#pragma once

#include <set>
#include <string>

#include "books/spoken_section.h"
#include "foundation/files/unique_fd.h"

struct BookOrder;
class WholeFile;

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

    // Of a book with a file for each chapter: that the file with that path is one of this run's.
    std::string NoteMade(std::size_t chapter, const std::string& path) const;
    bool IsMade(std::size_t chapter) const;
    // That the file with that path is the book, about to take its name.
    std::string NoteDone(const std::string& path) const;
    bool HasTags(std::size_t chapter) const;  // as the order has them

private:
    std::string OpenFolder();
    std::string ProblemOfFiles();
    std::string ProblemOfChapters() const;
    void RemoveIfDone();
    std::string Claim(const std::string& found);
    std::set<std::string> Made() const;
    bool HoldsOthers(const std::set<std::string>& made) const;

    const BookOrder& order_;
    std::string folder_;  // with its slash
    UniqueFd lock_;
};

// That folder of a target, with its slash.
std::string WorkFolderFor(const std::string& target);

// Why that cannot be, or empty.
std::string WriteInto(const WholeFile& file, const std::string& content);

// Of a small file of the folder; empty when there is none.
std::string ContentOf(const std::string& path);
