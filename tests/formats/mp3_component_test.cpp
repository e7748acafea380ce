// The encoder component as it is served, over the real LAME.
#include <cmath>
#include <cstdlib>

#include "formats/mp3_sink.h"
#include "formats/raw_file.h"
#include "sound/convert.h"
#include "tests/formats/format_files.h"
#include "tests/support/signals.h"

namespace {

class Mp3Component : public FormatTest {};

TEST_F(Mp3Component, KeepsTheSound) {
    const ScopedVariable home("HOME", Path("").c_str());
    ASSERT_EQ(std::system("bash " FORMATS_TESTS_FOLDER "/../../share/components/mp3el"), 0);
    const LMp3EncodeSettings vbr{.constantBitRate = false, .vbrMinBitRate = 32};
    const struct {
        const char* name;
        LMp3EncodeSettings settings;
        int rate;
        unsigned char channels;
        unsigned char decodedChannels;
    } cases[] = {{"joint", {}, 44100, 2, 2},
                 {"downmix", {.errorProtection = true, .channelMode = 3}, 44100, 2, 1},
                 {"variable", vbr, 22050, 1, 1},
                 {"slow", {.cbrBitRate = 16, .highQuality = false}, 8000, 1, 1},
                 {"fast", {.cbrBitRate = 320, .channelMode = 0}, 44100, 2, 2}};
    for (auto test : cases) {
        SCOPED_TRACE(test.name);
        const std::string path = Path(test.name) + ".mp3";
        LSoundSink sink = OpenMp3Sink(path.c_str(), test.settings, test.rate, test.channels);
        ASSERT_EQ(sink->SampleRate(), test.rate);
        const std::vector<int> tone = Tone(440, test.rate, 2 * test.rate, 200000);
        std::vector<int> sound;
        for (const int sample : tone)
            sound.insert(sound.end(), sink->Channels(), sample);
        WriteAll(sink, sound);
        ASSERT_EQ(sink->Finish(), 0);
        ASSERT_EQ(std::system(("lame --quiet --decode -t " + path + " " + Path("out.raw")).c_str()),
                  0);
        const LRawSettings decoded{test.rate, test.decodedChannels, kRawPcm16};
        const LSoundSource source = LRawFile::OpenSource(Path("out.raw").c_str(), decoded);
        ASSERT_NEAR(source->GetEndSample(), 2 * test.rate, 4000);
        LSPConvChannels left(1);
        const std::vector<int> heard = ReadAll(left.OpenSource(source));
        EXPECT_NEAR(AmplitudeAt(heard, 440.0 / test.rate), 200000, 16000);
        double power = 0;
        for (std::size_t i = 4000; i < 8000; ++i)
            power += std::pow(heard[i], 2);
        EXPECT_NEAR(std::sqrt(power / 2000), 200000, 16000) << "there is more than the tone";
    }
}

}  // namespace
