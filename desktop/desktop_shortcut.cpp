#include "desktop/desktop_shortcut.h"

#include <fcntl.h>
#include <unistd.h>

#include <string>
#include <string_view>

#include "desktop/account_home.h"
#include "foundation/files/file_io.h"
#include "foundation/files/machine_root.h"

namespace {

constexpr const char* kShortcut = "lectora.desktop";
constexpr std::size_t kLargestMenuEntry = 65536;

// Seen from the home. The folder has another name in other languages; the user's own file tells it.
// Empty where the user wants none, which that file says by naming the home itself, or one
// elsewhere.
std::string DesktopFolder(const LHomeFolder& home) {
    constexpr std::string_view key = "\nXDG_DESKTOP_DIR=\"";
    constexpr std::string_view ownHome = "$HOME/";
    const std::string folders = "\n" + home.ReadText(".config/user-dirs.dirs");
    const std::size_t at = folders.find(key);
    if (at == std::string::npos)
        return "Desktop";
    const std::size_t start = at + key.size();
    std::string folder = folders.substr(start, folders.find('"', start) - start);
    while (folder.ends_with('/'))
        folder.pop_back();
    return folder.starts_with(ownHome) ? folder.substr(ownHome.size()) : std::string();
}

bool Create(const LHomeFolder& home, const std::string& entry) {
    const std::string desktop = DesktopFolder(home);
    const UniqueFd folder = desktop.empty() ? UniqueFd() : home.OpenFolder(desktop);
    // Desktops start only what may be run.
    return folder.IsOpen() && PlaceFile(folder.Get(), kShortcut, entry, 0755, false);
}

bool RemoveOwn(const LHomeFolder& home) {
    const std::string desktop = DesktopFolder(home);
    const UniqueFd folder = desktop.empty() ? UniqueFd() : home.OpenFolder(desktop);
    const bool isOurs =
        folder.IsOpen() &&
        home.ReadText(desktop + "/" + kShortcut).find("\nExec=lectora ") != std::string::npos;
    return isOurs && ::unlinkat(folder.Get(), kShortcut, 0) == 0;
}

}  // namespace

void CreateDesktopShortcut() {
    const UniqueFd file =
        OpenFileForReading(MachinePath("/usr/share/applications/lectora.desktop").c_str());
    std::string entry;
    if (!file.IsOpen() || !ReadWholeFile(file.Get(), kLargestMenuEntry, entry) || entry.empty())
        return;
    InHomeOf(PresentAccount(), [&entry](const LHomeFolder& home) { return Create(home, entry); });
}

void RemoveDesktopShortcuts() {
    for (const LUserAccount& account : LGetUsersAccounts())
        InHomeOf(account, RemoveOwn);
}
