// The sleep timer with a clock of the test's own, judged by what the card played.
#include "app/reading/sleep_timer.h"

#include <algorithm>

#include "tests/app/reading/narrator_fixture.h"

namespace {

using namespace std::chrono_literals;

class SleepTimerTest : public NarratorTest {
protected:
    bool Sleeps() {
        return RunUntil([&] { return timer_.Chosen() == SleepAt::kNever; });
    }
    static int Loudest(const std::vector<std::int16_t>& sound, std::size_t ofLast) {
        int loudest = 0;
        for (std::size_t at = sound.size() - std::min(sound.size(), ofLast); at < sound.size();
             ++at)
            loudest = std::max(loudest, std::abs(sound[at]));
        return loudest;
    }
    // Of the last tenth of a second that was heard.
    int Loudness() const { return Loudest(cards_.Played(0, cards_.Streams(0)), 1600); }

    std::chrono::milliseconds now_{1000};
    std::vector<std::string> told_;
    SleepTimer timer_{
        *narrator_,
        {.tell = [this](const char* text) { told_.push_back(text); }, .changed = [] {}},
        [this] { return now_; }};
};

TEST_F(SleepTimerTest, FadesAndPausesWhenItsMinutesHavePassed) {
    timer_.ChooseNext();
    EXPECT_EQ(timer_.Status(), "sleeps in 15 min");
    narrator_->Read(LongText(2000), 0, "");
    ASSERT_TRUE(RunTo(ReadingState::kPlaying));
    now_ += 14min + 49s;
    const LSoundTime before = narrator_->Time();
    ASSERT_TRUE(
        RunUntil([&] { return narrator_->Time().Milliseconds() > before.Milliseconds() + 2000; }));
    EXPECT_FALSE(narrator_->Fade().IsOut());
    EXPECT_EQ(timer_.Status(), "sleeps in 1 min");
    now_ += 2s;
    ASSERT_TRUE(RunUntil([&] { return narrator_->Fade().IsOut(); }));
    ASSERT_TRUE(
        RunUntil([&] { return Loudest(cards_.Received(0, cards_.Streams(0)), 48000) < 10; }));
    EXPECT_NE(narrator_->State(), ReadingState::kPaused) << "it is not time yet";
    now_ += 9s;
    ASSERT_TRUE(Sleeps());
    EXPECT_EQ(narrator_->State(), ReadingState::kPaused);
    EXPECT_LT(Loudness(), 10);
    EXPECT_EQ(told_.size(), 2u) << "the choice, and the sleep";
    EXPECT_EQ(timer_.Status(), "");
    narrator_->Play();
    const LSoundTime again = narrator_->Time();
    ASSERT_TRUE(
        RunUntil([&] { return narrator_->Time().Milliseconds() > again.Milliseconds() + 3000; }));
    narrator_->Stop();
    EXPECT_GT(Loudness(), 5000);

    // Nobody listens any more, or not yet.
    timer_.Choose(SleepAt::kIn30);
    now_ += 31min;
    narrator_->Read(LongText(2000), Narrator::kVoiceUnknown, "");
    for (int turn = 0; turn < 50; ++turn)
        g_main_context_iteration(nullptr, FALSE);
    EXPECT_EQ(timer_.Chosen(), SleepAt::kIn30) << "what cannot be paused yet is awaited";
    narrator_->SetVoice(0);
    ASSERT_TRUE(RunTo(ReadingState::kPaused));
    EXPECT_TRUE(Sleeps());
}

TEST_F(SleepTimerTest, DoesNotSleepBehindThePagesThatHaveCome) {
    cards_.Insert(0, "speed 2\n");
    timer_.Choose(SleepAt::kEndOfChapter);
    const std::string page = "The first page is read. It ends here.";
    narrator_->Read({.text = page, .isGrowing = true}, 0);
    ASSERT_TRUE(RunUntil([&] { return last_.isForText; }));
    narrator_->Grow(" And the last one.", true);
    ASSERT_TRUE(Sleeps());
    EXPECT_GT(narrator_->Place(), page.size());
}

TEST_F(SleepTimerTest, SleepsAtTheEndOfTheChapterThatIsHeardThen) {
    cards_.Insert(0, "speed 2\n");
    const std::string text = LongText(8);
    const std::size_t second = text.find("1003");
    const std::size_t third = text.find("1006");
    // A heading within a chapter is none.
    narrator_->Read({.text = text,
                     .headings = {0, second - 16, text.find("1004") - 16, third - 16},
                     .chapters = {0, second - 16, third - 16}},
                    0);
    timer_.Choose(SleepAt::kEndOfChapter);
    EXPECT_EQ(timer_.Status(), "sleeps at the end of the chapter");
    ASSERT_TRUE(RunTo(ReadingState::kPlaying));
    narrator_->MoveToHeading(1);
    ASSERT_TRUE(RunTo(ReadingState::kPaused));
    // As long as the machine is not so busy that it looks too late, the next heading is not heard.
    EXPECT_NEAR(narrator_->Time().Milliseconds(), narrator_->TimeAt(third).Milliseconds(), 2000);
    EXPECT_LT(Loudness(), 100);
    EXPECT_EQ(told_.front(), "Sleep timer: at the end of the chapter");
    ASSERT_TRUE(Sleeps());
    timer_.Choose(SleepAt::kEndOfChapter);
    EXPECT_EQ(told_.back(), "Sleep timer: at the end of the text");
    narrator_->Queue({[] {
        ADD_FAILURE() << "what waits is not begun";
        return QueuedText::Begun::kFailed;
    }});
    narrator_->Play();
    ASSERT_TRUE(Sleeps());
    for (int turn = 0; turn < 50; ++turn)
        g_main_context_iteration(nullptr, FALSE);
}

}  // namespace
