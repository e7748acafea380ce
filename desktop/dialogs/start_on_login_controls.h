// The two controls of the options that choose the start on login.
#pragma once

#include "gui/windows/window.h"

// Fills the check box and the drop-down list from what is kept. GUI thread.
void LAutoRunSettingsInit(LWindow& dialog, int checkId, int listId);
// Keeps what they say and carries it out, or tells the user why not; always true, so that the
// options close. Waits for the home folders of all accounts.
bool LAutoRunSettingsApply(const LWindow& dialog, int checkId, int listId);
