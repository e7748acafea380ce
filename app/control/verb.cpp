#include "app/control/verb.h"

#include <algorithm>

namespace {

constexpr VerbFacts kVerbs[] = {
    {Verb::kReadSelection, "--read-selection", "", "read what is selected in any program", true},
    {Verb::kReadClipboard, "--read-clipboard", "", "read what was copied last", true},
    {Verb::kReadFile, "--read", "FILE", "read the file", true},
    {Verb::kTogglePause, "--toggle-pause", "", "pause, or go on; begin to read the text", false},
    {Verb::kStop, "--stop", "", "stop reading", false},
    {Verb::kNextSentence, "--next-sentence", "", "go a sentence ahead", false},
    {Verb::kPreviousSentence, "--previous-sentence", "", "go a sentence back", false},
    {Verb::kFaster, "--faster", "", "read faster", false},
    {Verb::kSlower, "--slower", "", "read slower", false},
    {Verb::kStatus, "--status", "", "tell state, title, time and sentence", false},
};

}  // namespace

std::span<const VerbFacts> AllVerbs() {
    return kVerbs;
}

const VerbFacts* FindVerb(std::string_view word) {
    const auto* found =
        std::ranges::find_if(kVerbs, [&](const VerbFacts& each) { return word == each.word; });
    return found != std::end(kVerbs) ? found : nullptr;
}
