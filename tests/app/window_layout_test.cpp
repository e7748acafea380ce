#include "app/window/window_layout.h"

#include <gtest/gtest.h>

#include <array>
#include <ostream>

bool operator==(const LayoutPlace& a, const LayoutPlace& b) {
    return a.x == b.x && a.y == b.y && a.width == b.width && a.height == b.height &&
           a.isShown == b.isShown;
}
std::ostream& operator<<(std::ostream& out, const LayoutPlace& place) {
    return out << place.x << ',' << place.y << ' ' << place.width << 'x' << place.height
               << (place.isShown ? "" : " hidden");
}

namespace {

LayoutSizes Sizes(int width, int height, int lettersHeight) {
    LayoutSizes sizes{.width = width, .height = height, .wantsCommandBar = true};
    sizes.labelWidth = 6 * lettersHeight;
    sizes.labelHeight = lettersHeight;
    sizes.listHeight = lettersHeight + 8;
    sizes.buttonWidth = 50 + 6 * lettersHeight;
    sizes.buttonHeight = 20 + lettersHeight;
    return sizes;
}

TEST(WindowLayoutTest, AWindowOfTheUsualSizeHasTheBarAtTheLeftAndAllElseInOneRow) {
    const WindowLayout layout = LayOut(Sizes(800, 480, 16));
    EXPECT_EQ((LayoutPlace{0, 0, 180, 474}), layout.commandBar);
    EXPECT_EQ((LayoutPlace{185, 0, 615, 414}), layout.text);
    EXPECT_EQ((LayoutPlace{188, 422, 286, 28}), layout.voiceLabel);
    EXPECT_EQ((LayoutPlace{188, 450, 286, 24}), layout.voiceList);
    EXPECT_EQ((LayoutPlace{492, 420, 150, 54}), layout.readButton);
    EXPECT_EQ((LayoutPlace{646, 420, 150, 54}), layout.saveButton);
    EXPECT_FALSE(layout.bars.isShown);
    LayoutSizes sizes = Sizes(800, 480, 16);
    sizes.wantsContents = true;
    EXPECT_EQ((LayoutPlace{185, 0, 205, 414}), LayOut(sizes).contents);
    EXPECT_EQ((LayoutPlace{398, 0, 402, 414}), LayOut(sizes).text);
}

TEST(WindowLayoutTest, LargeButtonsGrowWithTheirLettersWhereThereIsRoom) {
    const WindowLayout large = LayOut(Sizes(1280, 700, 40));
    EXPECT_EQ((LayoutPlace{692, 634, 290, 60}), large.readButton);
    EXPECT_EQ((LayoutPlace{986, 634, 290, 60}), large.saveButton);
    EXPECT_EQ(150, LayOut(Sizes(312, 400, 40)).readButton.width);
}

// At every size that the window can have, with small letters and large ones.
TEST(WindowLayoutTest, NothingLiesOverAnythingAndTheTextKeepsRoom) {
    for (int width = 280; width <= 1300; width += 7) {
        for (int height = 160; height <= 900; height += 37) {
            for (const int letters : {12, 16, 24, 40}) {
                for (const bool hasFind : {false, true}) {
                    LayoutSizes sizes = Sizes(width, height, letters);
                    sizes.isLow = height < 250;
                    sizes.wantsContents = hasFind;
                    sizes.hasVoices = !sizes.isLow || !hasFind;
                    sizes.barsHeight = hasFind ? letters + 10 : 0;
                    const WindowLayout layout = LayOut(sizes);
                    const std::array places = {
                        layout.commandBar, layout.contents,  layout.text,       layout.bars,
                        layout.voiceLabel, layout.voiceList, layout.readButton, layout.saveButton};
                    SCOPED_TRACE(testing::Message() << width << 'x' << height << ' ' << letters);
                    for (std::size_t at = 0; at < places.size(); ++at) {
                        const LayoutPlace& a = places[at];
                        if (!a.isShown)
                            continue;
                        ASSERT_TRUE(a.x >= 0 && a.y >= 0 && a.x + a.width <= width &&
                                    a.y + a.height <= height && a.width > 0 && a.height > 0)
                            << at << ": " << a;
                        for (std::size_t other = 0; other < at; ++other) {
                            const LayoutPlace& b = places[other];
                            ASSERT_TRUE(!b.isShown || a.x >= b.x + b.width ||
                                        b.x >= a.x + a.width || a.y >= b.y + b.height ||
                                        b.y >= a.y + a.height)
                                << at << ": " << a << " over " << other << ": " << b;
                        }
                    }
                }
            }
        }
    }
}

}  // namespace
