// Another voice, or another speed, for what is being read.
#include "app/reading/voice_change.h"

#include <gmock/gmock.h>

#include "playback/settings_keys.h"
#include "speech/voice_manner.h"
#include "tests/app/reading/narrator_fixture.h"

namespace {

using State = ReadingState;

class VoiceChangeTest : public NarratorTest {};

TEST_F(VoiceChangeTest, AnotherVoiceGoesOnAtTheNextSentence) {
    cards_.Insert(0, "speed 1\n");
    VoiceChange change(*narrator_);
    const std::string text = LongText(6);
    const auto sentence = [&] { return WordsAt(text, last_); };
    const auto spoken = [&] { return home_.Read("engine.log"); };
    narrator_->Read({.text = text}, 0);
    ASSERT_TRUE(RunUntil([&] { return sentence() == "Sentence number 1001"; }));
    EXPECT_TRUE(change.Begin(1));
    EXPECT_EQ(narrator_->Voice(), 0) << "this sentence is heard to its end";
    ASSERT_TRUE(RunUntil([&] { return sentence() == "Sentence number 1002"; }));
    EXPECT_EQ(narrator_->Voice(), 1);
    ASSERT_TRUE(RunTo(State::kPlaying));
    EXPECT_THAT(spoken(), testing::HasSubstr("(voice_voice2) Sentence number 1002"));
    EXPECT_THAT(spoken(), testing::Not(testing::HasSubstr("(voice_voice2) Sentence number 1001")));
    // While nothing is heard yet there is nothing to wait for; the same voice is no change.
    EXPECT_FALSE(change.Begin(1));
    narrator_->MoveToPlace(text.find("Sentence number 1005"));
    EXPECT_TRUE(change.Begin(0));
    EXPECT_EQ(narrator_->Voice(), 0);
    ASSERT_TRUE(RunTo(State::kEnded));
    EXPECT_EQ(last_.end, ReadingEnd::kToItsEnd);
    EXPECT_FALSE(change.Begin(1));

    // A sentence that the engine is handed in pieces is heard to its end all the same.
    std::string sentences = "So";
    while (sentences.size() < 650)
        sentences += " it goes on, and on, and further on";
    const std::size_t longOne = sentences.append(".").size();
    sentences += " Then comes another.";
    narrator_->Read({.text = sentences}, 0);
    ASSERT_TRUE(RunUntil([&] { return last_.state == State::kPlaying && last_.stretch; }));
    ASSERT_LT(last_.stretch->sourceEnd, longOne);
    EXPECT_TRUE(change.Begin(1));
    narrator_->MoveTo(LSoundTime(narrator_->TimeOf(last_.stretch->endFrame).Milliseconds() - 900));
    std::size_t heardTo = 0;
    ASSERT_TRUE(RunUntil([&] {
        if (narrator_->Voice() == 0 && last_.stretch)
            heardTo = last_.stretch->sourceEnd;
        return narrator_->Voice() == 1;
    }));
    EXPECT_EQ(heardTo, longOne);
}

TEST_F(VoiceChangeTest, AnEngineItselfSpeaksFastFromTheNextSentenceOn) {
    home_.WriteProgram(
        "espeak-ng",
        "speed=1; volume=100\n"
        "while [ $# -gt 1 ]; do\n"
        "case $1 in -s) speed=$(($2 / 175));; -a) volume=$2;; -f) t=$2;; -w) w=$2;; esac\n"
        "shift; done\n"
        "text2wave -eval \"(at_${speed}_$volume)\" \"$t\" -o \"$w.own\" >/dev/null 2>&1\n"
        "sox -t wav \"$w.own\" -t wav \"$w\" speed $speed; rm \"$w.own\"\n");
    const ScopedVariable path("PATH", (home_ / ":" + std::getenv("PATH")).c_str());
    AddVoices({{.engine = "espeak-ng", .name = "en", .title = "English", .language = "en"}});
    PlayerTempo("espeak-ng:en").Delete();
    cards_.Insert(0, "speed 1\n");
    VoiceChange change(*narrator_);
    const std::string text = LongText(200);
    const auto isAt = [&] { return WordsAt(text, last_) >= "Sentence number 1004"; };
    narrator_->Read({.text = text}, FindVoice("espeak-ng:en"));
    ASSERT_TRUE(RunTo(State::kPlaying));
    const int length = narrator_->Length().Milliseconds();
    narrator_->SetTempo(300);
    EXPECT_FALSE(narrator_->WantsOtherSpeed());
    narrator_->SetTempo(400);
    ASSERT_TRUE(RunUntil([&] { return !narrator_->WantsOtherSpeed() && isAt(); }));
    EXPECT_THAT(home_.Read("engine.log"), testing::HasSubstr("(at_4_100) Sentence number 1"));
    // Times stay those of the voice's own speed.
    EXPECT_NEAR(narrator_->Length().Milliseconds(), length, 0.1 * length);
    const SpokenStretch heard = *last_.stretch;
    const int began = narrator_->TimeOf(heard.firstFrame).Milliseconds();
    const int ended = narrator_->TimeOf(heard.endFrame).Milliseconds();
    EXPECT_NEAR(ended - began, 0.005 * length, 0.001 * length);
    EXPECT_LE(began, last_.time.Milliseconds());
    EXPECT_GT(ended, last_.time.Milliseconds());
    const std::string words = WordsAt(text, last_);
    narrator_->MoveToSentence(-1);
    ASSERT_TRUE(RunUntil([&] { return last_.state == State::kPlaying && last_.stretch; }));
    EXPECT_LT(WordsAt(text, last_), words);
    // A volume that is kept while it reads is not heard in the middle of something.
    KeepManner(VoiceAt(narrator_->Voice()), {.volume = 50});
    const std::size_t told = home_.Read("engine.log").size();
    ASSERT_TRUE(RunUntil([&] { return home_.Read("engine.log").size() > told + 100; }));
    EXPECT_THAT(home_.Read("engine.log"), testing::Not(testing::HasSubstr("(at_4_50)")));
    const std::string sentence = WordsAt(text, last_);
    change.BeginAnew();
    const auto asked = [&] { return home_.Read("engine.log").find("(at_4_50) Sentence"); };
    ASSERT_TRUE(RunUntil([&] { return asked() != std::string::npos; }));
    EXPECT_GT(home_.Read("engine.log").substr(asked() + 10), sentence);
    KeepManner(VoiceAt(narrator_->Voice()), {});
}

}  // namespace
