// PDF: what stands on its pages, without what stands on every page.
#include <gmock/gmock.h>

#include <cstdlib>
#include <ctime>
#include <string>

#include "documents/document.h"
#include "documents/pdf_pages.h"
#include "tests/documents/document_files.h"
#include "tests/documents/placed_words.h"
#include "tests/support/scratch_folder.h"

namespace {

using testing::HasSubstr;
using testing::Not;

std::string Joined(const std::string& text) {
    std::vector<PdfPage> pages = PdfPagesOfText(text);
    DropPageHeads(pages);
    return JoinPages(std::move(pages), {}).text;
}

TEST(Pdf, OnlyWhatIsRepeatedOrRisesWithThePagesIsLeftOut) {
    const struct {
        const char* what;
        std::string pages;
        std::string text;
    } cases[] = {
        {"chapters", "Chapter 1\n\nOne.\n\fChapter 2\n\nTwo.\n\fChapter 3\n\nThree.\n",
         "Chapter 1\n\nOne.\n\nChapter 2\n\nTwo.\n\nChapter 3\n\nThree.\n"},
        {"dates", "12 March 1984\n\nA.\n\f13 March 1984\n\nB.\n\f14 March 1984\n\nC.\n",
         "12 March 1984\n\nA.\n\n13 March 1984\n\nB.\n\n14 March 1984\n\nC.\n"},
        {"a total, a year, a word of roman digits",
         "Total\n\n42\n\f1984\n\nThe.\n\nill\n\fEnd.\n\n7\n",
         "Total\n\n42\n\n1984\n\nThe.\n\nill\n\nEnd.\n\n7\n"},
        {"numbers of three pages", "A.\n\n- 7 -\n\fB.\n\n- 8 -\n\fC.\n\n- 9 -\n",
         "A.\n\nB.\n\nC.\n"},
        {"roman ones", "A.\n\niii\n\fB.\n\niv\n\fC.\n\nv\n", "A.\n\nB.\n\nC.\n"},
        {"numbers of how many",
         "A.\n\nx 1/3\n\fB.\n\nx 2/3\n\fC.\n\n3/3\n\fD.\n\n4/3\n\fE.\n\n5/3\n",
         "A.\n\nx 1/3\n\nB.\n\nx 2/3\n\nC.\n\nD.\n\nE.\n"},
        {"of two pages: nobody knows", "A.\n\n1\n\fB.\n\n2\n", "A.\n\n1\n\nB.\n\n2\n"},
        {"numbered titles",
         "My Long Book 1\n\nA goes\n\fMy Long Book 2\n\non. B\n\fMy Long Book 3\n\nC.\n",
         "A goes\non. B\n\nC.\n"},
        {"feet",
         "A goes\n\nConfidential\n\nPage 1 of 3\n\fon. B\n\nConfidential\n\nPage 2 of 3\n\fC.\n\n"
         "Confidential\n\nPage 3 of 3\n",
         "A goes\non. B\n\nC.\n"},
        {"every other page",
         "x1\n\nHead\n\nA.\n\nA.\n\nA.\n\fb.\n\fHead\n\nC.\n\fd.\n\fHead\n\nE.\n",
         "x1\n\nHead\n\nA.\n\nA.\n\nA.\n\nb.\n\nC.\n\nd.\n\nE.\n"},
        {"the title of some slides",
         "A.\n\fB.\n\fWhy\n\nc.\n\fWhy\n\nd.\n\fWhy\n\ne.\n\fF.\n\fG.\n\fH.\n",
         "A.\n\nB.\n\nWhy\n\nc.\n\nd.\n\ne.\n\nF.\n\nG.\n\nH.\n"},
        {"chapters' titles beside pages' numbers, and a line that is none",
         "Way One\n\nA.\n\f2 Way One\n\nB.\n\fWay Two\n\nC.\n\f4 Chapter X. Way Two\n\nD.\n\fWay "
         "Three\n\nE.\n\f6 Way Three\n\nF.\n\fG.\n\f8 men went.\n",
         "Way One\n\nA.\n\nB.\n\nWay Two\n\nC.\n\nD.\n\nWay Three\n\nE.\n\nF.\n\nG.\n\n8 men "
         "went.\n"},
    };
    for (const auto& item : cases)
        EXPECT_EQ(Joined(item.pages), item.text) << item.what;
}

PdfLine LineAt(double top, double height, const std::string& text) {
    PdfLine line;
    line.text = text;
    line.top = top;
    line.height = height;
    line.beginsBlock = true;
    return line;
}

TEST(Pdf, TitlesAreLargerThanHeads) {
    const auto page = [](const std::string& title, double height, const char* foot = nullptr) {
        PdfPage lines = {LineAt(50, height, title), LineAt(90, 10, "Many words of text are here."),
                         LineAt(110, 10, "And some more of them.")};
        if (foot != nullptr)
            lines.push_back(LineAt(700, 9, foot));
        return lines;
    };
    const auto read = [](std::vector<PdfPage> pages) {
        DropPageHeads(pages);
        std::string titles;
        for (const PdfPage& lines : pages)
            for (const PdfLine& line : lines)
                if (line.top < 80 || line.top > 600)
                    titles += line.text + ";";
        return titles;
    };
    const PdfPage contents = {LineAt(90, 10, "What we ask"), LineAt(110, 10, "How to measure"),
                              LineAt(130, 10, "Who did it")};
    EXPECT_EQ(read({contents, page("1 What we ask", 14), page("2 How to measure", 14),
                    page("3 Who did it", 14)}),
              "1 What we ask;2 How to measure;3 Who did it;");
    EXPECT_EQ(read({page("Begin", 14), page("Results so far (1/3)", 14),
                    page("Results so far (2/3)", 14), page("Results so far (3/3)", 14)}),
              "Begin;Results so far (1/3);Results so far (2/3);Results so far (3/3);");
    EXPECT_EQ(read({page("Dear Ann", 10), page("Miller and Sons", 10, "In confidence"),
                    page("Miller and Sons", 10, "In confidence"),
                    page("Miller and Sons", 10, "In confidence")}),
              "Dear Ann;");
}

TEST(Pdf, DividedWordsAreWrittenAsElsewhereInTheText) {
    const struct {
        const char* page;
        const char* text;
    } cases[] = {
        {"a well-known exam-\nple of well-\nknown words",
         "a well-known example of well-known words\n"},
        {"state-of-\nthe-art the state-of-the-\nart is",
         "state-of-the-art the state-of-the-art is\n"},
        {"at http://example.org/an-\nother/\nplace/x, www.example.\norg/x. See www.a.org.\nmore "
         "http://b.org/\nName: c",
         "at http://example.org/an-other/place/x, www.example.org/x. See www.a.org.\nmore "
         "http://b.org/\nName: c\n"},
        {"See http://b.org/\nwhich tells of http://c.org/\nhttp://d.org/\nwww.e.org/\ne.g. "
         "http://\nf.org",
         "See http://b.org/\nwhich tells of http://c.org/\nhttp://d.org/\nwww.e.org/\ne.g. "
         "http://f.org\n"},
        {"Haupt-\nund Neben-\nsatz of a 16-\nbit or 8-\nto 16-\nbit thous-\nand, for a thousand",
         "Haupt-\nund Nebensatz of a 16-bit or 8-\nto 16-bit thousand, for a thousand\n"},
        {"the infor-\nmation and art-\nwork, information",
         "the information and artwork, information\n"},
        {"ein K\u00FCr-\nbis, 5-\nbis 6-\nmal", "ein Kürbis, 5-\nbis 6-mal\n"},
        {"the ELE-\nMENT of T-\nSHIRT", "the ELEMENT of T-SHIRT\n"},
        {"use --\nall or -\nb", "use --all or -\nb\n"},
        {"from 1990-\n1995 by Jean-\nPaul", "from 1990-1995 by Jean-Paul\n"},
        {"na\u00EF\u2010\nvet\u00E9 sof\u00AD\nter", "naïveté softer\n"},
        {"\u2022\n\nItem\n\n\u2022\n\nOther", "\u2022 Item\n\n\u2022 Other\n"},
        {"\f\f", ""},
    };
    for (const auto& item : cases)
        EXPECT_EQ(Joined(item.page), item.text);
}

// A text of lines as the program tells them: height of the letters, words with their places.
std::string LayoutOf(const std::vector<std::pair<double, std::string>>& lines) {
    std::string xml = "<page width=\"600\" height=\"800\">\n<flow>\n";
    double top = 50;
    for (const auto& [height, text] : lines) {
        const auto word = [&xml](double left, double right, double from, double to,
                                 const std::string& letters) {
            xml += "<word xMin=\"" + std::to_string(left) + "\" yMin=\"" + std::to_string(from) +
                   "\" xMax=\"" + std::to_string(right) + "\" yMax=\"" + std::to_string(to) +
                   "\">" + letters + "</word>\n";
        };
        if (text.starts_with('|'))
            xml += "<block xMin=\"50\" yMin=\"0\" xMax=\"300\" yMax=\"0\">\n";
        xml += "<line xMin=\"50\">\n";
        std::string letters = text.substr(text.starts_with('|') ? 1 : 0);
        // "^" lifts a small number that follows, "~" ends the line early.
        const double right = letters.ends_with('~') ? 150 : 299;
        letters.erase(letters.find_last_not_of('~') + 1);
        const std::size_t lifted = letters.find('^');
        if (lifted == std::string::npos) {
            const std::size_t blank = letters.find(' ');
            word(50, 70, top, top + height, letters.substr(0, blank));
            if (blank != std::string::npos)
                word(74, right, top, top + height, letters.substr(blank + 1));
        } else {
            word(50, 100, top, top + height, letters.substr(0, lifted));
            word(100.1, 104, top, top + height / 2, letters.substr(lifted + 1, 1));
            word(108, right, top, top + height, letters.substr(lifted + 2));
        }
        xml += "</line>\n";
        top += height * 1.2;
    }
    return xml + "</flow>\n</page>\n";
}

TEST(Pdf, PlacesTellLinesParagraphsHeadingsAndNotes) {
    const std::string pages =
        LayoutOf({{20, "|A Heading~"},
                  {10, "|The war^2began on"},
                  {10, "land, and 5 m^2were"},
                  {10, "taken. Then it &amp; they"},
                  {10, "ended in short~"},
                  {10, "goes on to"},
                  {7, "|1 a note"},
                  {7, "of two lines"}}) +
        LayoutOf({{10, "|the next page. It"}, {10, "ended there.~"}, {10, "|Next."}});
    PdfLayout layout(false);
    for (std::size_t at = 0; at < pages.size(); at += 7)
        layout.Feed(std::string_view(pages).substr(at, 7));
    const Document document = JoinPages(layout.TakePages(), {});
    EXPECT_EQ(document.text,
              "A Heading\n\nThe war began on land, and 5 m² were taken. Then it & they ended in "
              "short\ngoes on to the "
              "next page. It ended there.\n\n1 a note of two lines\n\nNext.\n");
    ASSERT_EQ(document.headings.size(), 1U);
    EXPECT_EQ(document.headings[0].end, 9U);
    ASSERT_EQ(document.pages.size(), 2U);
    EXPECT_EQ(document.text.substr(document.pages[1], 8), "the next");
}

TEST(Pdf, ContentsAreReadLineByLineWhateverColumnsTheirNumbersStandIn) {
    EXPECT_EQ(TextOfBlocks({{WordAt(50, 100, 10, "1"), WordAt(50, 120, 10, "1.1")},
                            {WordAt(80, 100, 10, "One"), WordAt(80, 120, 10, "More . . . .")},
                            {WordAt(480, 100, 10, "3"), WordAt(480, 120, 10, "12")},
                            {WordAt(50, 140, 10, "2 Two........ 14"),
                             WordAt(50, 160, 10, "3 Three...... 15")}}),
              "1 One 3\n1.1 More . . . . 12\n\n2 Two........ 14\n3 Three...... 15\n");
    // Each title and number a block of its own, without dots; above them this page's number.
    std::vector<std::vector<std::string>> blocks;
    const auto add = [&blocks](int top, const std::string& title, const std::string& page) {
        blocks.push_back({WordAt(50, top, 10, title)});
        blocks.push_back({WordAt(480, top, 10, page)});
    };
    add(60, "Contents", "12");
    add(100, "First", "17");
    add(120, "Second", "19");
    add(140, "Third", "19");
    add(160, "Fourth", "24");
    EXPECT_EQ(TextOfBlocks(blocks),
              "Contents\n\n12\n\nFirst, 17\n\nSecond, 19\n\nThird, 19\n\nFourth, 24\n");
    // A paragraph's large first letter.
    EXPECT_EQ(TextOfBlocks({{WordAt(63, 100, 10, "nce upon"), WordAt(63, 112, 10, "a time"),
                             WordAt(50, 124, 10, "he went.")},
                            {WordAt(50, 99, 24, "O")}}),
              "Once upon\na time\nhe went.\n");
    // Numbers of a table, and those below all lines.
    EXPECT_EQ(TextOfBlocks({{WordAt(50, 100, 10, "Apples"), WordAt(50, 120, 10, "Pears")},
                            {WordAt(480, 100, 10, "3"), WordAt(480, 120, 10, "12")},
                            {WordAt(300, 700, 10, "9")}}),
              "Apples\nPears\n\n3\n12\n\n9\n");
    // Numbers of lines in the margin.
    std::vector<std::vector<std::string>> columns(2);
    for (int line = 1; line <= 9; ++line) {
        columns[0].push_back(WordAt(50, 100 + 12 * line, 10, std::to_string(line)));
        columns[1].push_back(WordAt(70, 100 + 12 * line, 10, "words"));
    }
    EXPECT_THAT(TextOfBlocks(columns), HasSubstr("words\nwords"));
    // Of a poem's at the right, every fifth, and those of verses, which come unevenly.
    for (const auto& [words, numbers] : {std::pair("went", std::array{1, 5, 10, 15, 20}),
                                         std::pair("away,", std::array{2, 5, 9, 14, 20})}) {
        std::vector<std::vector<std::string>> poem;
        for (const int number : numbers) {
            poem.push_back({WordAt(50, 100 + 12 * number, 10, words)});
            poem.push_back(
                {WordAt(number < 10 ? 485 : 480, 100 + 12 * number, 10, std::to_string(number))});
        }
        EXPECT_THAT(TextOfBlocks(poem), Not(HasSubstr(", ")));
    }
}

TEST(Pdf, ItemsBeginLinesWithTheirMarksWhereverThesePrint) {
    const auto line = [](double at, double left, const char* text, double right = 499) {
        return "<word xMin=\"" + std::to_string(left) + "\" yMin=\"" + std::to_string(at) +
               "\" xMax=\"" + std::to_string(right) + "\" yMax=\"" + std::to_string(at + 10) +
               "\">" + text + "</word>\n";
    };
    // Marks in a column of their own, one of them a sign that only its font knows.
    EXPECT_EQ(TextOfBlocks({{line(101, 90, "\u2022", 93)},
                            {line(121, 90, "\uF0B7", 93)},
                            {line(100, 108, "full line"), line(110, 108, "goes on", 200),
                             line(120, 108, "full line")}}),
              "\u2022 full line goes on\n\u2022 full line\n");
    // Numbers in the block: those that count, and one that stands out before its room.
    EXPECT_EQ(TextOfBlocks({{line(100, 50, "in"), line(110, 50, "4. Four"),
                             line(120, 50, "5. Five"), line(130, 50, "of")}}),
              "in\n4. Four\n5. Five of\n");
    EXPECT_EQ(TextOfBlocks({{line(100, 70, "in"), line(110, 50, "9.", 60) + line(110, 70, "Nine"),
                             line(120, 70, "of")}}),
              "in\n9. Nine of\n");
    // A sentence may end in a number; a dash alone is an empty cell.
    EXPECT_EQ(TextOfBlocks({{line(100, 50, "in"), line(110, 50, "1984. Then")}}),
              "in 1984. Then\n");
    EXPECT_EQ(
        TextOfBlocks({{line(100, 50, "in"), line(110, 50, "8.", 60) + line(110, 70, "Then")}}),
        "in 8. Then\n");
    EXPECT_THAT(TextOfBlocks({{line(100, 50, "-", 53)}, {line(100, 60, "cell")}}),
                Not(HasSubstr("- cell")));
}

TEST(Pdf, HostilePagesTakeNoLongerThanTheyAreLong) {
    const std::clock_t begin = std::clock();
    std::string divided;
    std::string closing;
    for (int line = 0; line < 60000; ++line) {
        divided += "endlessly-\n";
        closing += ")\n";
    }
    EXPECT_GT(Joined(divided).size(), 500000U);  // minutes, when each looks back to the beginning
    EXPECT_GT(Joined(closing).size(), 100000U);
    std::vector<std::vector<std::string>> row;
    for (int line = 0; line < 20000; ++line) {
        row.push_back({WordAt(600, 50, 10, "Word")});
        row.push_back({WordAt(590, 50, 10, "1")});
        row.push_back({WordAt(590, 50, 10, "\u2022")});
    }
    EXPECT_GT(TextOfBlocks(row).size(), 100000U);
    std::vector<std::vector<std::string>> cells;
    for (int line = 0; line < 20000; ++line) {
        const int tableRow = line / 7;
        cells.push_back({WordAt(50 + line % 7 * 70, 12 * tableRow, 10, "Cell")});
        cells.push_back({WordAt(50 + line % 5 * 70, line, 10, "lone")});
        const int pair = line / 2;
        cells.push_back({WordAt(900 + pair * 9, line, 10, std::to_string(line))});
    }
    EXPECT_GT(TextOfBlocks(cells).size(), 100000U);
    EXPECT_LT(std::clock() - begin, 10 * CLOCKS_PER_SEC);
}

TEST(Pdf, OneWordInAnotherFontMovesNoLineAndLiftsNoNumber) {
    EXPECT_EQ(TextOfBlocks({{WordAt(50, 103, 8, "around") + WordAt(76, 103, 8, "2008") +
                             WordAt(95, 100, 14, "TEX") + WordAt(117, 103, 8, "users")}}),
              "around 2008 TEX users\n");
    EXPECT_EQ(TextOfBlocks({{WordAt(50, 100, 13, "around") + WordAt(92, 102, 8, "30000") +
                             WordAt(115, 100, 13, "users")}}),
              "around 30000 users\n");
}

TEST(Pdf, ReadersThatHangFailOrLackAreTold) {
    const ScratchFolder folder;
    folder.WriteProgram("pdftotext", "echo part\nsleep 1000 & wait\n");
    const ScopedVariable path("PATH", (folder.Path() + ":" + std::getenv("PATH")).c_str());
    int asked = 0;
    const Document stopped = ReadDocument("%PDF-", [&asked] { return ++asked > 3; });
    EXPECT_THAT(stopped.problem, HasSubstr("stopped"));
    folder.WriteProgram(
        "pdftotext",
        "echo '<page x>\n<word x>part</word>\n</line>\n</page>\n<page x>'\nkill -9 $$\n");
    const Document part = ReadDocument("%PDF-");
    EXPECT_EQ(part.text, "part\n");
    EXPECT_THAT(part.remark, HasSubstr("up to page 2"));
    const ScopedVariable none("PATH", "/none");
    EXPECT_THAT(ReadDocument("%PDF-").problem, HasSubstr("poppler-utils"));
}

}  // namespace
