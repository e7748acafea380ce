// The command line of lectora-say.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "documents/document.h"
#include "formats/sound_types.h"
#include "speech/speech_pieces.h"
#include "tools/say_book_options.h"

constexpr const char* kSayProgram = "lectora-say";
constexpr const char* kStandardOutput = "-";

struct SayJob {
    std::string text;   // path; empty for standard input
    std::string sound;  // path, or kStandardOutput
    SoundType type = SoundType::kWav;
};

// What --text prints in place of speaking.
enum class TextForm { kWhole, kSentences, kSpoken };

struct SayOptions {
    bool listsVoices = false;
    DocumentRules rules;
    std::optional<TextForm> printsText;  // the jobs have a text alone
    SpeakingRules speaking;
    std::optional<BookWish> book;
    std::optional<bool> byLanguage;  // else as the user has chosen, where no voice is asked for
    bool overwrite = false;
    bool showsProgress = false;        // also beside sound on standard output
    std::optional<int> splitMinutes;   // length of numbered parts; 0: what a file can hold
    std::optional<std::string> voice;  // name, or index in the list
    std::vector<SayJob> jobs;
};

// Nothing when the program has to do something: the options. Otherwise the exit status, all having
// been said.
std::optional<int> ParseSayOptions(int argc, char* const* argv, SayOptions& options);
