// Which word is heard at every moment, between the times that the card tells.
#pragma once

#include <chrono>
#include <functional>

#include "app/reading/narrator.h"
#include "gui/gui_timer.h"

// Follows a narrator whose engine tells the times of its words; silent where it tells none. Wakes
// up when a word begins and at no other time, and never while nothing is heard. GUI thread.
class HeardWords {
public:
    using Show = std::function<void(const WordInTime& word)>;

    // The narrator outlives this. show is told each word once it begins, and before a sentence's
    // first one that none is heard; the same word may be told again.
    HeardWords(const Narrator& narrator, Show show) : narrator_(narrator), show_(std::move(show)) {}

    void Hear(const ReadingNews& news);  // each of the narrator's
    void Stop() { nextWord_.Stop(); }    // until the next news

private:
    using Clock = std::chrono::steady_clock;

    void Tell();

    const Narrator& narrator_;
    const Show show_;
    LSoundTime told_;  // by the card
    Clock::time_point toldAt_;
    bool isPlaying_ = false;
    LGuiTimer nextWord_;
};
