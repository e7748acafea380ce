#include <cerrno>
#include <string>
#include <string_view>

#include "foundation/files/file.h"
#include "foundation/files/text_buffer.h"

namespace {

constexpr std::string_view kSeparators = "/\\";
constexpr std::size_t kNone = std::string_view::npos;

std::size_t FilePartStart(std::string_view path) {
    const std::size_t separator = path.find_last_of(kSeparators);
    return separator == kNone ? 0 : separator + 1;
}

// Where the extension begins; the path's end when there is none. "/home/u/.profile" is all
// extension, ".profile" alone is none: only a dot at the start of the whole path begins a name.
std::size_t ExtensionStart(std::string_view path) {
    const std::size_t dot = path.rfind('.');
    return dot == kNone || dot == 0 || dot < FilePartStart(path) ? path.size() : dot;
}

void Put(char* out, std::string_view text) {
    CopyText(out, kTextBufferSize, text);
}

std::vector<std::string_view> Steps(std::string_view path) {
    std::vector<std::string_view> steps;
    while (!path.empty()) {
        const std::size_t length = std::min(path.find_first_of(kSeparators), path.size());
        const std::string_view step = path.substr(0, length);
        if (step == ".." && !steps.empty() && steps.back() != "..")
            steps.pop_back();
        else if (!step.empty() && step != ".")
            steps.push_back(step);
        path.remove_prefix(std::min(length + 1, path.size()));
    }
    return steps;
}

}  // namespace

void LFile::_FilePathCat(char* path, const char* name) {
    std::string joined = path;
    if (!joined.empty() && kSeparators.find(joined.back()) == kNone)
        joined += '/';
    Put(path, joined + name);
}

void LFile::_FilePathCat(char* path, const char* name, const char* ext) {
    _FilePathCat(path, (std::string(name) + ext).c_str());
}

void LFile::_GetFolderFromPath(char* out, const char* path) {
    const std::string_view whole(path);
    const std::size_t start = FilePartStart(whole);
    const std::string_view folder = whole.substr(0, start == 0 ? 0 : start - 1);
    Put(out, folder.empty() && whole.starts_with('/') ? "/" : folder);
}

void LFile::_GetFileFromPath(char* out, const char* path) {
    const std::string_view whole(path);
    Put(out, whole.substr(FilePartStart(whole)));
}

void LFile::_GetFileNameFromPath(char* out, const char* path) {
    std::string_view file(path);
    file.remove_prefix(FilePartStart(file));
    const std::size_t dot = file.rfind('.');
    Put(out, dot == kNone || dot == 0 ? file : file.substr(0, dot));
}

void LFile::_GetFileExtensionFromPath(char* out, const char* path) {
    const std::string_view whole(path);
    Put(out, whole.substr(ExtensionStart(whole)));
}

void LFile::_ApplyNewFileExtension(char* out, const char* path, const char* ext) {
    const std::string_view whole(path);
    const std::size_t start = ExtensionStart(whole);
    std::string changed(whole.substr(0, start));
    if (start < whole.size())
        changed += ext;
    Put(out, changed);
}

bool LFile::PreprocessName(const char* in, char* out) {
    constexpr std::string_view dropped = "\"*./:<>?\\|";
    std::string name;
    for (const char c : std::string_view(in)) {
        if (static_cast<unsigned char>(c) >= 32 && dropped.find(c) == kNone)
            name += c;
    }
    Put(out, name);
    return !name.empty();
}

void LFile::MakeRelativeFilePath(char* out, const char* path, const char* base) {
    const bool rooted = kSeparators.find(path[0]) != kNone && path[0] != '\0';
    const bool baseRooted = kSeparators.find(base[0]) != kNone && base[0] != '\0';
    if (rooted != baseRooted) {
        Put(out, path);
        return;
    }
    const std::vector<std::string_view> target = Steps(path);
    const std::vector<std::string_view> from = Steps(base);
    std::size_t common = 0;
    while (common < target.size() && common < from.size() && target[common] == from[common])
        ++common;
    std::string relative;
    for (std::size_t i = common; i < from.size(); ++i)
        relative += "../";
    for (std::size_t i = common; i < target.size(); ++i)
        relative.append(target[i]).append(1, '/');
    if (!relative.empty())
        relative.pop_back();
    Put(out, relative.empty() ? "." : relative);
}

bool LFile::IsErrorAlreadyExists() {
    return errno == EEXIST;
}

bool LFile::IsErrorSharingViolation() {
    return errno == EACCES || errno == EBADFD;
}
