#include "foundation/crash/crash_box_program.h"

#include <unistd.h>

#include <cstring>

#include "foundation/files/text_buffer.h"

namespace {

constexpr std::size_t kPathBytes = 4096;

struct ProgramPath {
    ProgramPath() {
        constexpr const char* kName = "lectora-crash-box";
        char self[kPathBytes];
        const ssize_t length = ::readlink("/proc/self/exe", self, sizeof self);
        if (length <= 0)
            return;
        std::string_view folder(self, static_cast<std::size_t>(length));
        folder = folder.substr(0, folder.rfind('/') + 1);
        if (folder.size() + std::strlen(kName) < kPathBytes)
            CopyText(text, std::string(folder) + kName);
    }
    char text[kPathBytes] = {};
};

// Before main(), because nothing can be looked up once a fatal signal is there.
ProgramPath gProgramPath;

}  // namespace

const char* CrashBoxProgram() {
    return gProgramPath.text;
}

void SetCrashBoxProgram(const char* path) {
    CopyText(gProgramPath.text, path);
}
