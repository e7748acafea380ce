// The narrator with a virtual card and the engine's double; what it tells is written down.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "app/reading/narrator.h"
#include "speech/voices.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/virtual_card.h"

// Sentences as the engine's double speaks them, so many seconds each.
inline std::string LongText(int count) {
    std::string text;
    for (int number = 0; number < count; ++number)
        text += "Sentence number " + std::to_string(1000 + number) +
                (number % 5 == 4 ? " is said.\n\n" : " is said. ");
    return text;
}

class NarratorTest : public testing::Test {
protected:
    NarratorTest() {
        Engine("");
        cards_.Insert(0, "speed 20\n");
        TTSGetNumSpeakers();
    }
    // What the engine does; the head of its double tells the words.
    void Engine(const std::string& words) { home_.Write("engine", words); }

    static bool RunUntil(const std::function<bool()>& condition) {
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!condition() && std::chrono::steady_clock::now() < limit) {
            while (g_main_context_iteration(nullptr, FALSE)) {
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return condition();
    }
    bool RunTo(ReadingState state) {
        return RunUntil([&] { return narrator_->State() == state; });
    }
    static std::string WordsAt(const std::string& text, const ReadingNews& news) {
        return news.stretch ? text.substr(news.stretch->sourceBegin, 20) : "";
    }
    void Hear(const ReadingNews& news) {
        if (news.IsNew()) {
            all_.push_back(news.state);
            // On a busy machine the engine's double may fall behind at any time.
            const bool isBehind = news.before == ReadingState::kPlaying &&
                                  news.state == ReadingState::kWaitingForSound;
            if (!isBehind && !(wasBehind_ && news.state == ReadingState::kPlaying))
                states_.push_back(news.state);
            wasBehind_ = isBehind;
        }
        if (news.stretch && (heard_.empty() || heard_.back() != news.stretch->sourceBegin))
            heard_.push_back(news.stretch->sourceBegin);
        last_ = news;
    }

    ScratchFolder home_;
    ScopedVariable path_{"PATH",
                         (std::string(LECTORA_ENGINE_DOUBLE) + ":" + std::getenv("PATH")).c_str()};
    ScopedVariable desktop_{"LECTORA_DESKTOP", home_.Path().c_str()};
    VirtualCards cards_;
    std::unique_ptr<Narrator> narrator_ = std::make_unique<Narrator>(home_ / "speech.wav");
    std::vector<ReadingState> all_;
    std::vector<ReadingState> states_;  // but for falling behind, and what follows that
    bool wasBehind_ = false;
    std::vector<std::size_t> heard_;
    ReadingNews last_;
    Narrator::Subscription news_{narrator_->News(),
                                 [this](const ReadingNews& news) { Hear(news); }};
};
