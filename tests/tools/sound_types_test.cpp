// The names that both programs share.
#include "tools/sound_types.h"

#include <gtest/gtest.h>

namespace {

TEST(SoundTypesTest, NamesAreReadInAnyCaseAndOnlyAtTheEndOfThePath) {
    EXPECT_EQ(SoundTypeOfPath("/a.b/c.WAV"), SoundType::kWav);
    EXPECT_EQ(SoundTypeOfPath("a.wav.aIfF"), SoundType::kAiff);
    EXPECT_EQ(SoundTypeOfPath("x.snd"), SoundType::kAu);
    for (const char* path : {"", "wav", "/a.wav/b", "a.", "a.wav ", "a.wavx"})
        EXPECT_FALSE(SoundTypeOfPath(path)) << path;
}

}  // namespace
