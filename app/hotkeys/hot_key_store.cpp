#include "app/hotkeys/hot_key_store.h"

#include <algorithm>
#include <string>

#include "foundation/settings/settings_record.h"

namespace {

constexpr const char* kMaxId = "MaxID";
constexpr const char* kKey = "Key";
constexpr const char* kCommand = "Command";
// A bound that was edited by hand must not make every start look for a billion files.
constexpr int kMostIds = 1000;

constexpr const char* kHotKeySection = "Hotkey";
constexpr const char* kHotKeyRecord = "Details";

LSettingsRecord OwnDetails() {
    return LSettingsRecord::OfUser(kHotKeySection, kHotKeyRecord);
}

// The user's own; the machine's, which an administrator may have prepared, for whoever has never
// changed one.
LSettingsRecord Details() {
    LSettingsRecord own = OwnDetails();
    return own.TestFieldExists(kMaxId) ? own : LSettingsRecord(kHotKeySection, kHotKeyRecord);
}

int MaxId(LSettingsRecord& details) {
    return std::clamp(details.GetInt(kMaxId, 0), 0, kMostIds);
}

bool Exists(const LSettingsRecord& details, int id) {
    return details.TestSubRecordExists(std::to_string(id).c_str());
}

int LowestFreeId(const LSettingsRecord& details, int maxId) {
    int id = 0;
    while (id < maxId && Exists(details, id))
        ++id;
    return id;
}

std::vector<StoredHotKey> LoadFrom(LSettingsRecord details) {
    const int maxId = MaxId(details);
    std::vector<StoredHotKey> hotKeys;
    for (int id = 0; id < maxId; ++id) {
        if (!Exists(details, id))
            continue;
        LSettingsRecord record;
        details.OpenSubRecord(std::to_string(id).c_str(), record);
        hotKeys.push_back(
            {id, static_cast<LKeyCode>(record.GetInt(kKey, 0)), record.GetInt(kCommand, -1)});
    }
    return hotKeys;
}

bool StoreIn(LSettingsRecord& details, const StoredHotKey& hotKey) {
    LSettingsRecord record;
    details.CreateSubRecord(std::to_string(hotKey.id).c_str(), record);
    record.SetInt(kCommand, hotKey.command);
    record.SetInt(kKey, static_cast<int>(hotKey.key));
    if (hotKey.id >= MaxId(details))
        details.SetInt(kMaxId, hotKey.id + 1);
    return record.GetInt(kCommand, -1) == hotKey.command &&
           record.GetInt(kKey, 0) == static_cast<int>(hotKey.key);
}

// The user's own, to be changed: they begin as what counted before.
LSettingsRecord ChangeableDetails() {
    LSettingsRecord own = OwnDetails();
    if (own.TestFieldExists(kMaxId))
        return own;
    const std::vector<StoredHotKey> before = LoadHotKeys();
    own.SetInt(kMaxId, 0);
    for (const StoredHotKey& hotKey : before)
        StoreIn(own, hotKey);
    return own;
}

constexpr const char* kCommandLabels[kHotKeyCommands] = {"Copy text from clipboard",
                                                         "Read text from clipboard",
                                                         "Save text from clipboard",
                                                         "Pause or go on",
                                                         "Stop reading",
                                                         "Go a sentence back",
                                                         "Go a sentence ahead",
                                                         "Read faster",
                                                         "Read slower"};

}  // namespace

const char* HotKeyCommandLabel(int command) {
    return command >= 0 && command < kHotKeyCommands ? kCommandLabels[command] : "Nothing";
}

std::vector<StoredHotKey> LoadHotKeys() {
    return LoadFrom(Details());
}

bool StoreHotKey(StoredHotKey& hotKey) {
    LSettingsRecord details = ChangeableDetails();
    if (hotKey.id < 0)
        hotKey.id = LowestFreeId(details, MaxId(details));
    return hotKey.id < kMostIds && StoreIn(details, hotKey);
}

bool RemoveHotKey(int id) {
    LSettingsRecord details = ChangeableDetails();
    details.DeleteSubRecord(std::to_string(id).c_str());
    return std::ranges::none_of(LoadHotKeys(), [id](const auto& each) { return each.id == id; });
}
