#include "app/hotkeys/hot_key_store.h"

#include <gtest/gtest.h>

#include "foundation/settings/settings_record.h"
#include "tests/support/scratch_folder.h"

namespace {

class HotKeyStoreTest : public testing::Test {
protected:
    static std::vector<int> Ids() {
        std::vector<int> ids;
        for (const StoredHotKey& each : LoadHotKeys())
            ids.push_back(each.id);
        return ids;
    }

    ScratchFolder root_;
    ScratchFolder home_;
    ScopedVariable rootVariable_{"LECTORA_ROOT", root_.Path().c_str()};
    ScopedVariable homeVariable_{"HOME", home_.Path().c_str()};
};

TEST_F(HotKeyStoreTest, KeepsWhatIsStoredAndUsesFreeIdsAgain) {
    EXPECT_TRUE(LoadHotKeys().empty());
    for (const int command : {kHotKeyUpdate, kHotKeyRead, kHotKeySave}) {
        StoredHotKey added{-1, kKeyControl | kKeyShift | 'R', command};
        EXPECT_TRUE(StoreHotKey(added));
        EXPECT_EQ(command, added.id);
    }
    RemoveHotKey(1);
    EXPECT_EQ((std::vector<int>{0, 2}), Ids());
    StoredHotKey changed{2, kKeyAlt | 0xFFC2, kHotKeyRead};
    EXPECT_TRUE(StoreHotKey(changed));
    EXPECT_EQ(0x8FFC2u, LoadHotKeys()[1].key);
    EXPECT_EQ(kHotKeyRead, LoadHotKeys()[1].command);
    StoredHotKey added;
    StoreHotKey(added);
    EXPECT_EQ(1, added.id);
    EXPECT_EQ((std::vector<int>{0, 1, 2}), Ids());
    EXPECT_EQ(3, LSettingsRecord::OfUser("Hotkey", "Details").GetInt("MaxID", 0));
    EXPECT_FALSE(root_.Has("opt")) << "one user's keys are no other's";
}

TEST_F(HotKeyStoreTest, TheAdministratorsCountUntilTheUserChangesOne) {
    LSettingsRecord machines("Hotkey", "Details");
    LSettingsRecord record;
    machines.CreateSubRecord("1", record);
    record.SetInt("Command", kHotKeySave);
    record.SetInt("Key", 'S');
    machines.SetInt("MaxID", 2);
    EXPECT_EQ((std::vector<int>{1}), Ids());
    StoredHotKey added{-1, kKeyControl | 'R', kHotKeyRead};
    EXPECT_TRUE(StoreHotKey(added));
    EXPECT_EQ((std::vector<int>{0, 1}), Ids());
    EXPECT_EQ(kHotKeySave, LoadHotKeys()[1].command);
    EXPECT_TRUE(RemoveHotKey(0) && RemoveHotKey(1));
    EXPECT_TRUE(LoadHotKeys().empty()) << "removed for this user";
    EXPECT_EQ(machines.GetInt("MaxID", 0), 2);
    EXPECT_TRUE(machines.TestSubRecordExists("1")) << "and for nobody else";
}

TEST_F(HotKeyStoreTest, RecordsEditedByHandDoNoHarm) {
    LSettingsRecord details = LSettingsRecord::OfUser("Hotkey", "Details");
    details.SetInt("MaxID", 2000000000);
    LSettingsRecord record;
    details.CreateSubRecord("7", record);
    record.SetString("Key", "rubbish");
    const std::vector<StoredHotKey> hotKeys = LoadHotKeys();
    ASSERT_EQ(1u, hotKeys.size());
    EXPECT_EQ(0u, hotKeys[0].key);
    EXPECT_EQ(-1, hotKeys[0].command);
}

}  // namespace
