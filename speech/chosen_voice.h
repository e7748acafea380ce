// Whom the user has chosen to read. Any thread.
#pragma once

// The one that the user has chosen (settings), else the first that speaks the user's language, else
// the first that speaks English, else the first. -1 when there is none.
int ChosenVoice();
bool IsChosenVoiceMissing();  // another one is ChosenVoice() until it is there again
void KeepChosenVoice(int index);
