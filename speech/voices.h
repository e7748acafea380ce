// The voices that Festival has installed, as callers know them that count: the first ten of the
// table in voice_table.h, which holds those of all engines.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "speech/voice_table.h"

constexpr int kMaxVoices = 10;
constexpr std::size_t kMaxVoiceName = 49;  // characters

// Number of installed voices. Asks the engine ("festival -i", up to 1.1 s) until the names are
// known, then answers from memory. 0: no engine, or no answer in that time: a busy machine or a
// cold disk takes longer, so programs ask through VoiceListQuery (voice_list_query.h), which asks
// the other engines, too. Any thread.
int TTSGetNumSpeakers();

// Writes the name of the voice at index (clamped to the last voice, negative values to the first)
// or "No Voices Found". out holds 260 characters. Any thread; asks as TTSGetNumSpeakers does.
void TTSGetDictSpeakerName(int index, char* out);

// The table's voice, asked for as TTSGetNumSpeakers does when nobody has; "No Voices Found" when
// there is none, which the engine then fails to speak with.
Voice AskedVoiceAt(int index);

// What to ask the engine's interactive program.
constexpr std::string_view kVoiceListCommand = "(voice.list)\n";

// The names in the engine's reply to "(voice.list)": at most kMaxVoices, each cut to kMaxVoiceName.
// A reply without prompt or without closing parenthesis is filled up with empty names, and an empty
// list is one empty name.
std::vector<std::string> ParseVoiceList(std::string_view reply);
