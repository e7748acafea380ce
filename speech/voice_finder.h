// How a user finds a voice among hundreds: in what order they stand, and by what words.
#pragma once

#include <string>
#include <vector>

#include "speech/voice_table.h"

struct ListedVoice {
    int index;               // into the voice table
    Voice voice;             // with a title for its language in any case
    std::string engine;      // as people know it
    std::string words = {};  // what it is found by, folded; made when it is first looked for
};

// All of the table, language by language: the user's own, then those used last, then by name; the
// voices used last first in each, otherwise in the table's order. Any thread.
std::vector<ListedVoice> VoicesToChooseFrom();

// Whether each word of what was typed is in the words of the voice, whatever its capitals.
bool IsFoundBy(ListedVoice& voice, const std::string& typed);

// The keys of the voices used last, newest first, kept for the user. GUI thread.
std::vector<std::string> VoicesUsedLast();
void KeepVoiceUsed(const Voice& voice);
