#include "formats/mp3_component.h"

#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "foundation/file.h"
#include "foundation/machine_root.h"
#include "foundation/text_buffer.h"
#include "foundation/unique_fd.h"

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

}  // namespace

bool FindComponent(const char* name, char* path) {
    if (FindIn(HomeFolder(), name, path))
        return true;
    const std::string shared = MachinePath("/opt/quillon");
    return FindIn(shared, name, path);
}

bool GetComponentPath(const char* name, char* path) {
    if (FindComponent(name, path))
        return true;
    CopyText(path, kTextBufferSize, "/tmp");
    LFile::_FilePathCat(path, "0XXXXXX");
    const UniqueFd stray(::mkstemp(path));
    return false;
}
