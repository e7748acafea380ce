#include "foundation/file_mask.h"

#include <sys/stat.h>

#include <string>
#include <string_view>

#include "foundation/machine_root.h"

namespace {

mode_t TakeMask() {
    const mode_t mask = umask(0);
    umask(mask);
    return mask;
}

// While there is one thread and nobody has changed it.
[[maybe_unused]] const mode_t gTakenBeforeMain = StartMask();

bool IsMachineWide(std::string_view path) {
    const std::string folder = MachinePath("/opt/quillon");
    return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

}  // namespace

mode_t StartMask() {
    static const mode_t mask = TakeMask();
    return mask;
}

mode_t CreationMode(const char* path, mode_t mode) {
    return IsMachineWide(path) ? mode : mode & ~StartMask();
}

bool MakeFolder(const char* path) {
    return mkdir(path, CreationMode(path, 0777)) == 0;
}
