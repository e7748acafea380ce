#include "app/reading/heard_words.h"

#include <algorithm>
#include <map>

#include "tests/app/reading/narrator_fixture.h"

namespace {

using Clock = std::chrono::steady_clock;

// When the card played the frame.
std::int64_t PlayedAt(const std::vector<CardEvent>& events, std::uint64_t frame, int rate) {
    const CardEvent* start = nullptr;
    for (const CardEvent& event : events)
        if (event.name == "start" && event.played <= frame)
            start = &event;
    return start == nullptr
               ? 0
               : start->microseconds +
                     static_cast<std::int64_t>((frame - start->played) * 1'000'000 / rate);
}

class HeardWordsTest : public NarratorTest {
protected:
    HeardWordsTest() {
        Engine("text2wave numbers\n");  // each 25 ms, of samples of its value
        cards_.Insert(0, "speed 1\n");
    }
    void Show(const WordInTime& word) {
        const auto now = Clock::now().time_since_epoch();
        const std::string text = narrator_->Text().substr(word.begin, word.end - word.begin);
        shownAt_.emplace(std::atoi(text.c_str()),
                         std::chrono::duration_cast<std::chrono::microseconds>(now).count());
    }

    std::map<int, std::int64_t> shownAt_;
    HeardWords words_{*narrator_, [this](const WordInTime& word) { Show(word); }};
    Narrator::Subscription wordNews_{narrator_->News(),
                                     [this](const ReadingNews& news) { words_.Hear(news); }};
};

TEST_F(HeardWordsTest, AreShownWhenTheCardPlaysThem) {
    constexpr int kWords = 60;
    constexpr int kSpeeds[] = {100, 150};
    for (const int speed : kSpeeds) {
        std::string text;
        for (int number = 1001; number <= 1000 + kWords; number += 3)
            for (int of = 0; of < 3; ++of) {
                const std::string word = std::to_string(number + of);
                text += (of == 0 ? "So " : " and ") + word + "." + word + (of == 2 ? ". " : "");
            }
        narrator_->Read(text, 0, "");
        ASSERT_TRUE(RunTo(ReadingState::kPlaying));
        narrator_->Pause();
        // How fast the engine's double is, is not what this is about.
        ASSERT_TRUE(RunUntil([&] { return narrator_->Now().isLengthKnown; }));
        narrator_->SetTempo(speed);
        narrator_->MoveTo({});
        shownAt_.clear();
        ASSERT_TRUE(RunTo(ReadingState::kEnded));
        const int stream = cards_.Streams(0);
        const std::vector<std::int16_t> heard = cards_.Received(0, stream);
        const std::vector<CardEvent> events = cards_.Events(0, stream);
        std::vector<std::int64_t> late;
        for (int number = 1001; number <= 1000 + kWords; ++number) {
            ASSERT_TRUE(shownAt_.contains(number)) << number;
            const auto at = std::ranges::find(heard, number);
            ASSERT_NE(at, heard.end()) << number;
            const auto frame = static_cast<std::uint64_t>(at - heard.begin());
            late.push_back((shownAt_[number] - PlayedAt(events, frame, 16000)) / 1000);
        }
        const auto isRight = [](std::int64_t milliseconds) { return std::abs(milliseconds) <= 50; };
        EXPECT_GE(std::ranges::count_if(late, isRight), kWords * 9 / 10);
    }
}

}  // namespace
