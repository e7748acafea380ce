// The user's system-wide hotkeys at work.
#pragma once

#include <functional>

#include "app/hotkeys/hot_key_handler.h"
#include "gui/gui_timer.h"
#include "gui/signal_owner.h"

// GUI thread.
class HotKeys : private LHotKeyHandler {
public:
    // pressed: what is stored with a hotkey as its command, from the main loop, which may run
    // dialogs there. Once for a press, however long the key is held.
    explicit HotKeys(std::function<void(int command)> pressed) : pressed_(std::move(pressed)) {}

    void Init();   // once, with a display
    void Start();  // as they are stored now; one that another program holds does nothing
    void Stop();

private:
    void EvHotKey(int index) override;
    void EvHotKeyReleased(int index) override;
    static void GCKeysChanged(GdkKeymap* keymap, gpointer self);
    void EvKeysChanged();
    void Run(int index);

    std::function<void(int)> pressed_;
    LSignalOwner keyboard_;
    LGuiTimer keyboardTimer_;
    LGuiTimer pressTimer_;
    int count_ = 0;  // registered
    int held_ = -1;  // index, -1 for none
};
