#include "desktop/desktop_databases.h"

#include <unistd.h>

#include <string>

#include "desktop/shell_words.h"
#include "foundation/files/machine_root.h"
#include "foundation/processes/child_process.h"

namespace {

struct Database {
    const char* file;
    const char* program;
    const char* command;  // before the folder
    const char* folder;
};

// Types of documents with the programs that open them; icons.
constexpr Database kDatabases[] = {
    {"/usr/share/applications/mimeinfo.cache", "update-desktop-database",
     "update-desktop-database -q ", "/usr/share/applications"},
    {"/usr/share/icons/hicolor/icon-theme.cache", "gtk-update-icon-cache",
     "gtk-update-icon-cache -q -t -f ", "/usr/share/icons/hicolor"},
};

}  // namespace

void RefreshDesktopDatabases() {
    for (const Database& database : kDatabases) {
        if (::access(MachinePath(database.file).c_str(), F_OK) == 0 &&
            IsProgramInstalled(database.program))
            RunShellCommand((database.command + ShellQuoted(MachinePath(database.folder))).c_str());
    }
}
