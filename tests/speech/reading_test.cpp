#include "speech/speech_reading.h"

#include <gmock/gmock.h>
#include <sys/resource.h>

#include <algorithm>
#include <random>

#include "speech/speech_estimate.h"
#include "tests/speech/marked_words.h"
#include "tests/speech/numbers_engine.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

std::string SpokenSentence(int number, const std::string& word = "number") {
    return "This sentence says the " + word + " " + std::to_string(number) + ".";
}

// Sentences 1 to count; those in `troubles` hold the word.
std::string Text(int count, const std::vector<int>& troubles = {}, const std::string& word = "") {
    std::string text;
    for (int i = 1; i <= count; ++i) {
        const bool isTrouble = std::count(troubles.begin(), troubles.end(), i) > 0;
        text += SpokenSentence(i, isTrouble ? word : "number") + (i % 5 == 0 ? "\n\n" : " ");
    }
    return text;
}

std::vector<int> Numbers(int count, const std::vector<int>& without = {}) {
    std::vector<int> numbers;
    for (int i = 1; i <= count; ++i)
        if (std::count(without.begin(), without.end(), i) == 0)
            numbers.push_back(i);
    return numbers;
}

std::size_t CountLines(const std::string& path) {
    const std::string lines = ScratchFolder::ReadFile(path);
    return static_cast<std::size_t>(std::count(lines.begin(), lines.end(), '\n'));
}

class NumbersReading : public testing::Test {
protected:
    std::string At(const std::string& name) const { return engine_.Path() + "/" + name; }
    std::string SoundPath() const { return At("speech.wav"); }

    const NumbersEngine engine_;
    LSilentProgress progress_;
    const std::function<bool()> engineHangs_ = [this] {
        return std::filesystem::remove(At("hanging"));
    };
};

// Hears the pieces as they come.
class Listener : public SpokenPieceTaker {
public:
    SynthesisOutcome TakePiece(const LSoundSource& sound, const SpeechPiece&) override {
        const std::vector<int> more = HearNumbers(*sound);
        heard.insert(heard.end(), more.begin(), more.end());
        return SynthesisOutcome::kSpoken;
    }
    std::vector<int> heard;
};

TEST_F(NumbersReading, TroubleCostsTheUnitThatMakesItAndIsToldOnce) {
    const struct {
        const char* word;
        std::vector<int> at;
        const char* told;
    } cases[] = {
        {"die", {1}, "\"This sentence says the die 1.\""},
        {"die", {12}, "\"This sentence says the die 12.\""},
        {"die", {3, 4, 7, 11}, "4 passages, which were left out; the first is \"This sentence"},
        {"nothing", {6}, "\"This sentence says the nothing 6.\""},
        {"hang", {6}, "hang 6."},
        {"once", {6}, ""},
        {"many", {6}, "\"This sentence says the many 6.\""},
    };
    for (const auto& test : cases) {
        for (const ReadingUse use : {ReadingUse::kListening, ReadingUse::kSaving}) {
            // Which of two runs at once hangs cannot be told.
            if (use == ReadingUse::kSaving && test.word == std::string("hang"))
                continue;
            const bool isSaved = test.word == std::string("many") && use == ReadingUse::kSaving;
            if (isSaved)
                continue;  // all is one piece of three channels
            std::filesystem::remove(At("once"));
            const std::vector<int> lost = *test.told == '\0' ? std::vector<int>() : test.at;
            const std::string text = Text(12, test.at, test.word);
            Listener listener;
            PieceRuns runs(text, 0, engine_.Path() + "/", use, listener);
            ImpatientProgress progress(engineHangs_);
            EXPECT_EQ(Process(progress, runs), kProcessDone) << test.word;
            EXPECT_EQ(listener.heard, Numbers(12, lost)) << test.word;
            EXPECT_THAT(runs.LeftOutMessage(), HasSubstr(test.told));
            EXPECT_EQ(runs.LeftOutMessage().empty(), lost.empty());
        }
    }
    EXPECT_EQ(CountFiles(engine_.Path(), ".speech"), 0U);
}

TEST_F(NumbersReading, AStretchIsASentenceWhateverTheEngineEnds) {
    const std::string sentences[] = {"She said, \"This is number 1.\" and went to the U.S.",
                                     "How are you and the number 2 of it?",
                                     "1. Point to the number 3 there",
                                     "- Then to the number 4 (so he says)"};
    std::string text;
    for (const std::string& sentence : sentences)
        text += sentence + (sentence[0] == 'S' ? " " : "\n");
    SpeechReading reading(text, 0, SoundPath(), ReadingUse::kListening);
    reading.Start();
    ASSERT_EQ(Process(progress_, reading), kProcessDone);
    const LSoundSource source = reading.OpenSource();
    EXPECT_EQ(HearNumbers(*source), (std::vector<int>{1, 2, 1, 3, 4}));
    std::string heard;
    for (int frame = 0; frame < reading.Track().Frames(); frame += kFramesOfNumber) {
        const auto stretch = reading.Track().StretchAt(frame);
        ASSERT_TRUE(stretch);
        const std::string spoken =
            text.substr(stretch->sourceBegin, stretch->sourceEnd - stretch->sourceBegin);
        if (!heard.ends_with(spoken + "|"))
            heard += spoken + "|";
    }
    std::string expected;
    for (const std::string& sentence : sentences)
        expected += sentence + "|";
    EXPECT_EQ(heard, expected);
}

TEST_F(NumbersReading, PausesBeforeAndBehindHeadings) {
    const std::string text = "Heading 1\n\nThe number 2. The number 3.\n\n4\n\nThe number 5.";
    for (const ReadingUse use : {ReadingUse::kListening, ReadingUse::kSaving}) {
        SpeechReading reading(text, 0, SoundPath(), use);
        reading.SpeakBy({.headings = {0, text.find('4')}});
        reading.Start();
        ASSERT_EQ(Process(progress_, reading), kProcessDone);
        const LSoundSource source = reading.OpenSource();
        std::vector<int> heard = HearNumbers(*source);
        EXPECT_EQ(std::count(heard.begin(), heard.end(), 0), 3 * 24) << "0.6 seconds each";
        heard.erase(std::unique(heard.begin(), heard.end()), heard.end());
        EXPECT_EQ(heard, (std::vector<int>{1, 0, 2, 3, 0, 4, 0, 5}));
    }
}

TEST_F(NumbersReading, AnEngineThatSpeaksNothingIsGivenUpSoon) {
    for (const auto& [word, outcome] : {std::pair{"nothing", SynthesisOutcome::kNoSound},
                                        {"hang", SynthesisOutcome::kTimedOut}}) {
        const std::string text = Text(60, Numbers(60), word);
        Listener listener;
        PieceRuns runs(text, 0, engine_.Path() + "/", ReadingUse::kListening, listener);
        ImpatientProgress progress(engineHangs_);
        EXPECT_EQ(Process(progress, runs), kProcessFailed);
        EXPECT_EQ(runs.Outcome(), outcome);
        EXPECT_LT(CountLines(At("engine.log")), 30U);
        EXPECT_TRUE(ProcessesEnd(At("engine.ids")));
    }
}

TEST_F(NumbersReading, IsHeardWhileItIsSpokenAndKnowsWhichSentenceWhen) {
    std::ofstream(SoundPath()) << "an older reading";
    std::ifstream older(SoundPath());
    const std::string text = "\xe2\x80\x9cWell\xe2\x80\x9d \xe2\x80\x94 " + Text(20, {4}, "wait");
    SpeechReading reading(text, 0, SoundPath(), ReadingUse::kListening);
    reading.Start();
    ASSERT_EQ(Process(progress_, reading), kProcessDone);
    const LSoundSource source = reading.OpenSource();
    EXPECT_EQ(source->Status(), SoundStatus::kGood);
    EXPECT_EQ(source->SampleRate(), 16000);

    ASSERT_TRUE(Eventually([&] { return reading.Track().Frames() == 3 * kFramesOfNumber; }));
    EXPECT_TRUE(source->IsStreaming());
    // Where it runs dry it stands still.
    int block[4 * kFramesOfNumber];
    source->Seek(100 * kFramesOfNumber);
    EXPECT_EQ(source->GetPositionSample(), 3 * kFramesOfNumber);
    source->Seek(kFramesOfNumber);
    source->Read(block, 4 * kFramesOfNumber);
    EXPECT_EQ(block[kFramesOfNumber], 3 * kSampleOfNumber);
    EXPECT_EQ(block[2 * kFramesOfNumber], 0);
    EXPECT_EQ(source->GetPositionSample(), 3 * kFramesOfNumber);
    source->WaitForStreamingData(1);
    engine_.LetGo();
    EXPECT_EQ(HearNumbers(*source).front(), 4);
    source->Seek(0);
    EXPECT_EQ(HearNumbers(*source), Numbers(20));
    EXPECT_FALSE(source->IsStreaming());
    EXPECT_EQ(reading.Outcome(), SynthesisOutcome::kSpoken);
    EXPECT_EQ(reading.Message(), "");

    for (int i = 0; i < 20; ++i) {
        const int start = i * kFramesOfNumber;
        const auto stretch = reading.Track().StretchAt(start + kFramesOfNumber / 2);
        ASSERT_TRUE(stretch);
        const std::string spoken =
            text.substr(stretch->sourceBegin, stretch->sourceEnd - stretch->sourceBegin);
        EXPECT_THAT(spoken, HasSubstr(SpokenSentence(i + 1, i == 3 ? "wait" : "number")));
        EXPECT_EQ(stretch->firstFrame, start);
        EXPECT_EQ(stretch->endFrame, start + kFramesOfNumber);
        EXPECT_EQ(reading.Track().SentenceStart(start + 5), start);
        EXPECT_EQ(reading.Track().NextSentence(start + 5), start + kFramesOfNumber);
        EXPECT_EQ(reading.Track().PreviousSentence(start + 5),
                  std::max(start - kFramesOfNumber, 0));
    }
    EXPECT_FALSE(reading.Track().StretchAt(-1));
    EXPECT_FALSE(reading.Track().StretchAt(20 * kFramesOfNumber));
    EXPECT_EQ(LWaveFile::OpenSource(SoundPath().c_str())->GetEndSample(), 20 * kFramesOfNumber);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(older), {}), "an older reading");
}

TEST_F(NumbersReading, KnowsEachWordWhereTheEngineTellsIt) {
    const std::string text =
        "Not read. That is \"a\" 1 2 and (then) 3. Here is the number 4 untold! So is 5 of half.";
    const auto begin = text.find('T');
    for (const bool isFromReserve : {false, true}) {
        EngineReserve reserve;
        if (isFromReserve)
            reserve.Keep(0, engine_.Path() + "/");
        engine_.Write("engine", engine_.ReadFile(At("engine")) + "text2wave untold untold\n");
        SpeechReading reading(std::make_shared<const std::string>(text), begin, 0, SoundPath(),
                              ReadingUse::kListening);
        reading.KeepReserve(reserve);
        reading.Start();
        reading.Ended().WaitSignalForever();
        EXPECT_EQ(reading.Outcome(), SynthesisOutcome::kSpoken) << reading.Message();
        EXPECT_THAT(MarkedWords(reading.Track(), text),
                    testing::ElementsAre("0 1", "400 2", "800 3", "1600 5"))
            << "those that are heard; the last from a sound at half the rate";
        EXPECT_EQ(reading.Track().StretchAt(1500)->sourceEnd, text.find(" So"));
    }
    EXPECT_EQ(CountFiles(engine_.Path(), ".speech"), 0U);
}

TEST_F(NumbersReading, NeverRunsFarAheadOfTheListener) {
    // 600 numbers a sentence speak for 15 seconds.
    std::string text;
    for (int i = 1; i <= 12; ++i) {
        for (int n = 0; n < 100; ++n)
            text += std::to_string(i) + " ";
        text += "and so on.\n\n";
    }
    SpeechReading reading(text, 0, SoundPath(), ReadingUse::kListening);
    reading.Start();
    ASSERT_EQ(Process(progress_, reading), kProcessDone);
    const int sentence = 100 * kFramesOfNumber;
    const int most = 15 * 16000 + sentence;
    ASSERT_TRUE(Eventually([&] { return reading.Track().Frames() >= 15 * 16000; }));
    const LSoundSource source = reading.OpenSource();
    for (const int at : {1, sentence, 3 * sentence}) {
        source->Seek(at);
        EXPECT_TRUE(Eventually([&] { return reading.Track().FramesAhead() >= 15 * 16000; }));
        std::this_thread::sleep_for(std::chrono::milliseconds(50));  // no event tells of no run
        EXPECT_LE(reading.Track().FramesAhead(), most);
    }
    EXPECT_TRUE(source->IsStreaming());
}

TEST_F(NumbersReading, SavesTheWholeInFewRunsAndConvertsOtherRates) {
    struct : LSilentProgress {
        void SetFraction(double fraction) override { told.push_back(fraction); }
        std::vector<double> told;
    } progress;
    SpeechReading reading(Text(2000), 0, SoundPath(), ReadingUse::kSaving);
    reading.Start();
    EXPECT_EQ(Process(progress, reading), kProcessDone);
    ASSERT_FALSE(progress.told.empty());
    EXPECT_TRUE(std::is_sorted(progress.told.begin(), progress.told.end()));
    EXPECT_EQ(progress.told.back(), 1.0);
    EXPECT_LT(CountLines(At("engine.log")), 30U);
    const LSoundSource whole = LWaveFile::OpenSource(SoundPath().c_str());
    EXPECT_EQ(HearNumbers(*whole), Numbers(2000));

    SpeechReading mixed(Text(9, {4, 5}, "half"), 0, SoundPath(), ReadingUse::kListening);
    mixed.Start();
    ASSERT_EQ(Process(progress_, mixed), kProcessDone);
    const LSoundSource source = mixed.OpenSource();
    while (source->IsStreaming())
        source->WaitForStreamingData(100);
    EXPECT_EQ(source->SampleRate(), 16000);
    EXPECT_EQ(source->GetEndSample(), 9 * kFramesOfNumber);

    SpeechReading soft("The number 2000.", 0, SoundPath(), ReadingUse::kSaving);
    soft.SpeakBy({.manners = {{.volume = 50}}});
    soft.Start();
    ASSERT_EQ(Process(progress_, soft), kProcessDone);
    EXPECT_EQ(HearNumbers(*soft.OpenSource()), std::vector<int>{1000});
}

TEST_F(NumbersReading, SaysWhyItEnds) {
    const struct {
        const char* text;
        std::string path;
        SynthesisOutcome outcome;
    } cases[] = {
        {"...\n----", SoundPath(), SynthesisOutcome::kNothingToSay},
        {"", SoundPath(), SynthesisOutcome::kNothingToSay},
        {"Hello 1.", At("no/speech.wav"), SynthesisOutcome::kCannotWrite},
    };
    for (const auto& test : cases) {
        SpeechReading reading(test.text, 0, test.path, ReadingUse::kListening);
        reading.Start();
        EXPECT_EQ(Process(progress_, reading), kProcessFailed);
        EXPECT_EQ(reading.Outcome(), test.outcome) << test.text;
        EXPECT_EQ(reading.Message(), SynthesisMessage(test.outcome));
        EXPECT_NE(reading.OpenSource()->Status(), SoundStatus::kGood);
    }
    SpeechReading replaced(Text(3), 0, SoundPath(), ReadingUse::kListening);
    replaced.Start();
    ASSERT_EQ(Process(progress_, replaced), kProcessDone);
    const LSoundSource early = replaced.OpenSource();
    std::filesystem::remove(SoundPath());
    EXPECT_NE(replaced.OpenSource()->Status(), SoundStatus::kGood);
    std::filesystem::copy_file(At("good.wav"), SoundPath());
    EXPECT_NE(replaced.OpenSource()->Status(), SoundStatus::kGood);
    EXPECT_EQ(HearNumbers(*early), Numbers(3)) << "who reads it already keeps it";
}

TEST_F(NumbersReading, PlaysWhatIsThereWhenTheDiskIsFull) {
    InFreshProcess([this] {
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{20 * kFramesOfNumber, 20 * kFramesOfNumber};
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
        SpeechReading reading(Text(30), 0, SoundPath(), ReadingUse::kListening);
        reading.Start();
        ASSERT_EQ(Process(progress_, reading), kProcessDone);
        EXPECT_EQ(HearNumbers(*reading.OpenSource()), Numbers(9));
        EXPECT_EQ(reading.Outcome(), SynthesisOutcome::kCannotWrite);
    });
}

TEST_F(NumbersReading, EndsInEveryPhaseAndLeavesNothing) {
    std::mt19937 random(7);  // the moments differ with the machine all the same
    const std::string texts[] = {Text(40), Text(10, {2}, "hang"), Text(10, {3}, "die"), ""};
    {
        SpeechReading first(texts[0], 0, SoundPath(), ReadingUse::kListening);  // lazy statics
        first.Start();
    }
    const std::size_t descriptors = CountFiles("/proc/self/fd");
    for (int i = 0; i < 60; ++i) {
        SpeechReading reading(texts[i % 4], 0, SoundPath(),
                              i % 3 == 0 ? ReadingUse::kSaving : ReadingUse::kListening);
        reading.Start();
        const auto until =
            std::chrono::steady_clock::now() + std::chrono::microseconds(random() % 150000);
        std::thread player([&] {
            LSoundSource source = reading.OpenSource();
            int block[1000];
            while (std::chrono::steady_clock::now() < until) {
                if (source->Status() != SoundStatus::kGood) {
                    reading.FirstSound().WaitSignal(5);
                    source = reading.OpenSource();
                }
                source->Read(block, 1000);
                source->Seek(static_cast<int>(i * 997 % (reading.Track().Frames() + 1)));
                source->WaitForStreamingData(1);
            }
        });
        std::this_thread::sleep_until(until);
        reading.Stop();
        player.join();
        EXPECT_TRUE(reading.Ended().IsSignaled());
        EXPECT_TRUE(reading.Track().IsComplete());
    }
    EXPECT_TRUE(ProcessesEnd(At("engine.ids")));
    EXPECT_TRUE(Eventually([&] { return CountFiles("/proc/self/fd") <= descriptors; }));
    EXPECT_TRUE(Eventually([&] { return CountFiles("/proc/self/task") <= 2; }));
    EXPECT_EQ(CountFiles(engine_.Path(), ".speech"), 0U);
}

TEST(SpeechEstimate, TellsWhatDoesNotFitBeforeItBegins) {
    const std::size_t most = LargestTextForOneFile();
    EXPECT_NEAR(static_cast<double>(most), 1.9e6, 0.1e6);
    EXPECT_NEAR(EstimateSpeech(20000).seconds, 1304, 200);  // as the installed voice speaks it
    EXPECT_THAT(SavingProblem(std::string(10 * most, 'a'), "/tmp"),
                HasSubstr("more than one sound file can hold"));
    EXPECT_EQ(SavingProblem(std::string(100, 'a'), "/tmp"), "");
    EXPECT_THAT(SavingProblem(std::string(100, 'a'), "/proc"), HasSubstr("0.0 MB are free"));
    EXPECT_EQ(LettersIn("Слово 語."), 11U);
    EXPECT_EQ(OwnLetters(1900, "語語語語"), 400U) << "what the user is told are the text's own";
}

}  // namespace
