#include "foundation/files/settings_folders.h"

#include "foundation/files/file.h"
#include "foundation/files/machine_root.h"

std::string UserSettingsFolder() {
    const std::string home = HomeFolder();
    return home + (home.ends_with('/') ? "" : "/") + ".quillon/lectora";
}

std::string MachineSettingsFolder() {
    return MachinePath("/opt/quillon/lectora/etc");
}
