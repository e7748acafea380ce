// PDF: the order in which what stands side by side is read.
#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "tests/documents/placed_words.h"

namespace {

using testing::HasSubstr;
using testing::Not;

TEST(Pdf, WordsFromRightToLeftGetTheirReadingOrderInAnyText) {
    // As they are seen, from the left.
    const struct {
        std::vector<std::string> shown;
        const char* read;
    } cases[] = {
        {{"say", "םלוע", "םולש", "they", "said"}, "say שלום עולם they said\n"},
        {{"in", "הנידמה", "1948", "תנשב", "and"}, "in בשנת 1948 המדינה and\n"},
        {{"in", "1948-\u05D1", ")\u05DD\u05D2", "\u05D0\u05DC(", "\u05DF\u05DB", "it"},
         "in כן (לא גם) ב-1948 it\n"},
        {{"\u05D5\u05D1", "English", "words", "\u05DD\u05D2\u05D5", "12.50", "\u05DD\u05E2"},
         "עם 12.50 וגם English words בו\n"},
        {{".25%", "איה", "Windows", "11", "םולש"}, "שלום Windows 11 היא 25%.\n"},
        // Brackets as they look, and marks on letters, drawn behind them and before.
        {{"(םג)", "אל"}, "לא (גם)\n"},
        {{"ארָבָּ"}, "בָּרָא\n"},
        {{"אָרָּב"}, "בָּרָא\n"},
    };
    for (const auto& item : cases) {
        std::string words;
        double left = 50;
        for (const std::string& word : item.shown) {
            words += WordAt(left, 100, 10, word);
            left += 5 * static_cast<double>(word.size()) + 4;
        }
        EXPECT_EQ(TextOfBlocks({{words}}), item.read);
    }
    // Of a page from right to left the first column stands on the right.
    const auto cells = [](const std::string& left, const std::string& right, double top) {
        return WordAt(50, top, 10, left) + "</line>\n" + WordAt(250, top, 10, right);
    };
    EXPECT_EQ(TextOfBlocks({{cells("3", "םחל", 100), cells("12", "ץע", 120)}}), "לחם, 3\nעץ, 12\n");
}

TEST(Pdf, TablesAreReadRowByRowAndColumnsOfTextAreNot) {
    const auto column = [](double left, const std::vector<std::string>& lines) {
        std::vector<std::string> block;
        block.reserve(lines.size());
        for (const std::string& line : lines)
            block.push_back(WordAt(left, 100 + 20 * static_cast<double>(block.size()), 10, line));
        return block;
    };
    const std::vector<std::string> names = {"Fruit", "apple", "pears"};
    const std::vector<std::string> figures = {"Price", "3.40", "12.10"};
    EXPECT_EQ(TextOfBlocks({column(50, names),
                            column(200, {"Hue", "red", "green"}),
                            column(480, figures),
                            {WordAt(50, 300, 10, "after")}}),
              "Fruit, Hue, Price\napple, red, 3.40\npears, green, 12.10\n\nafter\n");
    EXPECT_EQ(TextOfBlocks({column(50, names), column(200, figures)}),
              "Fruit, Price\napple, 3.40\npears, 12.10\n");
    // Two addresses side by side, and columns of text.
    EXPECT_EQ(TextOfBlocks({column(50, names), column(200, {"Ann", "Road", "Town"})}),
              "Fruit\napple\npears\n\nAnn\nRoad\nTown\n");
    const std::string full(30, 'w');
    const std::string text =
        TextOfBlocks({column(50, {full, full, full + "e"}), column(230, {full, full, full}),
                      column(400, {full, full, full})});
    EXPECT_THAT(text, HasSubstr(full + "e\n\n" + full + ' ' + full));
    // Rows within one block; words of a line that is stretched.
    const std::string left = WordAt(50, 100, 10, "A") + "</line>\n" + WordAt(150, 100, 10, "1");
    const std::string right = WordAt(50, 120, 10, "Bb") + "</line>\n" + WordAt(150, 120, 10, "2");
    EXPECT_EQ(TextOfBlocks({{right, left + "</line>\n" + WordAt(200, 100, 10, "x")}}),
              "Bb, 2\nA 1, x\n");
    EXPECT_EQ(TextOfBlocks({{WordAt(50, 80, 10, "Long"), right, WordAt(50, 140, 10, "end")}}),
              "Long\nBb 2\nend\n");
    // Three columns of lines that the page's middle column crosses.
    std::vector<std::vector<std::string>> columns(3);
    for (int line = 0; line < 20; ++line)
        for (std::size_t at = 0; at < 3; ++at)
            columns[at].push_back(
                WordAt(50 + 170 * static_cast<double>(at), 100 + 12 * line, 10, full + "abc"[at]));
    EXPECT_THAT(TextOfBlocks(columns), HasSubstr(full + "b " + full + "b"));
    // Each fifth line's number is a block of its own.
    std::vector<std::vector<std::string>> numbered(1);
    for (int line = 1; line <= 15; ++line) {
        numbered[0].push_back(WordAt(70, 100 + 12 * line, 10, "words"));
        if (line % 5 == 0)
            numbered.push_back({WordAt(50, 100 + 12 * line, 10, std::to_string(line))});
    }
    EXPECT_THAT(TextOfBlocks(numbered), Not(HasSubstr("10 words")));
}

TEST(Pdf, ColumnsAreReadOneAfterTheOther) {
    const auto column = [](double left, int line, const std::string& words) {
        return WordAt(left, 100 + 12 * line, 10, words + std::to_string(line));
    };
    const std::string filling(30, 'x');
    std::vector<std::string> right;
    std::vector<std::string> left;
    std::vector<std::string> both;  // as one line
    for (int line = 0; line < 9; ++line) {
        left.push_back(column(50, line, filling + "l"));
        right.push_back(column(230, line, filling + "r"));
        both.push_back(left.back() + right.back());
    }
    std::vector<std::vector<std::string>> blocks;
    const std::vector<std::vector<std::vector<std::string>>> bodies = {{right, left}, {both}};
    for (const auto& body : bodies) {
        blocks = {{WordAt(80, 80, 10, "A Title Above The Two Columns Of This Page")}};
        blocks.insert(blocks.end(), body.begin(), body.end());
        blocks.push_back({WordAt(50, 210, 8, "1 note")});
        const std::string text = TextOfBlocks(blocks);
        EXPECT_TRUE(text.starts_with("A Title")) << text;
        EXPECT_THAT(text, HasSubstr("l7 " + filling + "l8 " + filling + "r0 " + filling + "r1"));
        EXPECT_TRUE(text.ends_with("r8\n\n1 note\n")) << text;
    }
    // So are those of which most lines are items of contents.
    blocks = {};
    for (int line = 0; line < 30; ++line)
        for (const double at : {50.0, 230.0})
            blocks.push_back({column(at, line, line < 9 ? filling + "-" : "item")});
    EXPECT_THAT(TextOfBlocks(blocks), HasSubstr("-7 " + filling + "-8\n\nitem9"));
    // Of a table the rows stay, however long some of its names are.
    both = {};
    for (int line = 0; line < 9; ++line)
        both.push_back(column(50, line, line % 4 == 0 ? filling : "name") +
                       column(230, line, filling));
    EXPECT_THAT(TextOfBlocks({both}), HasSubstr("name1 " + filling + "1"));
}

}  // namespace
