#include "app/hot_key_store.h"

#include <algorithm>
#include <string>

#include "foundation/settings_record.h"

namespace {

constexpr const char* kMaxId = "MaxID";
constexpr const char* kKey = "Key";
constexpr const char* kCommand = "Command";
// A bound that was edited by hand must not make every start look for a billion files.
constexpr int kMostIds = 1000;

LSettingsRecord Details() {
    return LSettingsRecord("Hotkey", "Details");
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

}  // namespace

std::vector<StoredHotKey> LoadHotKeys() {
    LSettingsRecord details = Details();
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

bool StoreHotKey(StoredHotKey& hotKey) {
    LSettingsRecord details = Details();
    const int maxId = MaxId(details);
    if (hotKey.id < 0)
        hotKey.id = LowestFreeId(details, maxId);
    if (hotKey.id >= kMostIds)
        return false;
    LSettingsRecord record;
    details.CreateSubRecord(std::to_string(hotKey.id).c_str(), record);
    record.SetInt(kCommand, hotKey.command);
    record.SetInt(kKey, static_cast<int>(hotKey.key));
    if (hotKey.id >= maxId)
        details.SetInt(kMaxId, hotKey.id + 1);
    return record.GetInt(kCommand, -1) == hotKey.command &&
           record.GetInt(kKey, 0) == static_cast<int>(hotKey.key);
}

bool RemoveHotKey(int id) {
    LSettingsRecord details = Details();
    details.DeleteSubRecord(std::to_string(id).c_str());
    return !Exists(details, id);
}
