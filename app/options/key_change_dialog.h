// "Key Change": the user presses the key combination that he wants.
#pragma once

#include "gui/windows/key_dialog.h"

class LKeyChangeDlg final : public LKeyDialog {
public:
    LKeyChangeDlg() { SetHelpPage("hotkey"); }

    bool Run(GtkWidget* parent);  // modal; true: Key() is what was pressed
    LKeyCode Key() const { return key_; }

    void InitDialog() override;
    bool EvKeyDown(unsigned int key) override;
    bool EvKeyUp(unsigned int key) override;

private:
    bool IsStillHeld() const;

    LKeyCode key_ = 0;
    char heldKeys_[32] = {};  // a bit a keycode: down since before the dialog came up
};

// Runs the dialog; true when a key was pressed, which is then in keyCode. GUI thread, GDK lock
// held.
bool LKeyChangeDialog(GtkWidget* parent, LKeyCode& keyCode);
