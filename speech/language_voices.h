// The voice for a language: the one that the user has chosen for it last, else one that is
// installed. Any thread.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "speech/voice_table.h"

// The tag without region ("de"). -1 when no voice speaks it. Reads the settings.
int VoiceForLanguage(std::string_view language);
// What the user chooses to read with is the choice for its language, too.
void KeepVoiceForLanguage(const Voice& voice);

// VoiceForLanguage for one run, which asks for the same few languages again and again: a voice once
// found is kept until voices join the table or this process keeps another choice. One thread.
class VoicesForRun {
public:
    int Of(std::string_view language);

private:
    std::vector<std::pair<std::string, int>> found_;
    int voices_ = -1;       // as many as there were
    unsigned choices_ = 0;  // as many as had been made
};

// Of a language's voices that of the region ("AT"), else the one of no region, of the region that
// the language is named after or of the most speakers, else the first; -1 when there is none.
int FindVoiceOfLanguage(std::string_view language, std::string_view region);

// One sentence about languages that no voice speaks, with the package that brings one; empty for
// none.
std::string MissingVoicesMessage(const std::vector<std::string>& languages);
