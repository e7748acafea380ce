// The user's hotkeys as commands of the main window, and the question whether he wants some.
#pragma once

#include <string>
#include <vector>

#include "app/commands/command_turn.h"
#include "app/control/shortcut_portal.h"
#include "app/hotkeys/hot_key_offer.h"
#include "app/hotkeys/hot_keys.h"
#include "gui/gui_timer.h"
#include "gui/windows/window.h"

// They are grabbed, or in a session that lets no program do that, asked of the desktop where it
// gives keys. GUI thread.
class HotKeyCommands {
public:
    // Both are borrowed. The window gets the commands.
    HotKeyCommands(LWindow& window, const CommandTurn& turn);
    HotKeyCommands(const HotKeyCommands&) = delete;
    HotKeyCommands& operator=(const HotKeyCommands&) = delete;

    void Begin();  // once, with a display
    void Start();  // as they are stored now
    void Stop() { keys_.Stop(); }
    // HotKeyOffer::AskSoon, once it is known whether the desktop gives keys: what it says depends
    // on that, and it is said once.
    void OfferSoon();

private:
    void AskDesktop();
    void EvShortcut(const std::string& id);
    void EvHotKey(int storedCommand);

    LWindow& window_;
    const CommandTurn& turn_;
    HotKeys keys_;
    ShortcutPortal desktop_;
    std::vector<ShortcutPortal::Shortcut> asked_;  // of the desktop
    bool areGiven_ = false;                        // by it
    LGuiTimer pressTimer_;
    bool isOfferWanted_ = false;
    HotKeyOffer offer_;
};
