#include "app/hotkeys/hot_key_commands.h"

#include <gdk/gdkkeysyms.h>

#include <cstdlib>
#include <map>
#include <utility>

#include "app/commands/command_numbers.h"
#include "app/hotkeys/desktop_keys.h"
#include "app/hotkeys/hot_key_store.h"
#include "app/hotkeys/settings_keys.h"

namespace {

// As the desktop's portal has them: "CTRL+ALT+r".
std::string TriggerOf(LKeyCode key) {
    std::string trigger;
    for (const auto& [modifier, name] :
         {std::pair(kKeyControl, "CTRL+"), std::pair(kKeyAlt, "ALT+"),
          std::pair(kKeyShift, "SHIFT+"), std::pair(kKeySuper, "LOGO+")})
        if ((key & modifier) != 0)
            trigger += name;
    const char* name = gdk_keyval_name(gdk_keyval_to_lower(KeyValue(key)));
    return trigger + (name != nullptr ? name : "");
}

// The stored command stands in front: "1", and "1-2" for a second key of the same.
std::vector<ShortcutPortal::Shortcut> StoredShortcuts() {
    std::vector<ShortcutPortal::Shortcut> shortcuts;
    std::map<int, int> keys;
    for (const StoredHotKey& hotKey : LoadHotKeys()) {
        if (!CanBeHotKey(hotKey.key))
            continue;
        std::string id = std::to_string(hotKey.command);
        if (const int number = ++keys[hotKey.command]; number > 1)
            id += "-" + std::to_string(number);
        shortcuts.push_back(
            {std::move(id), HotKeyCommandLabel(hotKey.command), TriggerOf(hotKey.key)});
    }
    return shortcuts;
}

std::string NumberOf(const std::vector<ShortcutPortal::Shortcut>& shortcuts) {
    std::string text;
    for (const ShortcutPortal::Shortcut& each : shortcuts)
        text += each.id + "=" + each.trigger + " ";
    return std::to_string(g_str_hash(text.c_str()));
}

}  // namespace

HotKeyCommands::HotKeyCommands(LWindow& window, const CommandTurn& turn)
    : window_(window),
      turn_(turn),
      keys_([this](int storedCommand) { EvHotKey(storedCommand); }),
      desktop_({.offered = [this] { AskDesktop(); },
                .looked =
                    [this] {
                        if (isOfferWanted_)
                            OfferSoon();
                    },
                .bound =
                    [this] {
                        areGiven_ = true;
                        keys_.Stop();  // or one press would count twice
                    },
                .refused = [this] { kRefusedShortcutsSetting.Set(NumberOf(asked_)); },
                .activated = [this](const std::string& id) { EvShortcut(id); }}) {}

void HotKeyCommands::Begin() {
    keys_.Init();
    keys_.Start();
    if (IsWaylandSession())
        desktop_.LookFor();
}

void HotKeyCommands::Start() {
    if (!areGiven_ || StoredShortcuts() != asked_) {
        keys_.Start();
        AskDesktop();
    }
}

// The user of the desktop is asked, so only for what is new.
void HotKeyCommands::AskDesktop() {
    asked_ = StoredShortcuts();
    areGiven_ = false;
    if (!asked_.empty() && NumberOf(asked_) == kRefusedShortcutsSetting.Get())
        desktop_.DoWithout();
    else
        desktop_.Bind(asked_);
}

// What a command does may run dialogs.
void HotKeyCommands::EvShortcut(const std::string& id) {
    const int command = std::atoi(id.c_str());
    pressTimer_.Start(0, [this, command] { EvHotKey(command); });
}

void HotKeyCommands::OfferSoon() {
    isOfferWanted_ = desktop_.IsLooking();
    if (!isOfferWanted_)
        offer_.AskSoon(window_, [this] { Start(); });
}

void HotKeyCommands::EvHotKey(int storedCommand) {
    // By the stored number. What is being read goes on while a dialog is up, and obeys.
    static constexpr int kCommands[kHotKeyCommands] = {kUpdateFromSelection,
                                                       kReadSelectionOrPause,
                                                       kSaveFromSelection,
                                                       kPlayOrPause,
                                                       kStopReading,
                                                       kPreviousSentence,
                                                       kNextSentence,
                                                       kFaster,
                                                       kSlower};
    if (turn_.IsTaken() && storedCommand <= kHotKeySave)
        CommandTurn::PresentDialog();
    else if (storedCommand >= 0 && storedCommand < kHotKeyCommands)
        window_.WMCommand(kCommands[storedCommand]);
}
