// The speech engines: one row each, and all that the program knows about an engine.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "speech/spoken_forms.h"
#include "speech/voice_manner.h"
#include "speech/voice_table.h"

// What an engine's command is made of, which quotes the voice's name and the paths.
struct SpeechOrder {
    const Voice& voice;
    std::string_view textPath;
    std::string_view soundPath;
    int speed = 100;  // percent of the voice's own, as SpeedOfEngine has it
    VoiceManner manner = {};
};

struct SpeechEngine {
    std::string name;     // what its voices are kept under
    std::string title;    // for people
    std::string program;  // what speaks; in PATH when the engine is installed
    // How it is asked for its voices: a command, what it is then written, and whether its answer
    // is whole before its output ends (null: it is whole when it ends). No command: its voices are
    // known.
    std::string listCommand;
    std::string_view listInput;
    bool (*isWhole)(std::string_view answer) = nullptr;
    std::vector<Voice> (*voicesIn)(const SpeechEngine& engine, std::string_view answer) = nullptr;
    // The shell command that makes a WAV file of a text file. isOneProgram: it may take the shell's
    // place, and so dies with this program.
    std::string (*command)(const SpeechEngine& engine, const SpeechOrder& order) = nullptr;
    bool isOneProgram = true;
    // What its command ends with to leave the times of its words in a file (spoken_times.h); null:
    // it tells none.
    std::string (*timesOption)(std::string_view timesPath) = nullptr;
    // It loads its voice, which takes long, before it reads the text, from a pipe as well.
    bool loadsBeforeText = false;
    bool needsLineEnd = false;        // else it leaves out a last sentence of one word
    bool takesManner = false;         // its command is told it (voice_manner.h); else we see to it
    int speaksFasterFrom = 0;         // percent of a voice's speed; below, and with 0, it is ours
    SaidByEngine says = 0;            // well, in any language
    SaidByEngine saysEnglish = 0;     // in English beside that
    std::string_view omitsNumbersIn;  // tags of languages, with blanks around each
    // A user's own: "{text}", "{wav}", "{voice}" and "{rate}" stand for words; and its voices.
    std::string ownCommand;
    std::vector<Voice> ownVoices;
};

// Those that come with a row here, then the user's own (own_engines.h), read anew each time.
std::vector<SpeechEngine> SpeechEngines();

// The row of a voice, or Festival's for a voice that names none.
SpeechEngine EngineOf(const Voice& voice);

// Of a speed that is wanted, in percent of the voice's own, that which its engine speaks at; where
// that is not the whole, 100: then the sound is to be stretched.
int SpeedOfEngine(const Voice& voice, int wanted);

// What the voice's engine says well by itself in its language, and what it omits.
SaidByEngine SaidByEngineOf(const Voice& voice);

// The engine's command line; the voice name is quoted in any case.
std::string SynthesisCommand(std::string_view voice, std::string_view textPath,
                             std::string_view soundPath);
