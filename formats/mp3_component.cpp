#include "formats/mp3_component.h"

#include <limits.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "foundation/files/file.h"
#include "foundation/files/machine_root.h"
#include "foundation/files/text_buffer.h"
#include "foundation/files/unique_fd.h"

namespace {

bool FindIn(const std::string& base, const char* name, char* path) {
    CopyText(path, kTextBufferSize, base);
    LFile::_FilePathCat(path, "components/");
    LFile::_FilePathCat(path, name);
    struct stat info;
    if (::stat(path, &info) != 0 || !S_ISDIR(info.st_mode))
        return false;
    LFile::_FilePathCat(path, name);
    return true;
}

// Of the build that this program stands in; empty for an installed one, and where a root is named.
std::string RootOfBuild() {
    char program[PATH_MAX];
    const ssize_t length = ::readlink("/proc/self/exe", program, sizeof program);
    if (length <= 0 || std::getenv("LECTORA_ROOT") != nullptr)
        return "";
    const std::string path(program, static_cast<std::size_t>(length));
    const std::size_t folder = path.rfind("/bin/");
    return folder == std::string::npos ? "" : path.substr(0, folder) + "/root";
}

}  // namespace

bool FindComponent(const char* name, char* path) {
    if (FindIn(HomeFolder(), name, path))
        return true;
    const std::string shared = MachinePath("/opt/quillon");
    if (FindIn(shared, name, path))
        return true;
    const std::string build = RootOfBuild();
    return !build.empty() && FindIn(build + "/opt/quillon", name, path);
}

bool GetComponentPath(const char* name, char* path) {
    if (FindComponent(name, path))
        return true;
    CopyText(path, kTextBufferSize, "/tmp");
    LFile::_FilePathCat(path, "0XXXXXX");
    const UniqueFd stray(::mkstemp(path));
    return false;
}
