#include "app/start/verb_start.h"

#include <cstdio>
#include <cstdlib>

#include "app/control/verb.h"
#include "app/start/command_line.h"

namespace {

constexpr int kWrongUse = 2;

const VerbFacts* VerbOf(const std::vector<std::string>& commandLine) {
    return commandLine.size() > 1 ? FindVerb(commandLine[1]) : nullptr;
}

bool IsWhole(const VerbFacts& verb, int argc) {
    const int wanted = *verb.operand != '\0' ? 3 : 2;
    if (argc != wanted)
        std::fprintf(stderr, "lectora: use it as: lectora %s %s\n", verb.word, verb.operand);
    return argc == wanted;
}

int TellNobody(const VerbFacts& verb) {
    // Whoever asks for the state reads it on the standard output, where a script looks for it.
    if (verb.verb == Verb::kStatus)
        std::puts("not running");
    else
        std::fputs("lectora: Lectora is not running.\n", stderr);
    return 1;
}

}  // namespace

std::optional<int> AnswerByRunning(int argc, const char* const* argv,
                                   std::vector<std::string>& commandLine) {
    const VerbFacts* verb = argc > 1 ? FindVerb(argv[1]) : nullptr;
    if (verb == nullptr || std::getenv("HOME") == nullptr)
        return std::nullopt;
    if (!IsWhole(*verb, argc))
        return kWrongUse;
    commandLine = TakeCommandLine(argc, argv);
    if (commandLine.empty())
        return kWrongUse;
    RunOnceSocket socket;
    switch (socket.AskRunning(RunOnceSocket::DefaultPath(), commandLine)) {
        case RunOnceSocket::Claim::kHandedOver:
            return TellAnswer(commandLine, socket);
        case RunOnceSocket::Claim::kBusy: {
            SpooledInputs().Note(commandLine);
            const std::string process = std::to_string(socket.BusyProcess());
            std::fprintf(stderr, "lectora: Lectora is running (process %s) but does not answer.\n",
                         process.c_str());
            return 1;
        }
        default:
            return verb->starts ? std::nullopt : std::optional<int>(TellNobody(*verb));
    }
}

int TellAnswer(const std::vector<std::string>& commandLine, const RunOnceSocket& socket) {
    if (VerbOf(commandLine) == nullptr)
        return 0;
    const std::optional<HandOverAnswer>& answer = socket.Answer();
    if (!answer) {
        std::fputs("lectora: the Lectora that runs gave no answer.\n", stderr);
        return 1;
    }
    if (!answer->text.empty())
        std::fprintf(answer->isDone ? stdout : stderr, "%s%s\n",
                     answer->isDone ? "" : "lectora: ", answer->text.c_str());
    return answer->isDone ? 0 : 1;
}
