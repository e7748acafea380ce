#include "playback/play_device.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "foundation/files/text_buffer.h"
#include "playback/mixer.h"
#include "playback/mixer_setter.h"
#include "tests/support/eventually.h"
#include "tests/support/virtual_card.h"

namespace {

TEST(Mixer, MapsDecibelsLinearlyToRawValues) {
    const struct {
        long decibels, minimum, maximum, raw;
    } cases[] = {
        {20, 0, 87, 87}, {-50, 0, 87, 0}, {-36, 0, 87, 0},
        {0, 0, 87, 65},  {12, 0, 87, 87}, {12, 10, 58, 48},  // not offset by the minimum
        {0, 0, 0, 0},    {0, 50, 0, 0},   {12, 0, 2147483647L, 2147483647L},
    };
    for (const auto& test : cases)
        EXPECT_EQ(MixerRawVolume(test.decibels, test.minimum, test.maximum), test.raw)
            << test.decibels << " in " << test.minimum << ".." << test.maximum;
}

TEST(PlayDevice, TellsWhetherTheMixerAnswers) {
    VirtualCards cards;
    cards.Insert(0, "element Mic_Capture 0 15\n");
    const LSoundPlayDevice device(0);
    device.SetVolume(LDB(-12));
    EXPECT_EQ(cards.Mixer(0), "Mic_Capture 7 7\n");
    EXPECT_EQ(device.GetVolumeStandard(), LDB(-36));
    EXPECT_EQ(LSoundPlayDevice(5).GetVolumeStandard(), LDB(0));
    EXPECT_EQ(LSoundPlayDevice(5).InitVolume(true, 0), -1);
}

TEST(MixerSetter, WaitsForNoMixerThatStandsStillAndSetsTheLastVolume) {
    VirtualCards cards;
    const std::string element = "element Master 0 48\n";
    cards.Insert(0, element);
    auto setter = std::make_unique<MixerSetter>();
    EXPECT_EQ(setter->Set(LSoundPlayDevice(0), LDB(-30)), MixerResult::kDone);
    EXPECT_EQ(cards.Mixer(0), "Master 6 6\n");
    cards.Insert(0, element + "fault deaf\n");
    for (const int volume : {-20, -10, 0})
        EXPECT_EQ(setter->Set(LSoundPlayDevice(0), LDB(volume)), MixerResult::kUnanswered);
    setter.reset();
    EXPECT_EQ(cards.Mixer(0), "Master 6 6\n");
    cards.Insert(0, element);
    EXPECT_TRUE(Eventually([&] { return cards.Mixer(0) == "Master 36 36\n"; }));
}

TEST(PlayDevice, IsFoundByTheNameOfItsCard) {
    VirtualCards cards;
    cards.Insert(0, "name First Card\n");
    cards.Insert(3, "name Second Card\n");
    const struct {
        const char* name;
        int card;
    } cases[] = {{"First Card", 0}, {"Second Card", 3},          {"second card", 0},
                 {"Second", 0},     {"Default Sound Device", 0}, {"", 0}};
    for (const auto& test : cases)
        EXPECT_EQ(LSoundPlayDevice(test.name).Card(), test.card) << test.name;
    char name[kTextBufferSize];
    LSoundPlayDevice(3).GetDeviceName(name);
    EXPECT_STREQ(name, "Second Card");
    LSoundPlayDevice::GetListDeviceName(1, name);
    EXPECT_STREQ(name, "");
}

}  // namespace
