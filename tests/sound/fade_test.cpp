#include "sound/fade.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <vector>

namespace {

constexpr int kFadeRate = 8000;
constexpr int kFull = 500000;

// What becomes of so many milliseconds of full loudness on two channels, in blocks of odd sizes.
std::vector<int> Faded(LFade& fade, int milliseconds, int unheardMilliseconds = 0) {
    std::vector<int> samples(static_cast<std::size_t>(kFadeRate / 1000 * milliseconds * 2), kFull);
    const int frames = static_cast<int>(samples.size()) / 2;
    for (int from = 0; from < frames; from += 333)
        fade.Apply(samples.data() + from * 2, std::min(333, frames - from), 2, kFadeRate,
                   kFadeRate / 1000 * unheardMilliseconds);
    return samples;
}

int LargestJump(const std::vector<int>& samples) {
    int largest = 0;
    for (std::size_t at = 2; at < samples.size(); ++at)
        largest = std::max(largest, std::abs(samples[at] - samples[at - 2]));
    return largest;
}

TEST(FadeTest, GoesAndComesBackWithoutAClick) {
    LFade fade;
    EXPECT_THAT(Faded(fade, 100), testing::Each(kFull));
    fade.Out(1000);
    std::vector<int> heard = Faded(fade, 500);
    EXPECT_NEAR(heard.back(), kFull * 0.25, kFull * 0.01) << "on both channels alike";
    fade.Out(250);  // in haste
    for (const int milliseconds : {150, 100}) {
        const std::vector<int> more = Faded(fade, milliseconds);
        heard.insert(heard.end(), more.begin(), more.end());
    }
    EXPECT_EQ(heard.back(), 0);
    fade.Back();
    const std::vector<int> back = Faded(fade, 400);
    heard.insert(heard.end(), back.begin(), back.end());
    EXPECT_EQ(heard.back(), kFull);
    EXPECT_LT(LargestJump(heard), kFull / 500);
}

TEST(FadeTest, IsSilentToTheEarWhenItWasAskedToBe) {
    LFade fade;
    fade.Out(1000);
    EXPECT_NE(Faded(fade, 390, 600).back(), 0);
    EXPECT_EQ(Faded(fade, 15, 600).back(), 0);
}

}  // namespace
