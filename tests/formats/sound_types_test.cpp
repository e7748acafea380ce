#include "formats/sound_types.h"

#include <gtest/gtest.h>

#include "formats/au_file.h"
#include "formats/settings_keys.h"
#include "tests/support/scratch_folder.h"

namespace {

TEST(SoundTypes, AreOfferedWavAndMp3FirstAndWrittenAsTheUserHasSetThem) {
    kAuCodecSetting.Set(kAuALaw);
    kAuRateSetting.Set(11025);
    kAuChannelsSetting.Set(1);
    kAiffRateSetting.Set(32000);
    RawCodecSetting(kRawSavingSection).Set(kRawFloat);
    RawRateSetting(kRawSavingSection).Set(6000);
    const struct {
        SoundType type;
        int rate, channels;
        std::size_t size;  // of a second
    } cases[] = {{SoundType::kWav, 44100, 1, 46 + 88200},   {SoundType::kAu, 11025, 1, 24 + 11025},
                 {SoundType::kAiff, 32000, 2, 54 + 128000}, {SoundType::kGsm, 8000, 1, 1650},
                 {SoundType::kVox, 8000, 1, 4000},          {SoundType::kRaw, 6000, 2, 48000},
                 {SoundType::kMuLaw, 8000, 1, 8000},        {SoundType::kALaw, 8000, 1, 8000},
                 {SoundType::kFlac, 16000, 1, 0},           {SoundType::kOpus, 48000, 1, 0}};
    const ScratchFolder folder;
    std::vector<SoundType> offered = {SoundType::kWav, SoundType::kMp3};
    for (const auto& [type, rate, channels, size] : cases) {
        const std::string path = folder / "sound";
        LSoundSink sink = RowOf(type).openSinkAsSet(path.c_str(), {16000, 1, 0});
        EXPECT_EQ(sink->SampleRate(), rate) << NameOf(type);
        EXPECT_EQ(sink->Channels(), channels) << NameOf(type);
        const std::vector<int> second(static_cast<std::size_t>(rate * channels));
        for (int at = 0; at < rate; at += 1000)
            sink->Write(second.data(), std::min(1000, rate - at));
        EXPECT_EQ(sink->Finish(), 0);
        if (size > 0) {
            EXPECT_EQ(std::filesystem::file_size(path), size) << NameOf(type);
        }
        if (type != SoundType::kWav)
            offered.push_back(type);
    }
    EXPECT_EQ(WritableSoundTypes(), offered);
    EXPECT_EQ(ChooserFilter(SoundType::kAu), std::string("Au Files\0*.au;*.AU;*.snd;*.SND\0", 31));
    EXPECT_STREQ(RowOf(SoundType::kMp3).component, "mp3el");
    EXPECT_EQ(SoundTypeOfPath("/a.wav/Lesson.MP3"), SoundType::kMp3);
}

}  // namespace
