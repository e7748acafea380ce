// The user's hotkeys as commands of the main window, and the question whether he wants some.
#pragma once

#include "app/commands/command_turn.h"
#include "app/hotkeys/hot_key_offer.h"
#include "app/hotkeys/hot_keys.h"
#include "gui/windows/window.h"

// GUI thread.
class HotKeyCommands {
public:
    // Both are borrowed. The window gets the commands.
    HotKeyCommands(LWindow& window, const CommandTurn& turn)
        : window_(window),
          turn_(turn),
          keys_([this](int storedCommand) { EvHotKey(storedCommand); }) {}
    HotKeyCommands(const HotKeyCommands&) = delete;
    HotKeyCommands& operator=(const HotKeyCommands&) = delete;

    void Begin();  // once, with a display
    void Start() { keys_.Start(); }
    void Stop() { keys_.Stop(); }
    void OfferSoon();  // HotKeyOffer::AskSoon

private:
    void EvHotKey(int storedCommand);

    LWindow& window_;
    const CommandTurn& turn_;
    HotKeys keys_;
    HotKeyOffer offer_;
};
