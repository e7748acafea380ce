#include "books/unfinished_book.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "books/book_key.h"
#include "books/book_work.h"
#include "foundation/files/file_io.h"
#include "speech/pronunciations.h"
#include "speech/voice_table.h"

namespace {

namespace fs = std::filesystem;

std::size_t FinishedPieces(const std::string& folder) {
    std::size_t pieces = 0;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder, error)) {
        const fs::path ending = entry.path().extension();
        pieces += ending == ".part" || ending == ".made" ? 1 : 0;
    }
    return pieces;
}

// What a user knows it by.
std::string DifferenceOf(const BookOrder& begun, const BookOrder& now) {
    std::string words;
    const auto add = [&words](bool differs, const std::string& what) {
        if (differs)
            words += (words.empty() ? "" : ", ") + what;
    };
    add(begun.voice != now.voice, "the voice " + VoiceAt(begun.voice).title);
    const int speed = begun.rules.SpeedOf(begun.voice);
    add(speed != now.rules.SpeedOf(now.voice), "a speed of " + std::to_string(speed) + " %");
    add(begun.rules.MannerAt(begun.voice) != now.rules.MannerAt(now.voice),
        "another pitch or volume");
    add(begun.type != now.type || begun.isReadAlong != now.isReadAlong, "another format");
    add(begun.kilobits != now.kilobits, "another quality");
    const auto seconds = static_cast<int>(begun.secondsBetween);
    add(begun.secondsBetween != now.secondsBetween,
        std::to_string(seconds) + " s of silence after chapters");
    add(begun.evensLoudness != now.evensLoudness,
        begun.evensLoudness ? "even loudness" : "the voice's own loudness");
    add(begun.subtitles != now.subtitles, begun.subtitles ? "subtitles" : "no subtitles");
    add(words.empty(), "other rules of speaking");
    return words;
}

}  // namespace

std::optional<UnfinishedBook> FindUnfinished(const BookOrder& order) {
    const std::string folder = WorkFolderFor(order.target);
    UnfinishedBook book;
    book.pieces = FinishedPieces(folder);
    const std::string found = book.pieces > 0 ? ContentOf(folder + "key") : "";
    if (found.empty())
        return std::nullopt;
    BookOrder wanted = order;
    if (wanted.rules.saysDifferently && wanted.rules.pronunciations == nullptr)
        wanted.rules.pronunciations = CurrentPronunciations();
    if (found == BookKey(wanted))
        return std::nullopt;
    book.asBegun = wanted;
    const bool isTaken = TakeBookKey(found, *book.asBegun);
    book.difference = isTaken ? DifferenceOf(*book.asBegun, wanted) : "another text or voice";
    if (!isTaken)
        book.asBegun.reset();
    return book;
}

bool MoveUnfinished(const std::string& from, const std::string& target) {
    if (from == target)
        return true;
    const bool isFolder = from.back() == '/';
    const std::string work = WorkFolderFor(from);
    const std::string old = isFolder ? from : work;
    const std::string fresh = isFolder ? target : WorkFolderFor(target);
    const UniqueFd key = OpenRegularFile((work + "key").c_str(), O_RDWR | O_NOFOLLOW);
    if (!key.IsOpen())
        return errno == ENOENT || errno == ENOTDIR;  // there is none
    // What a folder held before is the user's; and another program may be at work on the book
    // (which a file system without locks cannot say).
    if (isFolder != (target.back() == '/') || ::access((work + "may-replace").c_str(), F_OK) == 0 ||
        (::flock(key.Get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK))
        return false;
    const auto bare = [](const std::string& path) { return path.substr(0, path.size() - 1); };
    // A link or a file there is left alone, too.
    std::error_code error;
    if (fs::exists(fs::symlink_status(bare(fresh), error)))
        return false;
    fs::rename(bare(old), bare(fresh), error);  // not to another disk
    return !error;
}
