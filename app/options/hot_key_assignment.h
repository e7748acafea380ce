// "Hot-Key Assignment": what a system-wide hotkey does, and which key it is.
#pragma once

#include "app/hotkeys/hot_key_store.h"
#include "gui/windows/dialog.h"

class HotKeyAssignmentDlgImp final : public LDialog {
public:
    // hotKey is borrowed; one without an id is new. OK stores it.
    explicit HotKeyAssignmentDlgImp(StoredHotKey& hotKey) : hotKey_(hotKey), key_(hotKey.key) {
        SetHelpPage("hotkey");
    }

    bool Run(GtkWidget* parent);  // modal; true: stored

    void InitDialog() override;
    bool CmOk() override;
    void Command(int command) override;

private:
    StoredHotKey& hotKey_;
    LKeyCode key_;  // as chosen here
};

void DlgGenHotKeyAssignmentDlg(LDialogGenContext& context);
