#include "foundation/files/machine_root.h"

#include <cstdlib>

std::string MachinePath(std::string_view absolutePath) {
    const char* root = std::getenv("LECTORA_ROOT");
    std::string path = root ? root : "";
    while (!path.empty() && path.back() == '/')
        path.pop_back();
    return path.append(absolutePath);
}

std::string HomeFolder() {
    const char* home = std::getenv("HOME");
    // An empty HOME would put the settings into whatever folder the program was started in.
    return home && *home ? std::string(home) : MachinePath("/opt");
}

std::string IconPath(int number) {
    return MachinePath("/opt/quillon/lectora/share/" + std::to_string(number) + ".png");
}
