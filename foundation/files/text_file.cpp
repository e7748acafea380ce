#include "foundation/files/text_file.h"

#include <fcntl.h>
#include <sys/file.h>

#include "foundation/files/file_io.h"
#include "foundation/files/flock_timed.h"

namespace {

void SaveBytes(const char* path, std::string_view bytes) {
    UniqueFd fd(open(path, O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, 0666));
    if (!fd.IsOpen())
        return;
    static_cast<void>(flock(fd.Get(), LOCK_EX | LOCK_NB));
    if (ftruncate(fd.Get(), 0) == 0)
        WriteFully(fd.Get(), bytes);
}

}  // namespace

void SaveText(const char* path, const char* text) {
    SaveBytes(path, text ? text : "");
}

void SaveText(const char* path, const LStringLongTemplate<char>& text) {
    SaveBytes(path, text.View());
}

bool LoadText(const char* path, LStringLongTemplate<char>& text) {
    const UniqueFd fd = OpenFileForReading(path);
    if (!fd.IsOpen())
        return false;
    flocktimed(fd.Get(), LOCK_SH | LOCK_NB, 1000);
    std::string content;
    if (!ReadWholeFile(fd.Get(), static_cast<std::size_t>(kLargestTextFile), content))
        return false;
    text.Storage().swap(content);
    return true;
}
