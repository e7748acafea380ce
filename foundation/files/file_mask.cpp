#include "foundation/files/file_mask.h"

#include <sys/stat.h>

namespace {

mode_t TakeMask() {
    const mode_t mask = umask(0);
    umask(mask);
    return mask;
}

// While there is one thread.
[[maybe_unused]] const mode_t gTakenBeforeMain = StartMask();

}  // namespace

mode_t StartMask() {
    static const mode_t mask = TakeMask();
    return mask;
}

bool MakeFolder(const char* path) {
    return mkdir(path, 0777) == 0;
}
