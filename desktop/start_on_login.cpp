#include "desktop/start_on_login.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "desktop/account_home.h"
#include "desktop/settings_keys.h"
#include "foundation/files/file_io.h"
#include "foundation/files/machine_root.h"
#include "foundation/files/text_buffer.h"
#include "foundation/numbers.h"
#include "foundation/settings/dat_file_native.h"

namespace {

constexpr const char* kEntryName = "lectora.desktop";
constexpr std::size_t kLargestEntry = 65536;
constexpr mode_t kEntryMode = 0644;

// --- the session file of GNOME 2: numbered clients

constexpr const char* kSessionFile = ".gnome2/session-manual";
constexpr const char* kSection = "Default";
constexpr const char* kCountKey = "num_clients";
constexpr const char* kCommand = "lectora";
constexpr const char* kClientKeys[] = {"RestartStyleHint", "Priority", "RestartCommand", "Program"};

// The open file, through a cache of its own: in a child nobody else's may be used.
class Session {
public:
    explicit Session(int file) : path_("/proc/self/fd/" + std::to_string(file)) {}

    std::string Get(const std::string& key) {
        char value[kTextBufferSize];
        files_.GetValue(path_.c_str(), kSection, key.c_str(), "", value);
        return value;
    }
    void Set(const std::string& key, const char* value) {
        files_.SetValue(path_.c_str(), kSection, key.c_str(), value);
    }
    void SetNumber(const std::string& key, int number) { Set(key, std::to_string(number).c_str()); }

private:
    std::string path_;
    LDatFileNativeSystem files_;  // writes the file at its end
};

std::string ClientKey(int client, const char* name) {
    return std::to_string(client) + "," + name;
}

void AddSessionClient(Session& session) {
    const int client = DecimalFromText(session.Get(kCountKey).c_str());
    // Another one of ours is not looked for: the session manager starts each once more.
    session.SetNumber(ClientKey(client, "RestartStyleHint"), 3);
    session.SetNumber(ClientKey(client, "Priority"), 50);
    session.Set(ClientKey(client, "RestartCommand"), kCommand);
    session.Set(ClientKey(client, "Program"), kCommand);
    session.SetNumber(kCountKey, client + 1);
}

// Takes out the first of ours. Those behind it keep their numbers and the count follows from its
// own, so the session manager, which reads as many clients as the count says, stops short of them.
void RemoveSessionClient(Session& session) {
    for (int client = 0;; ++client) {
        const std::string command = session.Get(ClientKey(client, "RestartCommand"));
        if (command.empty())
            return;
        if (command != kCommand)
            continue;
        for (const char* key : kClientKeys)
            session.Set(ClientKey(client, key), nullptr);
        session.SetNumber(kCountKey, client - 1);
        return;
    }
}

void EditSession(const LHomeFolder& home, bool on) {
    const UniqueFd file = home.OpenFile(kSessionFile, O_RDWR);
    if (!file.IsOpen())
        return;
    Session session(file.Get());
    on ? AddSessionClient(session) : RemoveSessionClient(session);
}

// --- one home folder

constexpr const char* kXdgFolder = ".config/autostart";

// Where the entry stands in this home, by the first mechanism that the home has; empty when it has
// none.
std::string EntryFolder(const LHomeFolder& home) {
    if (home.HasFolder(".kde/AutoStart"))
        return ".kde/AutoStart";
    if (home.OpenFile(kSessionFile, O_RDONLY).IsOpen())
        return ".gnome2";
    return home.HasFolder(".config") ? kXdgFolder : std::string();
}

bool PlaceEntry(const LHomeFolder& home, const std::string& entry) {
    const std::string where = EntryFolder(home);
    if (where.empty() || entry.empty())
        return false;
    if (where == ".gnome2")
        EditSession(home, true);
    if (where == kXdgFolder)
        ::mkdirat(home.OpenFolder(".config").Get(), "autostart", 0755);
    const UniqueFd folder = home.OpenFolder(where);
    return folder.IsOpen() && PlaceFile(folder.Get(), kEntryName, entry, kEntryMode, true);
}

bool RemoveEntry(const LHomeFolder& home) {
    const std::string where = EntryFolder(home);
    if (where == ".gnome2")
        EditSession(home, false);
    const UniqueFd folder = where.empty() ? UniqueFd() : home.OpenFolder(where);
    return folder.IsOpen() && ::unlinkat(folder.Get(), kEntryName, 0) == 0;
}

bool HasEntry(const LHomeFolder& home) {
    const std::string where = EntryFolder(home);
    return !where.empty() && home.OpenFile(where + "/" + kEntryName, O_RDONLY).IsOpen();
}

// What the installation has brought for it; empty when it cannot be read.
std::string MasterEntry() {
    const UniqueFd file = OpenFileForReading(
        MachinePath(std::string("/usr/share/applications/desktop/") + kEntryName).c_str());
    std::string entry;
    if (!file.IsOpen() || !ReadWholeFile(file.Get(), kLargestEntry, entry))
        entry.clear();
    return entry;
}

bool ApplyToHome(const LUserAccount& account, bool on, const std::string& entry) {
    return InHomeOf(account, [on, &entry](const LHomeFolder& home) {
        return on ? PlaceEntry(home, entry) : RemoveEntry(home);
    });
}

// Desktops name the user in the environment; elsewhere the accounts tell.
LUserAccount ThisUser() {
    const char* const name = std::getenv("USERNAME");
    for (const LUserAccount& account : LGetUsersAccounts()) {
        if (name != nullptr ? account.name == name : account.user == ::getuid())
            return account;
    }
    return LUserAccount();
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
    const std::string entry = on ? MasterEntry() : std::string();
    for (const LUserAccount& account : LGetUsersAccounts())
        ApplyToHome(account, on, entry);
}

bool SetRunGUIUnderUser(bool on) {
    return ApplyToHome(ThisUser(), on, on ? MasterEntry() : std::string());
}

StartOnLoginPage LoadStartOnLogin() {
    // Who may not act for every user is not offered that first.
    const bool isUndecided = LUserSettingGet(kRunModeSetting.section, kRunModeSetting.key).empty();
    const StartMode first = LIsUserRoot() ? StartMode::kEveryUser : StartMode::kThisUser;
    return {InHomeOf(ThisUser(), HasEntry),
            isUndecided ? static_cast<int>(first) : kRunModeSetting.Get()};
}

std::string ApplyStartOnLogin(const StartOnLoginPage& page) {
    const StartOnLoginPage before = LoadStartOnLogin();
    if (page == before || (!page.isOn && !before.isOn))
        return std::string();
    const bool all = page.isOn && page.mode == static_cast<int>(StartMode::kEveryUser);
    const bool own = page.isOn && page.mode == static_cast<int>(StartMode::kThisUser);
    if (all && !LIsUserRoot())
        return "Only an administrator can have Lectora start when any user logs on. Please choose "
               "that it starts when this user logs on only.";
    if (page.isOn)
        kRunModeSetting.Set(page.mode);
    SetAllUserRun(all);
    if (own)
        SetRunGUIUnderUser(true);
    kAutoRunForAllSetting.Set(all ? "1" : "0");
    kAutoRunForUserSetting.Set(own ? "1" : "0");  // whether or not the entry could be placed
    if ((all || own) == LoadStartOnLogin().isOn)
        return std::string();
    return all || own ? "Lectora cannot be started on login: this desktop's list of programs to "
                        "start was not found, or cannot be written."
                      : "Lectora still starts on login: this desktop's list of programs to start "
                        "cannot be written.";
}
