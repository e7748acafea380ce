#include "books/book_work.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <set>
#include <sstream>
#include <vector>

#include "books/book_key.h"
#include "books/book_order.h"
#include "books/subtitles.h"
#include "formats/whole_file.h"
#include "foundation/files/file_io.h"

namespace {

constexpr std::size_t kMostContent = 64U << 20;

// As this program calls what stands in its folder.
bool IsOwnName(const std::string& name) {
    const std::size_t begin = name.rfind('.', 0) == 0 ? 1 : 0;
    const std::size_t end = name.find_first_not_of("0123456789", begin);
    return end != std::string::npos && end >= begin + 5 && name[end] == '.';
}

// Which a file keeps under another name.
std::string FileNumber(const std::string& path) {
    struct stat info = {};
    return ::stat(path.c_str(), &info) == 0 ? std::to_string(info.st_ino) : "";
}

}  // namespace

std::string WorkFolderFor(const std::string& target) {
    if (target.back() == '/')
        return target + ".lectora-book/";
    const std::size_t name = target.rfind('/') + 1;
    return target.substr(0, name) + "." + target.substr(name, 200) + ".lectora-book/";
}

BookWork::BookWork(const BookOrder& order) : order_(order), folder_(WorkFolderFor(order.target)) {}

std::string BookWork::Path(std::size_t index, const char* ending) const {
    char name[64];
    std::snprintf(name, sizeof name, "%05zu.%s", index + 1, ending);
    return folder_ + name;
}

SpokenSection BookWork::Spoken(std::size_t index) const {
    return LoadSpoken(ContentOf(Path(index, "spoken")));
}

std::string WriteInto(const WholeFile& file, const std::string& content) {
    if (!file.Problem().empty())
        return file.Problem();
    errno = 0;
    std::FILE* const out = std::fopen(file.WritePath().c_str(), "wbe");
    const bool isWritten =
        out != nullptr && std::fwrite(content.data(), 1, content.size(), out) == content.size();
    const bool isClosed = out != nullptr && std::fclose(out) == 0;
    return isWritten && isClosed ? "" : std::strerror(errno);
}

std::string BookWork::Write(const std::string& path, const std::string& content) const {
    WholeFile file(path, WholeFile::Existing::kReplace, WholeFile::Unfinished::kLeave);
    std::string problem = WriteInto(file, content);
    if (problem.empty())
        problem = file.Commit();
    return problem.empty() ? "" : path + ": " + problem;
}

std::string BookWork::NoteMade(std::size_t chapter, const std::string& path) const {
    std::string names = path.substr(path.rfind('/') + 1) + "\n";
    if (order_.subtitles) {
        const std::string beside = SubtitlesPath(path, *order_.subtitles);
        names += beside.substr(beside.rfind('/') + 1) + "\n";
    }
    const std::string problem = Write(Path(chapter, "tags"), TagsKey(order_));
    return problem.empty() ? Write(Path(chapter, "made"), names) : problem;
}

bool BookWork::IsMade(std::size_t chapter) const {
    return ::access(Path(chapter, "made").c_str(), F_OK) == 0;
}

std::string BookWork::NoteDone(const std::string& path) const {
    return Write(folder_ + "done", FileNumber(path));
}

bool BookWork::HasTags(std::size_t chapter) const {
    return ContentOf(Path(chapter, "tags")) == TagsKey(order_);
}

// The names of what an unfinished run has put into the book's folder.
std::set<std::string> BookWork::Made() const {
    std::set<std::string> made;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder_, error)) {
        std::istringstream names(entry.path().extension() == ".made" ? ContentOf(entry.path())
                                                                     : "");
        for (std::string name; std::getline(names, name);)
            if (name.find('/') == std::string::npos)
                made.insert(name);
    }
    return made;
}

bool BookWork::HoldsOthers(const std::set<std::string>& made) const {
    RemoveUnfinishedFiles(order_.target);
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(order_.target, error))
        if (entry.path().filename() != ".lectora-book" && !made.contains(entry.path().filename()))
            return true;
    return false;
}

std::string BookWork::Open() {
    if (order_.target.back() == '/' && ::mkdir(order_.target.c_str(), 0777) != 0 && errno != EEXIST)
        return order_.target + ": " + std::strerror(errno);
    std::string problem = order_.target.back() == '/' ? ProblemOfChapters() : ProblemOfFiles();
    if (problem.empty())
        problem = OpenFolder();
    return problem.empty() ? Claim(ContentOf(folder_ + "key")) : problem;
}

// What could not be published when all is spoken is told before a word is.
std::string BookWork::ProblemOfFiles() {
    std::vector<std::string> paths = {order_.target};
    if (order_.subtitles)
        paths.push_back(SubtitlesPath(order_.target, *order_.subtitles));
    const auto existing =
        order_.overwrites ? WholeFile::Existing::kReplace : WholeFile::Existing::kRefuse;
    for (const std::string& path : paths) {
        const WholeFile file(path, existing, WholeFile::Unfinished::kLeave);
        if (path == order_.target && file.Problem() == WholeFile::kExists)
            RemoveIfDone();
        if (!file.Problem().empty() || file.IsDevice())
            return path + ": " +
                   (file.IsDevice() ? std::string("is not a regular file") : file.Problem());
    }
    return "";
}

// Of what stands in the place of chapters: there are many, of which most are not there yet.
std::string BookWork::ProblemOfChapters() const {
    for (std::size_t i = 0; i < order_.plan.chapters.size(); ++i) {
        const std::string sound = order_.target + ChapterFileName(order_, i);
        for (const std::string& path :
             {sound, order_.subtitles ? SubtitlesPath(sound, *order_.subtitles) : sound}) {
            struct stat info = {};
            if (::lstat(path.c_str(), &info) != 0 || S_ISREG(info.st_mode))
                continue;
            const WholeFile file(path, WholeFile::Existing::kReplace,
                                 WholeFile::Unfinished::kLeave);
            if (!file.Problem().empty())
                return path + ": " + file.Problem();
        }
    }
    return "";
}

// What a run has left that was killed when the book had its name.
void BookWork::RemoveIfDone() {
    // Its subtitles may still have to be made of what is there.
    struct stat info = {};
    if (order_.subtitles &&
        ::lstat(SubtitlesPath(order_.target, *order_.subtitles).c_str(), &info) != 0)
        return;
    const std::string done = ContentOf(folder_ + "done");
    if (!done.empty() && done == FileNumber(order_.target) && OpenFolder().empty())
        Remove();
}

// It is no link: what stands in it is removed.
std::string BookWork::OpenFolder() {
    const std::string bare = folder_.substr(0, folder_.size() - 1);
    if (::mkdir(bare.c_str(), 0700) != 0 && errno != EEXIST)
        return bare + ": " + std::strerror(errno);
    struct stat info = {};
    if (::lstat(bare.c_str(), &info) != 0 || !S_ISDIR(info.st_mode) || info.st_uid != ::geteuid())
        return bare + ": is not a folder of yours";
    lock_ = OpenRegularFile((folder_ + "key").c_str(), O_RDWR | O_CREAT | O_NOFOLLOW, 0600);
    if (!lock_.IsOpen())
        return bare + ": " + std::strerror(errno);
    // Not every file system has locks.
    if (::flock(lock_.Get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
        return order_.target + ": another program is at work on this book";
    // Once, and not for each of its files: of a long book there are ten thousand.
    RemoveUnfinishedFiles(folder_);
    return "";
}

// What another order has left goes, and the chapters that it had finished of an unfinished book;
// what else is in a folder is the user's, and stays until a whole chapter replaces it.
std::string BookWork::Claim(const std::string& found) {
    const std::string key = BookKey(order_);
    const bool isFolder = order_.target.back() == '/';
    // That what stands there may be replaced holds for the book, however it is gone on with.
    const std::string mayReplace = folder_ + "may-replace";
    if (isFolder && order_.overwrites)
        if (std::string problem = Write(mayReplace, ""); !problem.empty())
            return problem;
    if (found == key)
        return "";
    const std::set<std::string> made = isFolder ? Made() : std::set<std::string>{};
    if (isFolder && ::access(mayReplace.c_str(), F_OK) != 0 && HoldsOthers(made)) {
        if (found.empty())
            Remove();
        return order_.target + ": holds other files";
    }
    for (const std::string& name : made)
        ::unlink((order_.target + name).c_str());
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(folder_, ignored))
        if (IsOwnName(entry.path().filename()))
            std::filesystem::remove(entry.path(), ignored);
    const bool isKept = ::ftruncate(lock_.Get(), 0) == 0 && WriteFullyAt(lock_.Get(), key, 0) == 0;
    return isKept ? "" : folder_ + ": " + std::strerror(errno);
}

void BookWork::Remove() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_.substr(0, folder_.size() - 1), ignored);
}

std::string ContentOf(const std::string& path) {
    std::string content;
    const UniqueFd file = OpenFileForReading(path.c_str());
    if (file.IsOpen())
        ReadWholeFile(file.Get(), kMostContent, content);
    return content;
}
