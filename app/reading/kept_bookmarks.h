// Places of texts that their reader has marked, from one run to the next.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "app/reading/kept_places.h"

struct Bookmark {
    KeptPlace at;
    std::string name = {};  // the user's own; empty: called by its sentence

    std::string Title() const;
};

// Of a text that is in no file, and changes with every edit.
std::string KeyOfWindowText(std::string_view text);

// The user's store of them, written whole at each change. Each document has one at a place. GUI
// thread.
class KeptBookmarks {
public:
    // Of all documents. Then another takes the place of the oldest of a text in no file, or else is
    // not taken.
    static constexpr std::size_t kMost = 1000;
    static constexpr std::size_t kMostName = 200;  // bytes that are kept of one

    KeptBookmarks();                                         // as they are now
    std::vector<Bookmark> Of(const std::string& key) const;  // in the order of their places
    bool IsFull() const { return bookmarks_.size() >= kMost; }
    // In place of the one that stands there, if any. One of a text that is gone makes room where
    // there is none: *gone is its title. 0, ENOBUFS when there are too many, or the errno.
    int Set(Bookmark bookmark, std::string* gone = nullptr);
    int Remove(const Bookmark& bookmark);  // likewise
    // If this is a text in no file, it gets those set in one whose sentence stands in it: an edit
    // makes another text of it. 0 or the errno.
    int TakeAlong(const std::string& key, std::string_view text);

private:
    int Write() const;

    std::vector<Bookmark> bookmarks_;
};

// What was kept is gone from the disk.
void ForgetKeptBookmarks();
