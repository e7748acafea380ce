#include "app/hotkeys/hot_key_handler.h"

#include <X11/XKBlib.h>
#include <X11/Xlib.h>
#include <gdk/gdkkeysyms.h>
#include <gdk/gdkx.h>

#include <algorithm>

namespace {

// What a user may leave switched on: Caps Lock, Num Lock and Mod5, alone and together.
constexpr unsigned int kLockStates[] = {0,
                                        Mod2Mask,
                                        Mod5Mask,
                                        LockMask,
                                        LockMask | Mod2Mask,
                                        LockMask | Mod5Mask,
                                        Mod2Mask | Mod5Mask,
                                        LockMask | Mod2Mask | Mod5Mask};
constexpr unsigned int kModifiers = ShiftMask | ControlMask | Mod1Mask | Mod4Mask;

Display* DisplayOf(GdkWindow* root) {
    return GDK_WINDOW_XDISPLAY(root);
}

// 0: the keyboard has no such key, and a grab of 0 would be one of every key.
KeyCode KeycodeOf(Display* display, LKeyCode key) {
    const char* name = gdk_keyval_name(gdk_keyval_to_upper(KeyValue(key)));
    return name != nullptr ? XKeysymToKeycode(display, XStringToKeysym(name)) : KeyCode{0};
}

void UngrabKey(GdkWindow* root, KeyCode keycode, unsigned int modifiers) {
    for (const unsigned int locks : kLockStates)
        XUngrabKey(DisplayOf(root), keycode, modifiers | locks, GDK_WINDOW_XID(root));
}

// Under every lock state or not at all: a combination that works only while Caps Lock is on helps
// nobody.
bool GrabKey(GdkWindow* root, KeyCode keycode, unsigned int modifiers) {
    gdk_error_trap_push();
    for (const unsigned int locks : kLockStates)
        XGrabKey(DisplayOf(root), keycode, modifiers | locks, GDK_WINDOW_XID(root), True,
                 GrabModeAsync, GrabModeAsync);
    gdk_flush();  // errors arrive with the server's answer
    if (gdk_error_trap_pop() == 0)
        return true;
    UngrabKey(root, keycode, modifiers);
    return false;
}

}  // namespace

bool CanBeHotKey(LKeyCode key) {
    const guint value = KeyValue(key);
    return (key & (kKeyControl | kKeyAlt | kKeySuper | kKeyMedia)) != 0 ||
           (value >= GDK_F1 && value <= GDK_F35);
}

HotKeyState TestHotKey(LKeyCode key) {
    GdkWindow* root = gdk_get_default_root_window();
    const KeyCode keycode = KeycodeOf(DisplayOf(root), key);
    if (keycode == 0)
        return HotKeyState::kNotOnKeyboard;
    if (!GrabKey(root, keycode, KeyModifiers(key)))
        return HotKeyState::kHeldByAnotherProgram;
    UngrabKey(root, keycode, KeyModifiers(key));
    return HotKeyState::kFree;
}

LHotKeyHandler::~LHotKeyHandler() {
    for (const HotKey& hotKey : hotKeys_)
        Ungrab(hotKey);
    HotKeyHandlerDestroy();
}

void LHotKeyHandler::HotKeyHandlerInit(GdkWindow* window) {
    root_ = window != nullptr ? gdk_screen_get_root_window(gdk_window_get_screen(window))
                              : gdk_get_default_root_window();
    // For every window: the server reports a grabbed key to the window of ours that has the focus,
    // where there is one, and else to the root window.
    gdk_window_add_filter(nullptr, gdk_filter, this);
    isFiltering_ = true;
}

void LHotKeyHandler::HotKeyHandlerDestroy() {
    if (isFiltering_)
        gdk_window_remove_filter(nullptr, gdk_filter, this);
    isFiltering_ = false;
}

void LHotKeyHandler::Ungrab(const HotKey& hotKey) const {
    UngrabKey(root_, hotKey.keycode, hotKey.modifiers);
}

bool LHotKeyHandler::RegisterHotKey(int index, LKeyCode key) {
    if (root_ == nullptr)
        return false;
    const HotKey hotKey{KeycodeOf(DisplayOf(root_), key), KeyModifiers(key), index, key};
    if (hotKey.keycode == 0 || !GrabKey(root_, hotKey.keycode, hotKey.modifiers))
        return false;
    hotKeys_.push_front(hotKey);
    return true;
}

void LHotKeyHandler::UnregisterHotKey(int index) {
    auto before = hotKeys_.before_begin();
    for (auto at = hotKeys_.begin(); at != hotKeys_.end(); before = at++) {
        if (at->index == index) {
            Ungrab(*at);
            hotKeys_.erase_after(before);
            return;
        }
    }
}

void LHotKeyHandler::FollowKeyboard() {
    // All are released first: two may have changed places.
    for (const HotKey& hotKey : hotKeys_)
        Ungrab(hotKey);
    for (HotKey& hotKey : hotKeys_) {
        // A layout without the sign leaves the hotkey where it was.
        const KeyCode keycode = KeycodeOf(DisplayOf(root_), hotKey.key);
        hotKey.keycode = keycode != 0 ? keycode : hotKey.keycode;
        GrabKey(root_, hotKey.keycode, hotKey.modifiers);
    }
}

const LHotKeyHandler::HotKey* LHotKeyHandler::Find(unsigned int keycode, unsigned int state) const {
    const auto found = std::find_if(hotKeys_.begin(), hotKeys_.end(), [=](const HotKey& each) {
        return each.keycode == keycode && each.modifiers == (state & kModifiers);
    });
    return found != hotKeys_.end() ? &*found : nullptr;
}

// Every event that the X server reports.
GdkFilterReturn LHotKeyHandler::gdk_filter(GdkXEvent* xevent, GdkEvent*, gpointer handler) {
    return handler != nullptr ? static_cast<LHotKeyHandler*>(handler)->EvXEvent(xevent)
                              : GDK_FILTER_REMOVE;
}

GdkFilterReturn LHotKeyHandler::EvXEvent(GdkXEvent* xevent) {
    const XKeyEvent& key = static_cast<XEvent*>(xevent)->xkey;
    if (key.type != KeyPress && key.type != KeyRelease)
        return GDK_FILTER_CONTINUE;
    if (XkbKeycodeToKeysym(key.display, static_cast<KeyCode>(key.keycode), 0, 0) == NoSymbol)
        return GDK_FILTER_CONTINUE;
    const HotKey* hotKey = key.type == KeyPress ? Find(key.keycode, key.state) : nullptr;
    if (hotKey != nullptr) {
        downKeycode_ = key.keycode;
        downIndex_ = hotKey->index;
        EvHotKey(hotKey->index);
    } else if (key.type == KeyRelease && key.keycode == downKeycode_) {
        // Many users let go of the modifiers first, so that these do not tell.
        downKeycode_ = 0;
        EvHotKeyReleased(downIndex_);
    } else if (key.window != GDK_WINDOW_XID(root_)) {
        return GDK_FILTER_CONTINUE;  // an ordinary key of a window of ours
    }
    return GDK_FILTER_REMOVE;
}
