#include <gmock/gmock.h>

#include <cstdlib>
#include <functional>
#include <numeric>

#include "speech/speech_reading.h"
#include "speech/voice_list_query.h"
#include "tests/speech/fake_engine.h"
#include "tests/speech/marked_words.h"

namespace {

// Festival reads beyond its pitch marks: the noise of a pause hangs on what its memory held before,
// and one run in fifteen of this text clicks or hums there for a moment, on the command line too. A
// word that is said otherwise is longer than all that, and would make another length.
constexpr int kMostNoise = 3200;  // frames of all, 0.2 s

bool IsOtherSound(int one, int other) {
    constexpr int kQuiet = 100 * 64;  // of 16 bits
    return one != other && (std::abs(one) >= kQuiet || std::abs(other) >= kQuiet);
}

void CompareWithOneRun() {
    const std::string text =
        "Hello.\n----\nWorld. He said \"!!!\" \"???\" and left.\n\nControl \x01 bytes.\n"
        "\x02\nEnd\n\nFaces \xf0\x9f\x98\x80.\n\xf0\x9f\x98\x80\nEnd\n\n“Curly” — ‘quotes’ "
        "…\n…\n“”\n\n"
        "a -- -- b ... -- !\n\n\"\n\nEnd! ? " +
        std::string(600, 'x') + " = " + std::string(500, '=') +
        "\n\nIt was the best of times; it was the worst! Was it? Mr. Smith paid 3.50 "
        "dollars, e.g. for \"tea\" (two cups) in the U.S. Was that much?\n\nNo. 7 is here: well - "
        "almost. \"Go!\" she said. He went... and then came back.\nA line\nwith breaks. The end";
    LSilentProgress progress;
    VoiceListQuery voices;
    ASSERT_EQ(Process(progress, voices), kProcessDone);
    const FakeEngine folder;  // only for its folder: the installed engine speaks
    const std::string whole = folder / "whole.wav";
    LTTS request;
    request.text = text.c_str();
    request.outputPath = whole.c_str();
    ASSERT_EQ(Process(progress, request), kProcessDone) << SynthesisMessage(request.outcome);
    const LSoundSource expected = LWaveFile::OpenSource(whole.c_str());
    SpeechReading reading(text, 0, folder / "pieces.wav", ReadingUse::kListening);
    reading.Start();
    ASSERT_EQ(Process(progress, reading), kProcessDone);
    const LSoundSource source = reading.OpenSource();
    while (source->IsStreaming()) {
        source->Seek(source->GetEndSample());
        source->WaitForStreamingData(1000);
    }
    EXPECT_EQ(reading.Message(), "") << "emoji are said";
    const std::vector<std::string> words = MarkedWords(reading.Track(), text);
    ASSERT_EQ(words.size(), 71U);
    EXPECT_THAT(words.back(), testing::HasSubstr("end"));
    ASSERT_EQ(source->GetEndSample(), expected->GetEndSample());
    source->Seek(0);
    std::vector<int> first(8192), second(8192);
    int others = 0;
    for (int at = 0; at < expected->GetEndSample(); at += 8192) {
        expected->Read(first.data(), 8192);
        source->Read(second.data(), 8192);
        others += std::inner_product(first.begin(), first.end(), second.begin(), 0, std::plus<>(),
                                     IsOtherSound);
    }
    EXPECT_LT(others, kMostNoise);
}

TEST(RealEngine, SpeaksWhatKillsItUnpreparedAndPiecesJoinedAreWhatOneRunSays) {
    InFreshProcess(CompareWithOneRun);
}

}  // namespace
