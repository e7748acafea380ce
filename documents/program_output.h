// What a program makes of a document: run as a child with bounded memory and time.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "documents/reading_watch.h"

enum class ProgramOutcome {
    kDone,
    kNotStarted,
    kFailed,  // it said so by its exit status, or was killed, so what it gave is not the whole
    kEnded,   // by the watch
    kTooLong  // by the taker
};

// Gets a part of the output; false when there is too much of it.
using OutputTaker = std::function<bool(std::string_view part)>;

// Runs the shell's command with these bytes as its standard input, a file that it can seek in. Its
// messages go nowhere. All that it started is gone at the return.
ProgramOutcome RunProgram(const std::string& command, std::string_view input,
                          const ReadingWatch& watch, const OutputTaker& take);

// The sentence for what kept the program from reading anything; empty when it ran to its end.
std::string ProgramProblem(const std::string& program, ProgramOutcome outcome,
                           const ReadingWatch& watch);
