// The user's system-wide hotkeys as they are kept, in the user's settings record
// "Hotkey"/"Details". Until the user changes one, those count that an administrator has put into
// the machine's record of that name.
#pragma once

#include <vector>

#include "gui/menus/key_map.h"

// The numbers stand in the store.
enum HotKeyCommand {
    kHotKeyUpdate = 0,
    kHotKeyRead = 1,
    kHotKeySave = 2,
    kHotKeyPause = 3,
    kHotKeyStop = 4,
    kHotKeySentenceBack = 5,
    kHotKeySentenceAhead = 6,
    kHotKeyFaster = 7,
    kHotKeySlower = 8,
};
constexpr int kHotKeyCommands = 9;

// What the user is told that the command does; "Nothing" for any other number. Their clipboard is
// what is selected in any program.
const char* HotKeyCommandLabel(int command);

struct StoredHotKey {
    int id = -1;  // names its record; below 0 while it has none
    LKeyCode key = 0;
    int command = kHotKeyUpdate;  // any other number does nothing
};

// In the order of their ids, which may have gaps. A hotkey's place in this order is its index.
std::vector<StoredHotKey> LoadHotKeys();
// Under its own id, a new one under the lowest free id, which is written into it. False: it is not
// on disk.
bool StoreHotKey(StoredHotKey& hotKey);
bool RemoveHotKey(int id);  // false: it is still there
