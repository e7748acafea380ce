// How far each text was read, from one run to the next.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Of one text, which is told by its file or by itself. Places are bytes.
struct KeptPlace {
    std::string key;       // KeyOfFile or KeyOfText
    std::string digest;    // KeyOfText of the text that was read
    std::size_t size = 0;  // of that text
    std::size_t place = 0;
    std::string sentence;  // its beginning, by which the place is found when the text has changed

    int Percent() const;
};

// Neither names nor texts stand in the store. A path, or a page's address.
std::string KeyOfFile(const std::string& path);
std::string KeyOfText(std::string_view text);

// Where the sentence stands that was heard last: the same place in the same text, in a changed one
// the nearest sentence with the same words; nothing when there is none.
std::optional<std::size_t> FindPlace(const KeptPlace& kept, std::string_view text);
// For who looks for several: key is KeyOfText of the text.
std::optional<std::size_t> FindPlace(const KeptPlace& kept, std::string_view text,
                                     const std::string& key);

// The user's store of the newest ones, written whole at each change. Once its file is gone it holds
// nothing: its user has had it forgotten. GUI thread.
class KeptPlaces {
public:
    static constexpr std::size_t kMost = 200;
    static constexpr std::size_t kMostSentence = 80;  // bytes that are kept of one

    KeptPlaces();
    std::optional<KeptPlace> Find(const std::string& key) const;
    int Keep(KeptPlace place);           // in place of one with the same key; 0 or the errno
    int Forget(const std::string& key);  // likewise

private:
    bool IsForgotten() const;
    int Write();

    std::vector<KeptPlace> places_;  // newest first
    bool isThere_ = false;           // the file, as far as this object knows
};

// What was kept is gone from the disk.
void ForgetKeptPlaces();
