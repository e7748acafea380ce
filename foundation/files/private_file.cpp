#include "foundation/files/private_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "foundation/files/file_io.h"
#include "foundation/files/file_mask.h"
#include "foundation/files/machine_root.h"

std::string PrivateFilePath(const char* name) {
    std::string path = HomeFolder();
    for (const char* folder : {"/.quillon", "/lectora"})
        MakeFolder(path.append(folder).c_str());
    return path.append("/").append(name);
}

int WritePrivateFile(const char* name, std::string_view content) {
    const std::string path = PrivateFilePath(name);
    const std::string written = path + ".new";
    ::unlink(written.c_str());  // left by a program that was killed, or no file of ours
    UniqueFd file(
        ::open(written.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!file.IsOpen())
        return errno;
    int error = WriteFully(file.Get(), content);
    file.Reset();
    if (error == 0 && std::rename(written.c_str(), path.c_str()) != 0)
        error = errno;
    if (error != 0)
        ::unlink(written.c_str());
    return error;
}

bool ReadPrivateFile(const char* name, std::size_t most, std::string& content) {
    content.clear();
    const UniqueFd file = OpenRegularFile(PrivateFilePath(name).c_str(), O_RDONLY | O_NOFOLLOW);
    struct stat status = {};
    return file.IsOpen() && ::fstat(file.Get(), &status) == 0 && status.st_uid == ::geteuid() &&
           ReadWholeFile(file.Get(), most, content);
}

void RemovePrivateFile(const char* name) {
    ::unlink(PrivateFilePath(name).c_str());
}
