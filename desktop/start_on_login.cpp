#include "desktop/start_on_login.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <tuple>

#include "desktop/settings_keys.h"
#include "desktop/user_accounts.h"
#include "foundation/dat_file.h"
#include "foundation/file.h"
#include "foundation/file_mask.h"
#include "foundation/machine_root.h"

namespace {

constexpr const char* kEntryName = "/lectora.desktop";

bool IsFolder(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

// What root makes in a user's home belongs to that user.
void GiveToOwnerOf(const std::string& home, const std::string& made) {
    struct stat status {};
    if (LIsUserRoot() && ::stat(home.c_str(), &status) == 0)
        std::ignore = ::lchown(made.c_str(), status.st_uid, status.st_gid);
}

// --- the session file of GNOME 2: numbered clients

constexpr const char* kSection = "Default";
constexpr const char* kCountKey = "num_clients";
constexpr const char* kCommand = "lectora";
constexpr const char* kClientKeys[] = {"RestartStyleHint", "Priority", "RestartCommand", "Program"};

std::string ClientKey(int client, const char* name) {
    return std::to_string(client) + "," + name;
}

void AddSessionClient(LDatFile& session) {
    const int client = session.GetLong(kSection, kCountKey, 0);
    // Another one of ours is not looked for: the session manager starts each once more.
    session.SetLong(kSection, ClientKey(client, "RestartStyleHint").c_str(), 3);
    session.SetLong(kSection, ClientKey(client, "Priority").c_str(), 50);
    session.SetString(kSection, ClientKey(client, "RestartCommand").c_str(), kCommand);
    session.SetString(kSection, ClientKey(client, "Program").c_str(), kCommand);
    session.SetLong(kSection, kCountKey, client + 1);
}

// Takes out the first of ours. Those behind it keep their numbers and the count follows from its
// own, so the session manager, which reads as many clients as the count says, stops short of them.
void RemoveSessionClient(LDatFile& session) {
    for (int client = 0;; ++client) {
        const std::string command =
            session.GetString(kSection, ClientKey(client, "RestartCommand").c_str());
        if (command.empty())
            return;
        if (command != kCommand)
            continue;
        for (const char* key : kClientKeys)
            session.DeleteKey(kSection, ClientKey(client, key).c_str());
        session.SetLong(kSection, kCountKey, client - 1);
        return;
    }
}

void EditSession(const std::string& path, bool on) {
    LDatFile session(path.c_str());
    on ? AddSessionClient(session) : RemoveSessionClient(session);
    session.Flush();  // a session that ends before this process must not lose it
}

// --- one home folder

// Where the entry stands in this home, by the first mechanism that the home has; empty when it has
// none. Prepares the mechanism.
std::string PrepareTarget(const std::string& home, bool on) {
    if (IsFolder(home + "/.kde/AutoStart"))
        return home + "/.kde/AutoStart" + kEntryName;
    const std::string session = home + "/.gnome2/session-manual";
    if (::access(session.c_str(), F_OK) == 0) {
        EditSession(session, on);
        return home + "/.gnome2" + kEntryName;
    }
    if (!IsFolder(home + "/.config"))
        return std::string();
    const std::string folder = home + "/.config/autostart";
    if (MakeFolder(folder.c_str()))
        GiveToOwnerOf(home, folder);
    return folder + kEntryName;
}

bool PlaceEntry(const std::string& home, const std::string& target) {
    const std::string folder = MachinePath("/usr/share/applications/desktop");
    MakeFolder(folder.c_str());
    // Root must not write through a link that a user put there.
    struct stat status {};
    if (::lstat(target.c_str(), &status) == 0 && !S_ISREG(status.st_mode))
        ::unlink(target.c_str());
    if (!LFile::CopyFile((folder + kEntryName).c_str(), target.c_str()))
        return false;
    GiveToOwnerOf(home, target);
    LFile::SetFolderSecurityAllAccess(target.c_str());
    return true;
}

bool ApplyToHome(const std::string& home, bool on) {
    if (home.empty())
        return false;
    const std::string target = PrepareTarget(home, on);
    if (target.empty())
        return false;
    return on ? PlaceEntry(home, target) : ::unlink(target.c_str()) == 0;
}

bool IsOn(const std::string& value, bool whenMissing) {
    return value.empty() ? whenMissing : value != "0";
}

}  // namespace

bool LAutoRun::IsRun() {
    return IsOn(kAutoRunForAllSetting.Get(), true);
}

bool LAutoRun::IsRunUser() {
    return IsOn(kAutoRunForUserSetting.Get(), false);
}

void LAutoRun::SetRun() {
    SetAllUserRun(true);
    kAutoRunForAllSetting.Set("1");
}

void LAutoRun::RemRun() {
    SetAllUserRun(false);
    kAutoRunForAllSetting.Set("0");
}

void LAutoRun::SetRunUser() {
    if (SetRunGUIUnderUser(true))
        kAutoRunForUserSetting.Set("1");
}

void LAutoRun::RemRunUser() {
    if (SetRunGUIUnderUser(false))
        kAutoRunForUserSetting.Set("0");
}

void SetAllUserRun(bool on) {
    for (const LUserAccount& account : LGetUsersAccounts())
        ApplyToHome(account.home, on);
}

bool SetRunGUIUnderUser(bool on) {
    const char* const user = std::getenv("USERNAME");
    if (user == nullptr)
        return false;
    for (const LUserAccount& account : LGetUsersAccounts()) {
        if (account.name == user)
            return ApplyToHome(account.home, on);
    }
    return false;
}

StartOnLoginPage LoadStartOnLogin() {
    return {LAutoRun::IsRun() || LAutoRun::IsRunUser(), kRunModeSetting.Get()};
}

void ApplyStartOnLogin(const StartOnLoginPage& page) {
    if (page.isOn)
        kRunModeSetting.Set(page.mode);
    const bool all = page.isOn && page.mode == static_cast<int>(StartMode::kEveryUser);
    const bool own = page.isOn && page.mode == static_cast<int>(StartMode::kThisUser);
    SetAllUserRun(all);
    if (own)
        SetRunGUIUnderUser(true);
    kAutoRunForAllSetting.Set(all ? "1" : "0");
    kAutoRunForUserSetting.Set(own ? "1" : "0");  // whether or not the entry could be placed
}
