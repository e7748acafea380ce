#include "speech/text_places.h"

#include <gmock/gmock.h>

#include <string>

#include "speech/sentences.h"

namespace {

using testing::Optional;

TEST(TextPlaces, AreThoseOfAllSentencesWhereverOneLooks) {
    std::string text;
    for (int number = 0; number < 3000; ++number)
        text += "Sentence " + std::to_string(number) + " of Mr. Smith has some words." +
                (number % 700 == 0 ? "\n\n"
                 : number % 3 == 0 ? "\n"
                                   : " ");
    const std::vector<Sentence> all = SentencesOf(text);
    ASSERT_EQ(all.size(), 3000u);
    for (std::size_t index = 1; index + 1 < all.size(); index += 97) {
        SCOPED_TRACE(index);
        const Sentence& sentence = all[index];
        EXPECT_EQ(SentenceAt(text, sentence.begin), sentence.begin);
        EXPECT_EQ(SentenceAt(text, sentence.end - 1), sentence.begin);
        EXPECT_EQ(SentenceAt(text, sentence.end), all[index + 1].begin);
        EXPECT_THAT(SentenceBefore(text, sentence.begin), Optional(all[index - 1].begin));
        EXPECT_THAT(SentenceBehind(text, sentence.begin), Optional(all[index + 1].begin));
        EXPECT_THAT(SentenceBehind(text, sentence.end - 1), Optional(all[index + 1].begin));
    }
    EXPECT_EQ(SentenceBefore(text, 0), std::nullopt);
    EXPECT_EQ(SentenceBehind(text, all.back().begin), std::nullopt);
    EXPECT_EQ(SentenceAt(text, text.size() + 5), all.back().begin);
    EXPECT_EQ(SentenceAt("", 3), 0u);
    EXPECT_EQ(SentenceAt(" \n ", 1), 0u);
}

TEST(TextPlaces, ParagraphsBeginBehindEmptyLinesElseWithLines) {
    const struct {
        const char* text;
        std::vector<std::size_t> begins;
    } cases[] = {
        {"One two.\nThree.\n \n\nFour. Five.\n\nSix", {0, 19, 32}},
        {" One. Two is\nlonger.\nThree.", {1, 21}},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.text);
        std::vector<std::size_t> down{test.begins.front()};
        while (const auto next = ParagraphBehind(test.text, down.back()))
            down.push_back(*next);
        EXPECT_EQ(down, test.begins);
        std::vector<std::size_t> up{test.begins.back()};
        while (const auto next = ParagraphBefore(test.text, up.back()))
            up.push_back(*next);
        EXPECT_EQ(up, std::vector(test.begins.rbegin(), test.begins.rend()));
        EXPECT_THAT(ParagraphBefore(test.text, test.begins.back() + 1),
                    Optional(test.begins.back()));
    }
}

}  // namespace
