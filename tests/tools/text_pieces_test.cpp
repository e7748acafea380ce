// Cutting long texts for the engine, and the names and choices that both programs share.
#include "tools/text_pieces.h"

#include <gtest/gtest.h>

#include <string>

#include "tools/sound_output.h"
#include "tools/sound_types.h"

namespace {

TEST(TextPiecesTest, CutsWhereASpeakerWouldPause) {
    const std::string filler(60, 'x');
    const struct {
        std::string text;
        std::size_t limit;
        std::string piece;
    } cases[] = {
        {"Short.", 100, "Short."},
        {"", 100, ""},
        {filler + ". One two\n\nthree. Four", 80, filler + ". One two\n"},
        {filler + ". One two\n \t\nthree. Four", 80, filler + ". One two\n \t"},
        {filler + " \"Why?\" One two three four five", 80, filler + " \"Why?\""},
        {filler + " 3.14 is pi and not two", 72, filler + " 3.14 is pi"},
        {"A. " + filler + filler, 100, "A. " + filler + filler.substr(0, 37)},
        {filler + "\xc3\xa9\xc3\xa9", 61, filler},
        {filler + "\xf0\x9f\x98\x80", 63, filler},
        {std::string(90, '\x80'), 64, std::string(64, '\x80')},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.text.substr(0, PieceLength(c.text, c.limit)), c.piece);
}

TEST(TextPiecesTest, PiecesPutTogetherAreTheText) {
    std::string text;
    for (int i = 0; i < 3000; i++)
        text += (i % 7 == 0 ? "end.\n\n" : i % 3 == 0 ? "caf\xc3\xa9, " : "word ");
    PieceSizer sizer;
    std::size_t longest = 0;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = PieceLength(std::string_view(text).substr(at), sizer.Limit());
        ASSERT_GT(length, sizer.Limit() / 2 * (at + sizer.Limit() < text.size()));
        longest = std::max(longest, length);
        at += length;
        sizer.Took(0.1);
    }
    EXPECT_GT(longest, 5000u);
}

TEST(TextPiecesTest, SizeFollowsTheEngine) {
    PieceSizer sizer;
    const std::size_t first = sizer.Limit();
    sizer.Took(5);
    EXPECT_EQ(sizer.Limit(), first);
    sizer.Took(15);
    EXPECT_LT(sizer.Limit(), first);
    int shortened = 0;
    while (sizer.Shorten())
        shortened++;
    EXPECT_GT(sizer.Limit(), 100u);
    EXPECT_GT(shortened, 0);
    for (int i = 0; i < 20; i++)
        sizer.Took(0.1);
    EXPECT_EQ(sizer.Limit(), 20000u);  // what a fast voice speaks well within its limit
}

TEST(SoundTypesTest, NamesAreReadInAnyCaseAndOnlyAtTheEndOfThePath) {
    EXPECT_EQ(SoundTypeOfPath("/a.b/c.WAV"), SoundType::kWav);
    EXPECT_EQ(SoundTypeOfPath("a.wav.aIfF"), SoundType::kAiff);
    EXPECT_EQ(SoundTypeOfPath("x.snd"), SoundType::kAu);
    for (const char* path : {"", "wav", "/a.wav/b", "a.", "a.wav ", "a.wavx"})
        EXPECT_FALSE(SoundTypeOfPath(path)) << path;
}

}  // namespace
