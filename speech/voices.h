// The voices that the speech engine has installed.
#pragma once

#include <string>
#include <string_view>
#include <vector>

constexpr int kMaxVoices = 10;
constexpr std::size_t kMaxVoiceName = 49;  // characters

// Number of installed voices. Asks the engine ("festival -i", up to 1.1 s) until the names are
// known, then answers from memory. 0: no engine, or no answer in that time: a busy machine or a
// cold disk takes longer, so programs ask through VoiceListQuery (voice_list_query.h). Any thread.
int TTSGetNumSpeakers();

// Writes the name of the voice at index (clamped to the last voice, negative values to the first)
// or "No Voices Found". out holds 260 characters. Any thread; asks as TTSGetNumSpeakers does.
void TTSGetDictSpeakerName(int index, char* out);

bool AreVoicesKnown();  // whether the two above answer from memory

// What to ask the engine's interactive program, and what to do with its answer: names once known
// keep their index, because texts may be read by it; those of voices that were installed meanwhile
// join at the end.
constexpr std::string_view kVoiceListCommand = "(voice.list)\n";
void KeepVoices(std::vector<std::string> names);

// The index that this voice has in the engine's latest answer, and so at the next start.
int IndexAtNextStart(int index);

// The names in the engine's reply to "(voice.list)": at most kMaxVoices, each cut to kMaxVoiceName.
// A reply without prompt or without closing parenthesis is filled up with empty names, and an empty
// list is one empty name.
std::vector<std::string> ParseVoiceList(std::string_view reply);
