// The page "HotKeys" of the options: the system-wide hotkeys.
#pragma once

#include "app/hotkeys/hot_key_store.h"
#include "gui/windows/property_sheet.h"

// What is added, changed or removed is kept at once, whatever ends the options. The hotkeys must
// not be registered while the page is shown (see TestHotKey).
class HotkeysDlgImp final : public LPropertyPage {
public:
    HotkeysDlgImp() { SetHelpPage("hotkey"); }

    void InitDialog() override;
    void EnableControls() override;
    void Command(int command) override;

private:
    void FillList(int selectedId);
    void Add();
    void CopyCommands();
    void Change(int id);
    void Remove(int id);
};

void DlgGenHotkeysDlg(LDialogGenContext& context);
