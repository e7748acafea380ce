// The voices that the program knows, of every engine, in a table that only grows: an index once
// given keeps its voice for the life of the process, because texts may be read by it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "speech/voice_charset.h"

struct Voice {
    std::string engine;    // its row's name, "festival"
    std::string name;      // as the engine calls it, of any length
    std::string title;     // for people: "Kal, English (US), man"
    std::string language;  // tag, "en-US"; empty when it is not known
    VoiceCharset charset = VoiceCharset::kUtf8;
    // For people who are told the language beside it: "English (US)", and "Kal, man".
    std::string languageTitle = {};
    std::string shortTitle = {};
};

// What a voice is kept by: "festival:kal_diphone".
std::string KeyOf(const Voice& voice);
// The key under which a setting of the voice's own is kept: of any voice one that a settings file
// can hold.
std::string SettingsKeyOf(const Voice& voice);

// All of these are safe from any thread.

// Voices that the table lacks join at its end. What it has stays, also what is no longer installed.
void AddVoices(const std::vector<Voice>& voices);
std::vector<Voice> KnownVoices();
int CountVoices();
// Clamped to the first and the last one; a voice without a name when there is none.
Voice VoiceAt(int index);
// By key, name or title; -1 when there is none.
int FindVoice(std::string_view wanted);
