// Where the sound of a text stands, in the user's home.
#pragma once

#include <string>

// "speech.wav": what was read aloud last, which stays.
std::string SpeechFilePath();
// That of a few words that a dialog lets hear; it goes with the dialog.
std::string SampleFilePath();
// That of a save, so that a reading goes on meanwhile; it goes with the save's end.
std::string SavingFilePath();
