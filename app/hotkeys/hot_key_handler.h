// System-wide hotkeys: key combinations grabbed on the root window, whatever program has the focus.
#pragma once

#include <gdk/gdk.h>

#include <forward_list>

#include "gui/menus/key_map.h"

// False: without Ctrl, Alt or Super it is a key that is typed with, which no other program would
// get any more. Function and media keys are typed with nowhere.
bool CanBeHotKey(LKeyCode key);

// Whether the key could be grabbed right now on the default screen.
enum class HotKeyState { kFree, kHeldByAnotherProgram, kNotOnKeyboard };
// Grabs and releases it, so that one's own registration of the same key would be lost: ask while
// one's hotkeys are not registered. GUI thread, GDK lock held.
HotKeyState TestHotKey(LKeyCode key);

// A base class of whoever acts on hotkeys. GUI thread; needs a display once initialised.
class LHotKeyHandler {
public:
    LHotKeyHandler(const LHotKeyHandler&) = delete;
    LHotKeyHandler& operator=(const LHotKeyHandler&) = delete;
    virtual ~LHotKeyHandler();  // releases every hotkey

    // From within the event filter: they queue what takes time. A key that is held repeats its
    // press.
    virtual void EvHotKey(int index) = 0;
    virtual void EvHotKeyReleased(int /*index*/) {}

    // The keys of the screen that the window is on; null: the default screen. Initialised once,
    // before the first registration.
    void HotKeyHandlerInit(GdkWindow* window);
    void HotKeyHandlerDestroy();  // no more events; the grabs stay until they are released

    // Grabs the key, also with Caps Lock, Num Lock and Mod5 on. False, and nothing is grabbed: the
    // keyboard has no such key, or another program holds the combination.
    bool RegisterHotKey(int index, LKeyCode key);
    void UnregisterHotKey(int index);  // the newest one with this index
    // After a change of the keyboard's layout: a grab is of a place on the keyboard, a hotkey of
    // the sign on it.
    void FollowKeyboard();

protected:
    LHotKeyHandler() = default;

private:
    struct HotKey {
        unsigned char keycode;  // the X server's
        unsigned int modifiers;
        int index;
        LKeyCode key;  // as it was registered
    };

    static GdkFilterReturn gdk_filter(GdkXEvent* xevent, GdkEvent* event, gpointer handler);
    GdkFilterReturn EvXEvent(GdkXEvent* xevent);
    const HotKey* Find(unsigned int keycode, unsigned int state) const;
    void Ungrab(const HotKey& hotKey) const;

    GdkWindow* root_ = nullptr;  // the display's own
    bool isFiltering_ = false;
    unsigned int downKeycode_ = 0;  // pressed last and not released; 0 for none
    int downIndex_ = 0;
    std::forward_list<HotKey> hotKeys_;  // newest first
};
