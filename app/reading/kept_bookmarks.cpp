#include "app/reading/kept_bookmarks.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "app/reading/kept_fields.h"
#include "foundation/files/private_file.h"
#include "foundation/first_words.h"
#include "foundation/whole_characters.h"

namespace {

constexpr const char* kBookmarksFile = "bookmarks";
constexpr std::size_t kBookmarkFields = 6;
constexpr std::string_view kOfWindow = "window";
constexpr std::size_t kTellingBytes = 12;  // a shorter sentence may stand anywhere

bool IsSamePlace(const Bookmark& one, const Bookmark& other) {
    return one.at.key == other.at.key && one.at.place == other.at.place;
}

}  // namespace

std::string KeyOfWindowText(std::string_view text) {
    return std::string(kOfWindow) + " " + KeyOfText(text);
}

std::string Bookmark::Title() const {
    return name.empty() ? BeginningOf(at.sentence) : name;
}

KeptBookmarks::KeptBookmarks() {
    const std::vector<std::string> fields = ReadKeptFields(kBookmarksFile);
    for (std::size_t at = 0; at + kBookmarkFields <= fields.size() && !IsFull();
         at += kBookmarkFields)
        bookmarks_.push_back({.at = {.key = fields[at],
                                     .digest = fields[at + 1],
                                     .size = NumberOfField(fields[at + 2]),
                                     .place = NumberOfField(fields[at + 3]),
                                     .sentence = fields[at + 4]},
                              .name = fields[at + 5]});
}

std::vector<Bookmark> KeptBookmarks::Of(const std::string& key) const {
    std::vector<Bookmark> found;
    std::ranges::copy_if(bookmarks_, std::back_inserter(found),
                         [&](const Bookmark& each) { return each.at.key == key; });
    std::ranges::sort(found, {}, [](const Bookmark& each) { return each.at.place; });
    return found;
}

int KeptBookmarks::Set(Bookmark bookmark, std::string* gone) {
    std::erase_if(bookmarks_, [&](const Bookmark& each) { return IsSamePlace(each, bookmark); });
    // Nobody can come back to a text that was in no file and is gone.
    const auto ofGoneText = std::ranges::find_if(bookmarks_, [&](const Bookmark& each) {
        return each.at.key.starts_with(kOfWindow) && each.at.key != bookmark.at.key;
    });
    if (IsFull() && ofGoneText != bookmarks_.end()) {
        if (gone != nullptr)
            *gone = ofGoneText->Title();
        bookmarks_.erase(ofGoneText);
    }
    if (IsFull())
        return ENOBUFS;
    bookmark.at.sentence.resize(
        WholeCharacters(bookmark.at.sentence, KeptPlaces::kMostSentence).size());
    bookmark.name.resize(WholeCharacters(bookmark.name, kMostName).size());
    bookmarks_.push_back(std::move(bookmark));
    return Write();
}

int KeptBookmarks::Remove(const Bookmark& bookmark) {
    std::erase_if(bookmarks_, [&](const Bookmark& each) { return IsSamePlace(each, bookmark); });
    return Write();
}

int KeptBookmarks::TakeAlong(const std::string& key, std::string_view text) {
    if (!key.starts_with(kOfWindow))
        return 0;
    const std::string digest = KeyOfText(text);
    bool isChanged = false;
    for (Bookmark& each : bookmarks_) {
        if (!each.at.key.starts_with(kOfWindow) || each.at.key == key ||
            each.at.sentence.size() < kTellingBytes)
            continue;
        const auto place = FindPlace(each.at, text, digest);
        if (!place)
            continue;
        each.at.key = key;
        each.at.digest = digest;
        each.at.size = text.size();
        each.at.place = *place;
        isChanged = true;
    }
    return isChanged ? Write() : 0;
}

int KeptBookmarks::Write() const {
    std::vector<std::string> fields;
    for (const Bookmark& each : bookmarks_) {
        const KeptPlace& at = each.at;
        fields.insert(fields.end(), {at.key, at.digest, std::to_string(at.size),
                                     std::to_string(at.place), at.sentence, each.name});
    }
    return WriteKeptFields(kBookmarksFile, fields);
}

void ForgetKeptBookmarks() {
    RemovePrivateFile(kBookmarksFile);
}
