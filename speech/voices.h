// The voices that the speech engine has installed.
#pragma once

#include <string>
#include <string_view>
#include <vector>

constexpr int kMaxVoices = 10;
constexpr std::size_t kMaxVoiceName = 49;  // characters

// Number of installed voices. Asks the engine ("festival -i", up to 1.1 s) until it once named at
// least one voice, then answers from memory. 0: no engine, or no answer. GUI thread, or the only
// thread of a program: the table is unguarded.
int TTSGetNumSpeakers();

// Writes the name of the voice at index (clamped to the last voice, negative values to the first)
// or "No Voices Found". out holds 260 characters. Same thread as TTSGetNumSpeakers.
void TTSGetDictSpeakerName(int index, char* out);

// The names in the engine's reply to "(voice.list)": at most kMaxVoices, each cut to kMaxVoiceName.
// A reply without prompt or without closing parenthesis is filled up with empty names, and an empty
// list is one empty name.
std::vector<std::string> ParseVoiceList(std::string_view reply);
