// What languages and voices are called for people. Any thread.
#pragma once

#include <string>
#include <string_view>

#include "speech/voice_table.h"

// "English (US)" for "en-US", in the language that this user's programs speak; `otherwise` where
// nobody calls it anything.
std::string LanguageTitle(const std::string& tag, const std::string& otherwise);
// "German" for "de-AT", for English sentences; the tag when that is not known.
std::string EnglishNameOfLanguage(const std::string& tag);
// "Deutsch" for "de-AT", as those who speak it call it; likewise.
std::string OwnNameOfLanguage(const std::string& tag);
// "de" for "German" and "german"; empty when that is no language.
std::string TagOfEnglishName(std::string_view name);

// What is known of a voice beside its language.
struct VoiceCalled {
    std::string given = {};     // "Kal"; may be empty
    std::string kind = {};      // "man"; may be empty
    std::string engine = {};    // as people know it; empty where it is not told
    std::string language = {};  // as the engine calls it, where nobody else knows its tag
};

// Fills in the voice's titles: "Kal, English (US), man".
void NameVoice(Voice& voice, const VoiceCalled& called);
