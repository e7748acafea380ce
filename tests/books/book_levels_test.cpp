// One level for each voice of a book, from its first minute on and through a restart.
#include "books/book_levels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "formats/wave_file.h"
#include "tests/support/scratch_folder.h"

namespace {

// Seconds of a square wave, whose loudness is that of its samples.
LSoundSource Section(const std::string& path, int seconds, int peak) {
    {
        const LSoundSink sink = LWaveFile::OpenSinkPCM(path.c_str(), 8000, 1, 16, 0);
        std::vector<int> second(8000);
        for (std::size_t i = 0; i < second.size(); ++i)
            second[i] = i / 8 % 2 == 0 ? peak : -peak;
        for (; seconds > 0; --seconds)
            sink->Write(second.data(), 8000);
    }
    return LWaveFile::OpenSource(path.c_str());
}

TEST(BookLevels, EachVoiceKeepsTheLevelOfItsFirstMinute) {
    const ScratchFolder folder;
    BookLevels levels;
    const std::vector<VoiceTurn> both = {{0, "loud"}, {30 * 8000, "quiet one"}};
    levels.Measure(Section(folder / "a", 30, 200000), {{0, "loud"}});
    levels.Measure(Section(folder / "b", 40, 20000), {{0, "quiet one"}});
    const std::vector<LevelStretch> first = levels.LevelsOf(both);
    ASSERT_EQ(first.size(), 2U);
    EXPECT_NEAR(std::min(first[0].change + 2000, 2000), first[1].change, 2);  // ten times as loud
    levels.Measure(Section(folder / "c", 40, 20000), {{0, "quiet one"}});
    const int settled = levels.LevelsOf(both)[1].change;
    levels.Measure(Section(folder / "d", 40, 200000), {{0, "quiet one"}});
    EXPECT_EQ(levels.LevelsOf(both)[1].change, settled);
    levels.Measure(Section(folder / "e", 30, 100000), {{0, "loud"}});
    EXPECT_GT(levels.LevelsOf(both)[0].change, first[0].change);
    BookLevels kept;
    kept.Load(levels.Stored() + "damaged\n-1 2 other\n");
    EXPECT_EQ(kept.Stored(), levels.Stored());
}

}  // namespace
