#include "app/hotkeys/hot_key_offer.h"

#include <gdk/gdkkeysyms.h>

#include <string>
#include <utility>
#include <vector>

#include "app/hotkeys/desktop_keys.h"
#include "app/hotkeys/hot_key_handler.h"
#include "app/hotkeys/hot_key_store.h"
#include "app/settings_keys.h"
#include "gui/windows/message_box.h"

namespace {

// Desktops and programs leave most combinations of Ctrl and Alt with a letter alone.
constexpr struct {
    guint letter;
    HotKeyCommand command;
    const char* does;
} kOffered[] = {{GDK_R, kHotKeyRead, "reads it aloud"},
                {GDK_S, kHotKeySave, "saves it as speech"},
                {GDK_U, kHotKeyUpdate, "puts it into Lectora's window"}};

// With Shift when another program holds it without.
LKeyCode FreeKey(guint letter) {
    const LKeyCode key = kKeyControl | kKeyAlt | letter;
    const bool isBetter =
        TestHotKey(key) != HotKeyState::kFree && TestHotKey(key | kKeyShift) == HotKeyState::kFree;
    return isBetter ? key | kKeyShift : key;
}

// False: the user does not want them, or they could not be stored, which the user is told.
bool Ask(GtkWidget* parent) {
    std::vector<StoredHotKey> hotKeys;
    std::string explanation = "Select a text in any program, and press one key combination:\n\n";
    for (const auto& offered : kOffered) {
        hotKeys.push_back({-1, FreeKey(offered.letter), offered.command});
        explanation += LKeyGetDescription(hotKeys.back().key) + " " + offered.does + ".\n";
    }
    explanation += "\nThey can be changed at any time in the options, on the page \"HotKeys\".";
    const int answer =
        MessageBoxRun(parent, GTK_MESSAGE_QUESTION, GTK_BUTTONS_YES_NO, "Lectora",
                      "Do you want to use Lectora from every program?", explanation.c_str());
    kHotKeysOfferedSetting.Set(true);
    if (answer != GTK_RESPONSE_YES)
        return false;
    bool areStored = true;
    for (StoredHotKey& hotKey : hotKeys)
        areStored = StoreHotKey(hotKey) && areStored;
    if (!areStored)
        MessageBoxRun(parent, GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Lectora",
                      "The hotkeys could not be kept.", "Your settings folder cannot be written.");
    return areStored;
}

// In place of the question, where its promise would not be kept.
void ShowDesktopKeys(GtkWidget* parent) {
    constexpr int kCopy = 1;
    constexpr LBoxButton kButtons[] = {{"_Copy Commands", kCopy}, {"C_lose", 0}};
    const std::string explanation =
        "In this session (Wayland) no program gets the keys that are pressed in others. Lectora "
        "can "
        "be used from every program all the same: in the keyboard settings of your desktop, let a "
        "key start one of these commands.\n\n" +
        DesktopKeyHints() + "\n\nThe options show them on the page \"HotKeys\".";
    kHotKeysOfferedSetting.Set(true);
    if (MessageBoxRun(parent, GTK_MESSAGE_INFO, kButtons, "Lectora",
                      "Keys for Lectora are set in your desktop", explanation.c_str()) == kCopy)
        CopyDesktopKeyCommands();
}

}  // namespace

void HotKeyOffer::AskSoon(const LWindow& window, std::function<void()> taken) {
    if (kHotKeysOfferedSetting.Get() || !LoadHotKeys().empty())
        return;
    wait_.Start(window.Widget(), [&window, taken = std::move(taken)] {
        if (!window.IsOpen())
            return;
        if (!HotKeysReachEveryProgram())
            ShowDesktopKeys(window.Widget());
        else if (Ask(window.Widget()) && window.IsOpen())
            taken();
    });
}
