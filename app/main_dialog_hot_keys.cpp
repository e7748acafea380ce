// The main window's system-wide hotkeys, and the options, which change them.
#include <iterator>

#include "app/commands/command_numbers.h"
#include "app/hot_key_store.h"
#include "app/main_dialog.h"
#include "app/options_dialog.h"

namespace {

// A new layout is told key by key.
constexpr unsigned int kNewKeyboardMs = 100;

// By what is stored with a hotkey.
constexpr int kCommands[] = {kUpdateFromSelection, kReadSelectionOrStop, kSaveFromSelection};
static_assert(kHotKeyUpdate == 0 && kHotKeyRead == 1 && kHotKeySave == 2);

}  // namespace

void MainDialog::HotkeysInit() {
    HotKeyHandlerInit(nullptr);
    keyboard_.Connect(gdk_keymap_get_default(), "keys-changed", G_CALLBACK(GCKeysChanged), this);
    HotkeysStart();
}

void MainDialog::GCKeysChanged(GdkKeymap*, gpointer self) {
    auto* window = static_cast<MainDialog*>(self);
    window->keyboardTimer_.Start(kNewKeyboardMs, [window] { window->FollowKeyboard(); });
}

void MainDialog::HotkeysStart() {
    int index = 0;
    // One that another program holds does nothing.
    for (const StoredHotKey& hotKey : LoadHotKeys())
        RegisterHotKey(index++, hotKey.key);
    hotKeyCount_ = index;
}

void MainDialog::HotkeysStop() {
    for (int index = 0; index < hotKeyCount_; ++index)
        UnregisterHotKey(index);
    hotKeyCount_ = 0;
}

void MainDialog::CmOptions() {
    HotkeysStop();
    OptDlg(Widget());
    // The window may have been closed meanwhile.
    if (IsOpen())
        HotkeysStart();
}

// Acts from the main loop: reading and saving run dialogs. A key that is held repeats itself.
void MainDialog::EvHotKey(int index) {
    if (index == heldHotKey_)
        return;
    heldHotKey_ = index;
    pressedHotKey_ = index;
    if (hotKeySource_ == 0)
        hotKeySource_ = gdk_threads_add_idle(RunPressedHotKey, this);
}

void MainDialog::EvHotKeyReleased(int) {
    heldHotKey_ = -1;
}

int MainDialog::RunPressedHotKey(void* self) {
    auto* window = static_cast<MainDialog*>(self);
    window->hotKeySource_ = 0;
    window->RunHotKey(window->pressedHotKey_);
    return FALSE;
}

void MainDialog::RunHotKey(int index) {
    const std::vector<StoredHotKey> hotKeys = LoadHotKeys();
    if (index < 0 || index >= static_cast<int>(hotKeys.size()))
        return;
    if (speaking_ || loading_) {
        // A dialog of the last command still waits for its answer, perhaps behind other windows.
        if (GtkWidget* waiting = gtk_grab_get_current())
            gtk_window_present(GTK_WINDOW(gtk_widget_get_toplevel(waiting)));
        return;
    }
    const int command = hotKeys[static_cast<std::size_t>(index)].command;
    if (command >= 0 && command < static_cast<int>(std::size(kCommands)))
        WMCommand(kCommands[command]);
}
