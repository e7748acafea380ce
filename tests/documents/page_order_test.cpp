// PDF: the order in which what stands side by side is read.
#include <gmock/gmock.h>

#include <algorithm>
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

// Words of a cell, in letters of several widths.
std::string CellAt(double left, double top, const std::string& words) {
    std::string cell;
    for (std::size_t at = 0, end = 0; at < words.size(); at = end + 1) {
        end = std::min(words.find(' ', at), words.size());
        const double letter = 4 + 0.3 * (words[at] % 5);
        cell += WordAt(left, top, 10, words.substr(at, end - at));
        const std::size_t right = cell.rfind("xMax=\"") + 6;
        left += letter * static_cast<double>(end - at);
        cell.replace(right, cell.find('"', right) - right, std::to_string(left));
        left += 2.4;
    }
    return cell;
}

TEST(Pdf, TablesAreReadRowByRowWhateverTheirCellsHold) {
    const std::string wide =
        "Stock of the towns by the sea as it was counted in the last week of the year by us";
    const auto paragraph = [&wide](double top) {
        return std::vector<std::string>{CellAt(50, top, wide)};
    };
    const struct {
        const char* what;
        std::vector<std::vector<std::string>> blocks;
        std::string read;
    } cases[] = {
        {"empty cells, the first of them too, between captions",
         {{CellAt(50, 100, "Town"), CellAt(50, 120, "Aldbury"), CellAt(50, 160, "Cromer"),
           CellAt(50, 180, "Dover")},
          {CellAt(50, 80, wide), CellAt(130, 100, "Oars"), CellAt(130, 120, "12")},
          {CellAt(200, 100, "Sails"), CellAt(200, 140, "30"), CellAt(200, 160, "6")},
          {CellAt(270, 100, "Note"), CellAt(270, 140, "closed today"), CellAt(270, 180, "new")},
          paragraph(200)},
         wide +
             "\n\nTown, Oars, Sails, Note\nAldbury, 12\n30, closed today\nCromer, 6\nDover, "
             "new\n\n" +
             wide + "\n"},
        {"cells of several lines, and no room between rows",
         {{CellAt(50, 100, "Tool"), CellAt(50, 112, "Plane"), CellAt(50, 148, "Saw")},
          {CellAt(120, 100, "Use"), CellAt(120, 112, "Takes shavings from"),
           CellAt(120, 124, "boards that are un-"), CellAt(120, 136, "even"),
           CellAt(120, 148, "Parts wood")},
          {CellAt(250, 100, "Care"), CellAt(250, 112, "Dry and oiled"),
           CellAt(250, 148, "Hung on a nail by"), CellAt(250, 160, "the bench")}},
         "Tool, Use, Care\nPlane, Takes shavings from boards that are uneven, Dry and oiled\n"
         "Saw, Parts wood, Hung on a nail by the bench\n"},
        {"those in the middle of their rows",
         {{CellAt(50, 100, "Tool"), CellAt(50, 118, "Plane"), CellAt(50, 148, "Saw")},
          {CellAt(120, 100, "Use"), CellAt(120, 112, "Takes shavings from"),
           CellAt(120, 124, "boards"), CellAt(120, 148, "Parts wood")},
          {CellAt(250, 100, "Care"), CellAt(250, 118, "Dry and oiled"),
           CellAt(250, 136, "Hung on a nail by"), CellAt(250, 148, "the bench or in a"),
           CellAt(250, 160, "drawer")}},
         "Tool, Use, Care\nPlane, Takes shavings from boards, Dry and oiled\n"
         "Saw, Parts wood, Hung on a nail by the bench or in a drawer\n"},
        {"names and what they are; two addresses are none",
         {{CellAt(50, 100, "push"), CellAt(50, 112, "down"), CellAt(50, 124, "right"),
           CellAt(50, 136, "rule")},
          {CellAt(120, 100, "remembers where we are"), CellAt(120, 112, "moves to the next"),
           CellAt(120, 124, "moves to the side"),
           CellAt(120, 136, "draws a black bar over all that is there")},
          paragraph(180),
          {CellAt(50, 220, "Ann Lee"), CellAt(50, 232, "3 High Road"), CellAt(50, 244, "Dover"),
           CellAt(50, 256, "by hand")},
          {CellAt(140, 220, "The Harbour Company of Dover"),
           CellAt(140, 232, "17 Long Pier Street"), CellAt(140, 244, "Dover in Kent"),
           CellAt(140, 256, "by the next post")}},
         "push, remembers where we are\ndown, moves to the next\nright, moves to the side\n"
         "rule, draws a black bar over all that is there\n\n" +
             wide +
             "\n\nAnn Lee\n3 High Road\nDover\nby hand\n\nThe Harbour Company of Dover\n"
             "17 Long Pier Street\nDover in Kent\nby the next post\n"},
        {"two columns, and rows with room between them",
         {{CellAt(50, 112, "Tool"), CellAt(50, 142, "Plane"), CellAt(50, 178, "Saw")},
          {CellAt(120, 112, "What for"), CellAt(120, 136, "Takes shavings from"),
           CellAt(120, 148, "boards"), CellAt(120, 172, "Parts Oak"), CellAt(120, 184, "Elm")},
          {CellAt(250, 106, "In how"), CellAt(250, 118, "many days"), CellAt(250, 142, "4"),
           CellAt(250, 178, "7")}},
         "Tool, What for, In how many days\nPlane, Takes shavings from boards, 4\n"
         "Saw, Parts Oak Elm, 7\n"},
        {"cells that stand as near as words",
         {{CellAt(50, 100, "Town") + CellAt(92, 100, "Oars") + CellAt(120, 100, "Sails")},
          {CellAt(50, 120, "Aldbury") + CellAt(92, 120, "12")},
          {CellAt(50, 140, "Bath"), CellAt(50, 160, "Cromer")},
          {CellAt(92, 140, "4") + CellAt(120, 140, "30")},
          {CellAt(92, 160, "5") + CellAt(120, 160, "6")}},
         "Town, Oars, Sails\nAldbury, 12\nBath, 4, 30\nCromer, 5, 6\n"},
        {"kinds of definitions at the margin",
         {{CellAt(50, 100, "struct") + CellAt(100, 100, "sha one")},
          {CellAt(50, 120, "struct") + CellAt(100, 120, "sha two")},
          {CellAt(50, 140, "struct") + CellAt(100, 140, "sha six")},
          {CellAt(450, 100, "[Type]"), CellAt(450, 120, "[Type]"), CellAt(450, 140, "[Type]")}},
         "struct sha one\n\nstruct sha two\n\nstruct sha six\n\n[Type] [Type] [Type]\n"},
    };
    for (const auto& item : cases)
        EXPECT_EQ(TextOfBlocks(item.blocks), item.read) << item.what;
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
