#include "app/options/key_change_dialog.h"

#include <X11/Xlib.h>
#include <gdk/gdkkeysyms.h>
#include <gdk/gdkx.h>

#include "app/hotkeys/hot_key_handler.h"
#include "gui/accessible.h"
#include "gui/windows/dialog_gen_context.h"

namespace {

constexpr int kKeyPrompt = 101;
constexpr int kWayOut = 102;
constexpr int kKeyDialogWidth = 540;

void DlgGenKeyChange(LDialogGenContext& context) {
    context.SetWidth(kKeyDialogWidth);
    context.AddStatic(kKeyPrompt, "Press a key or a key combination");
    context.AddStatic(kWayOut, "Escape goes back without a change.");
    context.AddOkCancelHelp(kOkButton | kHelpButton, "Go Back");
}

// Alone it is the beginning of a combination. Caps Lock and Meta are none of these: whoever has no
// other key to spare may take them.
bool IsModifier(guint value) {
    return (value >= GDK_Shift_L && value <= GDK_Control_R) || value == GDK_Alt_L ||
           value == GDK_Alt_R || value == GDK_Super_L || value == GDK_Super_R;
}

// Also with the Super key, which the windows' own keys do without.
LKeyCode WithSuper(LKeyCode key) {
    GdkModifierType state{};
    const bool isHeld = gtk_get_current_event_state(&state) != FALSE &&
                        (state & (GDK_SUPER_MASK | GDK_MOD4_MASK)) != 0;
    return isHeld ? key | kKeySuper : key;
}

// The hardware's number of the key whose event is being handled; 0 for none.
guint CurrentKeycode() {
    GdkEvent* event = gtk_get_current_event();
    if (event == nullptr)
        return 0;
    const bool isKey = event->type == GDK_KEY_PRESS || event->type == GDK_KEY_RELEASE;
    const guint keycode = isKey ? event->key.hardware_keycode & 0xFF : 0;
    gdk_event_free(event);
    return keycode;
}

}  // namespace

bool LKeyChangeDlg::Run(GtkWidget* parent) {
    return Open(parent, {"Key Change", false, DlgGenKeyChange}, true) && key_ != 0;
}

void LKeyChangeDlg::InitDialog() {
    XQueryKeymap(gdk_x11_get_default_xdisplay(), heldKeys_);
}

// The Return that pressed "Change Key" repeats itself when it is held.
bool LKeyChangeDlg::IsStillHeld() const {
    const guint keycode = CurrentKeycode();
    return (heldKeys_[keycode / 8] >> keycode % 8 & 1) != 0;
}

bool LKeyChangeDlg::EvKeyDown(unsigned int key) {
    const guint value = KeyValue(key);
    if (IsModifier(value) || value == GDK_Escape)
        return false;
    // On many keyboards the Enter that a hand finds by itself, so that it is no choice.
    if (value == GDK_KP_Enter || IsStillHeld())
        return true;
    key = WithSuper(key);
    if (!CanBeHotKey(key)) {
        const std::string refusal = "\"" + LKeyGetDescription(key) +
                                    "\" is typed with in every program. Press it together with "
                                    "Ctrl, Alt or Super.";
        SetStaticText(kKeyPrompt, refusal.c_str());
        TellScreenReader(Widget(), refusal.c_str());
        return true;
    }
    key_ = key;
    DoOKButton();
    return true;
}

bool LKeyChangeDlg::EvKeyUp(unsigned int) {
    const guint keycode = CurrentKeycode();
    heldKeys_[keycode / 8] = static_cast<char>(heldKeys_[keycode / 8] & ~(1 << keycode % 8));
    return false;
}

bool LKeyChangeDialog(GtkWidget* parent, LKeyCode& keyCode) {
    LKeyChangeDlg dialog;
    if (!dialog.Run(parent))
        return false;
    keyCode = dialog.Key();
    return true;
}
