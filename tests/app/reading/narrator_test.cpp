// The narrator itself, without windows: its states, and what its receivers are told.
#include "app/reading/narrator.h"
#include "app/reading/reading_times.h"
#include "app/reading/voice_change.h"

#include <gmock/gmock.h>

#include <random>

#include "tests/app/reading/narrator_fixture.h"

namespace {

using testing::ElementsAre;
using State = ReadingState;

TEST(ReadingState, FollowOneAnother) {
    constexpr State kAll[] = {State::kIdle,    State::kWaitingForVoice, State::kWaitingForSound,
                              State::kPlaying, State::kPaused,          State::kEnded};
    for (const State from : kAll) {
        EXPECT_FALSE(MayFollow(from, from)) << NameOf(from);
        // Nothing is left behind or heard out of turn: every reading ends before it is forgotten,
        // and begins with a wait for its sound.
        EXPECT_EQ(MayFollow(from, State::kIdle), from == State::kEnded) << NameOf(from);
        EXPECT_EQ(MayFollow(from, State::kWaitingForVoice), !IsReading(from)) << NameOf(from);
        EXPECT_EQ(MayFollow(from, State::kEnded), IsReading(from)) << NameOf(from);
    }
    EXPECT_FALSE(MayFollow(State::kIdle, State::kPlaying));
    EXPECT_FALSE(MayFollow(State::kWaitingForVoice, State::kPlaying));
    EXPECT_TRUE(MayFollow(State::kPaused, State::kWaitingForSound)) << "of another place";
    EXPECT_TRUE(MayFollow(State::kEnded, State::kPlaying)) << "again";
}

TEST(ReadingTimes, ReachAllOfATextFromEveryPart) {
    ReadingTimes times(1000, 0, UsualPace(std::string(1000, 'a')));
    EXPECT_NEAR(UsualPace("Лодка вышла в море."), 35, 3) << "two bytes a letter";
    times.SetSpoken(100, LSoundTime(5000));
    EXPECT_EQ(times.Length(), LSoundTime(50000));
    EXPECT_EQ(times.PlaceAt(LSoundTime(25000)), 500u);
    times.GoOnFrom(500);
    EXPECT_EQ(times.PartBegin(), LSoundTime(25000)) << "nothing falls back";
    EXPECT_EQ(times.Length(), LSoundTime(50000));
    times.SetSpoken(600, LSoundTime(15000));
    EXPECT_EQ(times.PartBegin(), LSoundTime(25000));
    EXPECT_EQ(times.Length(), LSoundTime(80000)) << "both parts have told the pace";
    EXPECT_EQ(times.PlaceAt(LSoundTime(12500)), 250u);
    EXPECT_EQ(times.PlaceAt(LSoundTime(32500)), 550u);
    EXPECT_EQ(times.PlaceAt(LSoundTime(80000)), 1000u);
    EXPECT_EQ(times.TimeOf(250), LSoundTime(12500));
    EXPECT_EQ(times.TimeOf(550), LSoundTime(32500));
    times.SetSpoken(1000, LSoundTime(40000));
    EXPECT_EQ(times.Length(), LSoundTime(65000));
    EXPECT_EQ(times.PlaceAt(LSoundTime(99000)), 1000u);
    // 600 MB would take longer than a time can tell, and are reached all the same.
    ReadingTimes longest(600'000'000, 300'000'000, 64);
    EXPECT_NEAR(static_cast<double>(longest.PlaceAt(longest.PartBegin())), 3e8, 1e4);
    EXPECT_GE(longest.PlaceAt(longest.Length()), 599'000'000u);
}

constexpr const char* kText =
    "One is a sentence of several words. Two is a sentence of several words. Three is the last one "
    "of the sentences.";

TEST_F(NarratorTest, ReadsOnInATextThatGrowsAndAwaitsWhatIsToCome) {
    const std::string first = LongText(2);
    narrator_->Read({.text = first, .isGrowing = true}, 0);
    narrator_->Grow("Sentence number three is said. ", false);
    EXPECT_TRUE(RunUntil([&] { return last_.isForText; })) << "of what has come nothing is left";
    EXPECT_EQ(heard_.back(), first.size());
    VoiceChange(*narrator_).Begin(1);
    EXPECT_FALSE(last_.isJump) << "there is nothing yet that it could read";
    narrator_->Grow("And the last one. ", false);
    EXPECT_TRUE(RunUntil(
        [&] { return narrator_->Place() == narrator_->Text().size() && last_.isForText; }));
    EXPECT_THAT(home_.Read("engine.log"), testing::HasSubstr("(voice_voice2) And the last one."));
    narrator_->MoveToPlace(0);
    EXPECT_TRUE(RunUntil([&] { return heard_.back() == 0; }));
    narrator_->Grow("\n", true);
    EXPECT_TRUE(RunTo(State::kEnded));
    EXPECT_EQ(last_.end, ReadingEnd::kToItsEnd) << "a blank page is no trouble";
    EXPECT_EQ(last_.note, "");
    EXPECT_GE(heard_.back(), first.size()) << "all of it was heard again";
    const std::string text = narrator_->Text();
    narrator_->Grow("It is all there. ", true);
    EXPECT_EQ(narrator_->Text(), text);
}

TEST_F(NarratorTest, TellsEachStateAndStretchOnTheWayThroughAText) {
    narrator_->Read(kText, Narrator::kVoiceUnknown, "numbers");
    EXPECT_EQ(narrator_->State(), State::kWaitingForVoice);
    narrator_->SetVoice(0);
    EXPECT_EQ(narrator_->State(), State::kWaitingForSound) << "nothing waits in there";
    ASSERT_TRUE(RunTo(State::kPlaying));
    narrator_->Pause();
    const LSoundTime at = last_.time;
    EXPECT_EQ(last_.state, State::kPaused);
    for (int turn = 0; turn < 50; ++turn)
        g_main_context_iteration(nullptr, FALSE);
    EXPECT_EQ(last_.state, State::kPaused);
    EXPECT_EQ(last_.time, at) << "nothing is heard";
    narrator_->Play();
    ASSERT_TRUE(RunTo(State::kEnded));
    EXPECT_EQ(last_.end, ReadingEnd::kToItsEnd);
    EXPECT_THAT(states_,
                ElementsAre(State::kWaitingForVoice, State::kWaitingForSound, State::kPlaying,
                            State::kPaused, State::kPlaying, State::kEnded));
    EXPECT_THAT(heard_, ElementsAre(0u, 36u, 72u));
    states_.clear();
    narrator_->Play();
    ASSERT_TRUE(RunTo(State::kEnded)) << "again";
    narrator_->Forget();
    EXPECT_THAT(states_, ElementsAre(State::kPlaying, State::kEnded, State::kIdle));
}

// Whatever is asked for: much further than the engine has spoken, and back again.
TEST_F(NarratorTest, GoesToAnyPlaceOfTheText) {
    const std::string text = LongText(1000);
    cards_.Insert(0, "speed 1\n");
    const auto hears = [&](const char* words) {
        return RunUntil(
            [&] { return last_.state == State::kPlaying && WordsAt(text, last_) == words; });
    };
    const auto percent = [&] {
        return 100.0 * last_.time.Milliseconds() / last_.length.Milliseconds();
    };
    narrator_->Read({.text = text, .headings = {0, text.find("Sentence number 1500"), 20000}}, 0);
    EXPECT_EQ(last_.title, "Sentence number 1000 is said. Sentence...");
    ASSERT_TRUE(hears("Sentence number 1000"));
    EXPECT_FALSE(last_.isLengthKnown);
    narrator_->MoveTo(LSoundTime(narrator_->Length().Milliseconds() / 2));
    EXPECT_NEAR(percent(), 50, 1) << "at once";
    EXPECT_TRUE(last_.isMove);
    EXPECT_NEAR(static_cast<double>(narrator_->Place()), static_cast<double>(text.size()) / 2, 50);
    ASSERT_TRUE(RunTo(State::kPlaying));
    ASSERT_TRUE(RunUntil([&] { return last_.stretch.has_value(); }));
    EXPECT_NEAR(static_cast<double>(last_.stretch->sourceBegin),
                static_cast<double>(text.size()) / 2, 50);
    EXPECT_NEAR(percent(), 50, 3) << "and it stays there";
    EXPECT_FALSE(last_.isLengthKnown);

    narrator_->MoveToHeading(-1);
    narrator_->MoveToHeading(-1);
    ASSERT_TRUE(hears("Sentence number 1000"));
    narrator_->MoveToHeading(1);
    ASSERT_TRUE(hears("Sentence number 1500"));
    narrator_->MoveToSentence(-1);
    ASSERT_TRUE(hears("Sentence number 1499"));
    narrator_->MoveToParagraph(-1);
    ASSERT_TRUE(hears("Sentence number 1495"));
    for (int step = 0; step < 3; ++step)
        narrator_->MoveToParagraph(1);  // faster than the engine
    ASSERT_TRUE(hears("Sentence number 1510"));
    narrator_->Pause();
    ASSERT_TRUE(RunTo(State::kPaused));
    narrator_->MoveToPlace(text.find("1800"));
    ASSERT_TRUE(hears("Sentence number 1800"));
    narrator_->Stop();
    ASSERT_TRUE(RunTo(State::kEnded));
    narrator_->Play();
    ASSERT_TRUE(hears("Sentence number 1000")) << "what was ended begins again";
    narrator_->MoveToEnd();
    ASSERT_TRUE(hears("Sentence number 1999"));
    cards_.Insert(0, "speed 20\n");
    narrator_->MoveToSentence(-1);
    ASSERT_TRUE(RunTo(State::kEnded));
    EXPECT_EQ(last_.end, ReadingEnd::kToItsEnd);
}

TEST_F(NarratorTest, NothingLeftToSayBehindAPlaceIsAnEnd) {
    const std::string text = LongText(50);
    narrator_->Read({.text = text + "\n\n* * *", .begin = text.size() - 20}, 0);
    ASSERT_TRUE(RunTo(State::kEnded));
    EXPECT_EQ(last_.end, ReadingEnd::kToItsEnd);
    narrator_->Play();
    ASSERT_TRUE(RunUntil([&] { return WordsAt(text, last_) == "Sentence number 1000"; }));
}

TEST_F(NarratorTest, EndsForAReason) {
    const struct {
        const char* engine;
        const char* card;
        int voice;
        ReadingEnd end;
    } cases[] = {
        {"text2wave silent", "speed 20\n", 0, ReadingEnd::kEngineFailed},
        {"", "speed 20\nfault busy\n", 0, ReadingEnd::kCardFailed},
        {"", "speed 20\n", 0, ReadingEnd::kToItsEnd},
        {"", "speed 20\nfault vanish 4000\n", 0, ReadingEnd::kCardFailed},
        {"", "speed 20\n", Narrator::kVoiceUnknown, ReadingEnd::kNoVoice},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.engine + std::string(test.card));
        Engine(test.engine);
        cards_.Insert(0, test.card);
        ReadingNews end;
        const Narrator::Subscription ends(narrator_->News(), [&](const ReadingNews& news) {
            if (news.IsNew() && news.state == State::kEnded)
                end = news;
        });
        bool isQueueRead = false;
        narrator_->Read(kText, test.voice, "");
        narrator_->Queue({[&] {
            isQueueRead = true;
            return QueuedText::Begun::kFailed;
        }});
        narrator_->SetVoice(Narrator::kVoiceUnknown);
        ASSERT_TRUE(RunUntil([&] { return end.state == State::kEnded; }));
        EXPECT_EQ(end.end, test.end) << end.route << static_cast<int>(end.trouble);
        EXPECT_EQ(end.note.empty(), test.end != ReadingEnd::kEngineFailed) << end.note;
        for (int turn = 0; turn < 50; ++turn)
            g_main_context_iteration(nullptr, FALSE);
        EXPECT_EQ(isQueueRead, test.end == ReadingEnd::kToItsEnd) << "trouble drops what waits";
    }
}

TEST_F(NarratorTest, AVoiceThatFallsBehindIsNoReading) {
    Engine("text2wave hang last");
    narrator_->Read(kText, 0, "");
    ASSERT_TRUE(RunTo(State::kPlaying));
    ASSERT_TRUE(RunTo(State::kWaitingForSound));
    Engine("");
    ASSERT_TRUE(RunTo(State::kEnded));
    EXPECT_THAT(heard_, testing::Contains(72u));
}

// Everybody hears everything in order, whoever does what within.
TEST_F(NarratorTest, ReceiversMayActAndGoFromWithin) {
    std::vector<State> others;
    auto going = std::make_unique<Narrator::Subscription>();
    going->Begin(narrator_->News(), [&](const ReadingNews& news) {
        if (news.state != State::kPlaying)
            return;
        auto gone = std::move(going);
        narrator_->Read("Another text.", 0, "");
    });
    const Narrator::Subscription last(narrator_->News(), [&](const ReadingNews& news) {
        if (news.IsNew())
            others.push_back(news.state);
    });
    narrator_->Read(kText, 0, "");
    ASSERT_TRUE(RunUntil([&] { return going == nullptr; }));
    ASSERT_TRUE(RunTo(State::kEnded));
    EXPECT_EQ(others, all_);
    EXPECT_THAT(states_, ElementsAre(State::kWaitingForSound, State::kPlaying, State::kEnded,
                                     State::kWaitingForSound, State::kPlaying, State::kEnded));
    narrator_.reset();  // with its receivers
}

TEST_F(NarratorTest, LosesNothingInAThousandRandomActs) {
    cards_.Insert(0, "speed 50\n");
    std::mt19937 random(1);
    int begun = 0;
    const auto number = [&](int most) {
        return static_cast<int>(random() % static_cast<unsigned>(most));
    };
    const std::function<void()> acts[] = {
        [&] { narrator_->Read(kText, number(2), "text"); },
        [&] { narrator_->Read(kText, Narrator::kVoiceUnknown, "text"); },
        [&] { narrator_->SetVoice(number(3) - 1); },
        [&] { narrator_->Pause(); },
        [&] { narrator_->Play(); },
        [&] { narrator_->TogglePause(); },
        [&] { narrator_->Stop(); },
        [&] { narrator_->MoveTo(LSoundTime(number(4000))); },
        [&] { narrator_->MoveToSentence(number(3) - 1); },
        [&] { narrator_->MoveToEnd(); },
        [&] { narrator_->MoveToParagraph(number(2) * 2 - 1); },
        [&] { narrator_->MoveToPlace(static_cast<std::size_t>(number(120))); },
        [&] { narrator_->PlayEnd(); },
        [&] {
            narrator_->Wind(number(2) == 0 ? PlayerWind::Way::kBack : PlayerWind::Way::kForward);
        },
        [&] { narrator_->EndWind(); },
        [&] { narrator_->SetTempo(50 + number(250)); },
        [&] { narrator_->SetDevice(LSoundPlayDevice(number(2))); },
        [&] { narrator_->NextItem(); },
        [&] { narrator_->Forget(); },
        [&] {
            narrator_->Queue({[&] {
                ++begun;
                narrator_->Read("From the queue.", 0, "queued");
                return QueuedText::Begun::kYes;
            }});
        }};
    for (int act = 0; act < 1000; ++act) {
        acts[random() % std::size(acts)]();
        const int turns = number(4) == 0 ? number(60) : 0;
        for (int turn = 0; turn < turns; ++turn) {
            g_main_context_iteration(nullptr, FALSE);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        // However slow the engine is, some acts meet sound, and a pause.
        if (act % 25 == 0 && narrator_->State() == State::kWaitingForSound) {
            RunUntil([&] { return narrator_->State() != State::kWaitingForSound; });
            narrator_->Pause();
        }
    }
    EXPECT_GT(begun, 0);
    EXPECT_THAT(states_, testing::IsSupersetOf({State::kPaused, State::kPlaying, State::kEnded}));
    narrator_->Forget();
    cards_.Insert(0, "speed 4\n");  // a busy machine still sees each sentence
    narrator_->SetDevice(LSoundPlayDevice(0));
    heard_.clear();
    narrator_->Read(kText, 0, "");
    ASSERT_TRUE(RunTo(State::kEnded));
    EXPECT_THAT(heard_, ElementsAre(0u, 36u, 72u));
}

}  // namespace
