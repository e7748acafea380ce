// Places of texts that their reader has marked, from one run to the next.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "app/reading/kept_places.h"

struct Bookmark {
    KeptPlace at;
    std::string name = {};  // the user's own; empty: called by its sentence

    std::string Title() const;
};

// The user's store of them, written whole at each change. Each document has one at a place. GUI
// thread.
class KeptBookmarks {
public:
    static constexpr std::size_t kMost = 1000;     // of all documents; no other is taken then
    static constexpr std::size_t kMostName = 200;  // bytes that are kept of one

    KeptBookmarks();                                         // as they are now
    std::vector<Bookmark> Of(const std::string& key) const;  // in the order of their places
    bool IsFull() const { return bookmarks_.size() >= kMost; }
    // In place of the one that stands there, if any, unless it is full; 0 or the errno.
    int Set(Bookmark bookmark);
    int Remove(const Bookmark& bookmark);  // likewise

private:
    int Write() const;

    std::vector<Bookmark> bookmarks_;
};

// What was kept is gone from the disk.
void ForgetKeptBookmarks();
