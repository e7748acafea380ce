// What the user typed behind "lectora".
#pragma once

#include <optional>
#include <string>
#include <vector>

// "--help" and "--version" are answered without a display: the exit status, when there is nothing
// more to do.
std::optional<int> AnswerOnTerminal(int argc, const char* const* argv);

// The command line as an instance takes it, which has a working folder of its own: argument 0, the
// program's own words ("-logon", "-check"...), and paths. The name of a file that is there is made
// absolute, a "file://" address becomes its path, "-" what stands on the standard input; behind
// "--" everything is a file. Empty: a word that looks like an option is none, or the input cannot
// be kept; standard error has been told.
std::vector<std::string> TakeCommandLine(int argc, const char* const* argv);

// The texts that came from standard inputs, each in a folder of its own, go with this.
class SpooledInputs {
public:
    SpooledInputs() = default;
    SpooledInputs(const SpooledInputs&) = delete;
    SpooledInputs& operator=(const SpooledInputs&) = delete;
    ~SpooledInputs();
    void Note(const std::vector<std::string>& commandLine);

private:
    std::vector<std::string> files_;
};
