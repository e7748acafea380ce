#include "sound/tempo.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "sound/pitch.h"
#include "tests/support/memory_sound.h"
#include "tests/support/signals.h"

namespace {

constexpr int kTempoRate = 16000;
constexpr int kFrames = 10 * kTempoRate;

struct Heard {
    std::vector<int> samples;
    std::vector<int> positions;  // of the source before each block of kTempoBlock frames
};
constexpr int kTempoBlock = 400;

// What a player does: never asks for more than is there, and waits where a source grows.
Heard Play(LTempoSource& source) {
    Heard heard;
    while (source.ReadableFrames() > 0 || source.IsStreaming()) {
        const int readable = source.ReadableFrames();
        if (readable < 1) {
            source.WaitForStreamingData(1);
            continue;
        }
        heard.positions.push_back(source.GetPositionSample());
        std::vector<int> block(static_cast<std::size_t>(std::min(kTempoBlock, readable)));
        source.Read(block.data(), static_cast<int>(block.size()));
        heard.samples.insert(heard.samples.end(), block.begin(), block.end());
    }
    heard.positions.push_back(source.GetPositionSample());
    return heard;
}

// A tone that steps up each second, so that a place in the text is known by its pitch.
std::vector<int> Scale() {
    std::vector<int> samples;
    double phase = 0;
    for (int i = 0; i < kFrames; ++i) {
        const int hertz = 200 + 50 * (i / kTempoRate);
        phase += 2 * std::numbers::pi * hertz / kTempoRate;
        samples.push_back(static_cast<int>(300000 * std::sin(phase)));
    }
    return samples;
}

TEST(TempoTest, TimeFollowsTheTempoAndPitchDoesNot) {
    for (const int percent : {50, 80, 150, 300}) {
        for (const bool grows : {false, true}) {
            auto* inner = new MemorySource(Scale(), kTempoRate);
            if (grows)
                inner->SetStreaming(0, 3000);
            const LSoundSource handle(inner);
            auto tempo = std::make_shared<LTempo>();
            tempo->Set(percent);
            LTempoSource source(handle, tempo);
            const Heard heard = Play(source);
            EXPECT_NEAR(static_cast<double>(heard.samples.size()), kFrames * 100.0 / percent,
                        0.05 * kTempoRate)
                << percent << grows;
            EXPECT_EQ(heard.positions.back(), kFrames) << percent << grows;
            // Half a second into each second of the text its own tone is heard, and nothing of the
            // neighbours.
            for (int second = 0; second < 10; ++second) {
                const auto at =
                    static_cast<std::size_t>((second + 0.5) * kTempoRate * 100 / percent);
                const std::vector<int> here(heard.samples.begin() + static_cast<long>(at) - 1600,
                                            heard.samples.begin() + static_cast<long>(at) + 1600);
                EXPECT_GT(AmplitudeAt(here, (200.0 + 50 * second) / kTempoRate), 250000)
                    << percent << grows << second;
                // ... when the source says that it stands there.
                EXPECT_TRUE(grows || std::abs(heard.positions[at / kTempoBlock] -
                                              (second + 0.5) * kTempoRate) <= 0.06 * kTempoRate)
                    << percent << second;
            }
        }
    }
}

TEST(TempoTest, OwnTempoPassesUnchangedAndChangesAreHeardAtOnce) {
    const std::vector<int> samples = Scale();
    auto tempo = std::make_shared<LTempo>();
    const LSoundSource handle(new MemorySource(samples, kTempoRate));
    LTempoSource source(handle, tempo);
    std::vector<int> block(4000);
    source.Read(block.data(), 4000);
    EXPECT_TRUE(std::equal(block.begin(), block.end(), samples.begin()));
    tempo->Set(1000);
    source.Read(block.data(), 4000);
    constexpr int kMost = LTempo::kFastestPercent / LTempo::kOwnPercent;
    EXPECT_NEAR(source.GetPositionSample(), 4000 + kMost * 4000, 0.1 * kTempoRate);
    tempo->Set(LTempo::kOwnPercent);
    source.Seek(20000);
    source.Read(block.data(), 4000);
    EXPECT_TRUE(std::equal(block.begin(), block.end(), samples.begin() + 20000));
}

// Four times as fast as its time tells.
class FastSource final : public MemorySource {
public:
    FastSource() : MemorySource(Scale(), kTempoRate) {}
    int TimeRate() const override { return kTempoRate / 4; }
};

TEST(TempoTest, WhatWasSpokenAtTheTempoPassesUnchanged) {
    auto tempo = std::make_shared<LTempo>();
    tempo->Set(400);
    const LSoundSource handle(new FastSource());
    LTempoSource source(handle, tempo);
    std::vector<int> block(4000);
    source.Read(block.data(), 4000);
    const std::vector<int> spoken = Scale();
    EXPECT_TRUE(std::equal(block.begin(), block.end(), spoken.begin()));
    tempo->Set(200);
    source.Read(block.data(), 4000);
    EXPECT_NEAR(source.GetPositionSample(), 4000 + 2000, 0.1 * kTempoRate);
}

TEST(PitchTest, PitchAndVolumeFollowAndTimeDoesNot) {
    for (const int percent : {60, 100, 165}) {
        const LSoundSource own(new MemorySource(Scale(), kTempoRate));
        const LSoundSource changed = AtPitchAndVolume(own, percent, 50);
        ASSERT_EQ(changed->GetEndSample(), kFrames);
        for (int second = 0; second < 10; ++second) {
            std::vector<int> here(3200);
            changed->Seek(second * kTempoRate + 6400);
            changed->Read(here.data(), 3200);
            const double hertz = (200 + 50 * second) * percent / 100.0;
            EXPECT_NEAR(AmplitudeAt(here, hertz / kTempoRate), 150000, 30000) << percent << second;
        }
        std::vector<int> behind(10, 1);
        changed->Seek(kFrames - 5);
        changed->Read(behind.data(), 10);
        EXPECT_EQ(behind.back(), 0);
    }
    const LSoundSource own(new MemorySource(Scale(), kTempoRate));
    EXPECT_EQ(&*AtPitchAndVolume(own, 100, 100), &*own);
}

}  // namespace
