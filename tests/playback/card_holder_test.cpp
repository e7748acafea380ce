#include "playback/card_holder.h"

#include <gtest/gtest.h>

#include "tests/support/scratch_folder.h"

namespace {

TEST(CardHolder, IsWhoeverTheKernelNames) {
    const ScratchFolder kernel;
    for (const char* const stream : {"pcm0c/sub0", "pcm0p/sub0", "pcm3p/sub1"})
        std::filesystem::create_directories(kernel / ("asound/card1/" + std::string(stream)));
    std::filesystem::create_directories(kernel / "812");
    kernel.Write("asound/card1/pcm0c/sub0/status", "state: RUNNING\nowner_pid   : 812\n");
    kernel.Write("asound/card1/pcm0p/sub0/status", "closed\n");
    kernel.Write("812/comm", "music player\n");
    EXPECT_EQ(CardHolder(1, kernel.Path()), "") << "it records";
    kernel.Write("asound/card1/pcm3p/sub1/status", "state: RUNNING\nowner_pid   : 812\n");
    EXPECT_EQ(CardHolder(1, kernel.Path()), "music player");
    EXPECT_EQ(CardHolder(0, kernel.Path()), "");
}

}  // namespace
