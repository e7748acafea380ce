#include "speech/voices_instead.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <numeric>

#include "speech/piece_runs.h"
#include "speech/voice_table.h"
#include "tests/speech/numbers_engine.h"

namespace {

using testing::HasSubstr;

// Takes an engine away once it has spoken.
class TakerAndRemover final : public SpokenPieceTaker {
public:
    explicit TakerAndRemover(std::string program) : program_(std::move(program)) {}
    SynthesisOutcome TakePiece(const LSoundSource& sound, const SpeechPiece&) override {
        std::filesystem::remove(program_);
        const std::vector<int> more = HearNumbers(*sound);
        heard.insert(heard.end(), more.begin(), more.end());
        return SynthesisOutcome::kSpoken;
    }
    std::vector<int> heard;

private:
    const std::string program_;
};

// What is heard of a text with headings whose voice goes once a first piece was spoken.
std::vector<int> HeardWithHeadings(const FakeEngine& engine, const std::string& text) {
    SpeakingRules rules;
    for (std::size_t at = text.find("Head"); at != text.npos; at = text.find("Head", at + 1))
        rules.headings.push_back(at);
    std::filesystem::create_symlink(LECTORA_ENGINE_DOUBLE "/text2wave", engine / "bin/text2wave");
    LSilentProgress progress;
    TakerAndRemover listener(engine / "bin/text2wave");
    PieceRuns runs(text, FindVoice("ked"), engine.Path() + "/", ReadingUse::kListening, listener,
                   rules);
    EXPECT_EQ(Process(progress, runs), kProcessDone);
    std::vector<int>& heard = listener.heard;
    heard.erase(std::unique(heard.begin(), heard.end()), heard.end());
    return heard;
}

// Festival is removed after the first sentence, Flite was never there, and one voice of eSpeak NG
// has been removed.
void GoOnWithTheNextVoice() {
    const FakeEngine engine(true);
    const ScopedVariable desktop("LECTORA_DESKTOP", engine.Path().c_str());
    engine.Write("engine", "text2wave numbers\n");
    const std::string speaker = LECTORA_ENGINE_DOUBLE "/text2wave";
    engine.Script("espeak-ng", "[ $4 = gone ] || exec " + speaker + " -eval x \"$6\" -o \"$8\"");
    const auto voice = [](const char* row, const char* name, const char* tag) {
        return Voice{row, name, name, tag, VoiceCharset::kUnicode};
    };
    AddVoices({voice("festival", "ked", "en-US"), voice("espeak-ng", "fr", "fr"),
               voice("flite", "slt", "en-US"), voice("espeak-ng", "gone", "en-US"),
               voice("espeak-ng", "en-gb", "en-GB")});
    std::string text;
    for (int number = 1; number <= 12; ++number)
        text += "This sentence says the number " + std::to_string(number) + ". ";
    std::vector<int> numbers(12);
    std::iota(numbers.begin(), numbers.end(), 1);
    EXPECT_EQ(HeardWithHeadings(engine, "Head 1\n\nSay 2. Say 3.\n\nHead 4\n\nSay 5."),
              (std::vector<int>{1, 0, 2, 3, 0, 4, 0, 5}));
    EXPECT_EQ(HeardWithHeadings(engine, "Head 1. Its part 2\n\nSay 3."),
              (std::vector<int>{1, 2, 0, 3}));
    std::filesystem::create_symlink(speaker, engine / "bin/text2wave");
    LSilentProgress progress;
    TakerAndRemover listener(engine / "bin/text2wave");
    const std::string folder = engine.Path() + "/";
    PieceRuns runs(text, FindVoice("ked"), folder, ReadingUse::kListening, listener);
    EXPECT_EQ(Process(progress, runs), kProcessDone);
    EXPECT_EQ(listener.heard, numbers);
    EXPECT_THAT(runs.LeftOutMessage(),
                testing::AllOf(HasSubstr("ked could not speak any more; en-gb read on"),
                               testing::Not(HasSubstr("left out"))));
    std::filesystem::remove(engine / "bin/espeak-ng");
    PieceRuns none(text, FindVoice("en-gb"), folder, ReadingUse::kListening, listener);
    EXPECT_EQ(Process(progress, none), kProcessFailed);
    EXPECT_EQ(none.Outcome(), SynthesisOutcome::kEngineMissing);
}

TEST(VoicesInstead, GoOnWhenOneVanishes) {
    InFreshProcess(GoOnWithTheNextVoice);
}

}  // namespace
