#include "desktop/dialogs/start_on_login_controls.h"

#include "desktop/start_on_login.h"
#include "gui/windows/message_box.h"

void LAutoRunSettingsInit(LWindow& dialog, int checkId, int listId) {
    const StartOnLoginPage page = LoadStartOnLogin();
    dialog.SetCheck(checkId, page.isOn);
    for (const char* text : kStartModeTexts)
        dialog.PDLAddString(listId, text);
    dialog.PDLSetCurSel(listId, page.mode);
}

bool LAutoRunSettingsApply(const LWindow& dialog, int checkId, int listId) {
    const std::string trouble =
        ApplyStartOnLogin({dialog.GetCheck(checkId), dialog.PDLGetCurSel(listId)});
    if (!trouble.empty())
        MessageBoxRun(dialog.Widget(), GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Lectora",
                      "The start on login could not be changed.", trouble.c_str());
    return true;
}
