#include "desktop/desktop_shortcut.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <string_view>

#include "desktop/user_accounts.h"
#include "foundation/file_io.h"
#include "foundation/machine_root.h"
#include "foundation/publish_file.h"

namespace {

constexpr std::size_t kLargestFile = 65536;

std::string ReadText(const std::string& path) {
    struct stat status {};
    std::string text;
    // A link or a pipe that a user left there is nothing to read as root.
    if (::lstat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        return text;
    const UniqueFd file = OpenFileForReading(path.c_str());
    if (!file.IsOpen() || !ReadWholeFile(file.Get(), kLargestFile, text))
        text.clear();
    return text;
}

// The folder has another name in other languages; the user's own file tells it. Empty where the
// user wants none, which that file says by naming the home itself.
std::string DesktopFolder(const std::string& home) {
    constexpr std::string_view key = "XDG_DESKTOP_DIR=\"";
    const std::string folders = "\n" + ReadText(home + "/.config/user-dirs.dirs");
    const std::size_t at = folders.find("\n" + std::string(key));
    if (at == std::string::npos)
        return home + "/Desktop";
    const std::size_t start = at + 1 + key.size();
    std::string folder = folders.substr(start, folders.find('"', start) - start);
    if (folder.starts_with("$HOME"))
        folder.replace(0, 5, home);
    while (folder.ends_with('/'))
        folder.pop_back();
    return folder == home ? std::string() : folder;
}

std::string ShortcutIn(const std::string& home) {
    const std::string folder = home.empty() ? home : DesktopFolder(home);
    return folder.empty() ? folder : folder + "/lectora.desktop";
}

bool IsOurs(const std::string& path) {
    return ReadText(path).find("\nExec=lectora ") != std::string::npos;
}

}  // namespace

void CreateDesktopShortcut() {
    const std::string entry = ReadText(MachinePath("/usr/share/applications/lectora.desktop"));
    const std::string shortcut = ShortcutIn(HomeFolder());
    if (entry.empty() || shortcut.empty())
        return;
    const std::string written = shortcut + ".new";
    {
        // Desktops start only what may be run.
        const UniqueFd file =
            OpenRegularFile(written.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0755);
        if (!file.IsOpen())
            return;
        if (WriteFully(file.Get(), entry) != 0) {
            ::unlink(written.c_str());
            return;
        }
    }
    if (PublishFile(written.c_str(), shortcut.c_str(), false) != 0)
        ::unlink(written.c_str());
}

void RemoveDesktopShortcuts() {
    for (const LUserAccount& account : LGetUsersAccounts()) {
        const std::string shortcut = ShortcutIn(account.home);
        if (!shortcut.empty() && IsOurs(shortcut))
            ::unlink(shortcut.c_str());
    }
}
