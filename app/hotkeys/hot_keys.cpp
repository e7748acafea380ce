#include "app/hotkeys/hot_keys.h"

#include "app/hotkeys/hot_key_store.h"

namespace {

// A new layout is told key by key.
constexpr unsigned int kNewKeyboardMs = 100;

}  // namespace

void HotKeys::Init() {
    HotKeyHandlerInit(nullptr);
    keyboard_.Connect(gdk_keymap_get_default(), "keys-changed", G_CALLBACK(GCKeysChanged), this);
}

void HotKeys::GCKeysChanged(GdkKeymap*, gpointer self) {
    static_cast<HotKeys*>(self)->EvKeysChanged();
}

void HotKeys::EvKeysChanged() {
    keyboardTimer_.Start(kNewKeyboardMs, [this] { FollowKeyboard(); });
}

void HotKeys::Start() {
    int index = 0;
    for (const StoredHotKey& hotKey : LoadHotKeys()) {
        // One that other programs type with is left to them.
        if (CanBeHotKey(hotKey.key))
            RegisterHotKey(index, hotKey.key);
        ++index;
    }
    count_ = index;
}

void HotKeys::Stop() {
    for (int index = 0; index < count_; ++index)
        UnregisterHotKey(index);
    count_ = 0;
}

// Acts from the main loop: reading and saving run dialogs. A key that is held repeats itself.
void HotKeys::EvHotKey(int index) {
    if (index == held_)
        return;
    held_ = index;
    pressTimer_.Start(0, [this, index] { Run(index); });
}

void HotKeys::EvHotKeyReleased(int) {
    held_ = -1;
}

void HotKeys::Run(int index) {
    const std::vector<StoredHotKey> hotKeys = LoadHotKeys();
    if (index >= 0 && index < static_cast<int>(hotKeys.size()))
        pressed_(hotKeys[static_cast<std::size_t>(index)].command);
}
