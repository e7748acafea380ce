#include "desktop/dialogs/start_on_login_controls.h"

#include "desktop/start_on_login.h"

void LAutoRunSettingsInit(LWindow& dialog, int checkId, int listId) {
    const StartOnLoginPage page = LoadStartOnLogin();
    dialog.SetCheck(checkId, page.isOn);
    for (const char* text : kStartModeTexts)
        dialog.PDLAddString(listId, text);
    dialog.PDLSetCurSel(listId, page.mode);
}

bool LAutoRunSettingsApply(const LWindow& dialog, int checkId, int listId) {
    ApplyStartOnLogin({dialog.GetCheck(checkId), dialog.PDLGetCurSel(listId)});
    return true;
}
