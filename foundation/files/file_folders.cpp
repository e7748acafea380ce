#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>

#include "foundation/files/file.h"
#include "foundation/files/file_mask.h"
#include "foundation/files/folder_iterator.h"
#include "foundation/files/machine_root.h"
#include "foundation/files/store_file.h"
#include "foundation/files/text_buffer.h"

namespace {

constexpr int kDeepestCopy = 64;  // folders within folders; deeper paths do not fit their buffers

bool IsFolder(const std::string& path, bool followLink) {
    struct stat status = {};
    const int result = followLink ? stat(path.c_str(), &status) : lstat(path.c_str(), &status);
    return result == 0 && S_ISDIR(status.st_mode);
}

bool IsSamePlace(const std::string& a, const std::string& b) {
    std::error_code error;
    return std::filesystem::equivalent(a, b, error) && !error;
}

std::vector<std::string> NamesIn(const char* folder) {
    std::vector<std::string> names;
    LFile::FolderIteratorAllFiles entries;
    if (!entries.Open(folder))
        return names;
    while (entries.Next())
        names.emplace_back(entries.Name());
    return names;
}

void CopyTree(const std::string& from, const std::string& to, const std::string& topTarget,
              int depth) {
    // All names first: the target may stand inside the source.
    const std::vector<std::string> names = NamesIn(from.c_str());
    MakeFolder(to.c_str());
    for (const std::string& name : names) {
        const std::string source = from + "/" + name;
        const std::string target = to + "/" + name;
        struct stat status = {};
        if (IsFolder(source, false)) {
            if (depth < kDeepestCopy && !IsSamePlace(source, topTarget))
                CopyTree(source, target, topTarget, depth + 1);
        } else if (stat(source.c_str(), &status) == 0 && S_ISREG(status.st_mode)) {
            LFile::CopyFile(source.c_str(), target.c_str());
        }
    }
}

}  // namespace

void LFile::GetSharedDataFolderApp(char* out) {
    const std::string folder = MachinePath("/opt/quillon/lectora");
    MakeStoreFolder(folder);
    CopyText(out, kTextBufferSize, folder + "/etc");
}

void LFile::GetSharedDataFolderAppSubFolder(const char* name, char* out) {
    GetSharedDataFolderApp(out);
    _FilePathCat(out, name);
    MakeStoreFolder(out);
}

void LFile::GetUserDataFolderAppSubFolder(const char* name, char* out) {
    const std::string home = HomeFolder();
    const std::string folder = home + (home.ends_with('/') ? "" : "/") + ".quillon/lectora/" + name;
    MakeStoreFolder(folder);
    CopyText(out, kTextBufferSize, folder);
}

void LFile::CopyFolderFiles(const char* from, const char* to) {
    if (IsFolder(from, true))
        CopyTree(from, to, to, 0);
    else
        MakeFolder(to);
}

void LFile::DeleteFolderAndFiles(const char* folder) {
    // A finished download, which is a file, is taken away through here too.
    if (!IsFolder(folder, false)) {
        unlink(folder);
        return;
    }
    for (const std::string& name : NamesIn(folder))
        unlink((std::string(folder) + "/" + name).c_str());  // refuses sub-folders
    rmdir(folder);
}

void LFile::DeleteFolderTree(const char* folder) {
    std::error_code error;
    std::filesystem::remove_all(folder, error);
}
