// The lines that stand on the pages of a printed document, and running text made of them.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "documents/document.h"

// Lengths are in points, from the page's upper left corner. A line without height is one of which
// nothing is known but its text.
struct PdfLine {
    // Between two words, wider than most that part words: one may be another column's.
    struct Gap {
        double left;
        double right;
        std::size_t at;  // where the text behind it begins
    };

    std::string text;
    double left = 0;
    double right = 0;
    double top = 0;
    double height = 0;          // of its letters
    double firstWordWidth = 0;  // with a blank
    double lastWordWidth = 0;   // the same
    double blockLeft = 0;
    double blockRight = 0;
    bool beginsBlock = false;  // a block is a paragraph, or the part of one in a column or page
    bool beginsColumn = false;
    bool beginsItem = false;  // of a list: its text begins with the item's mark or number
    bool isRow = false;       // of a table
    bool isInRow = false;     // goes on with the row that the line before it is of
    bool beginsCell = false;  // the same with a cell of its own
    std::vector<Gap> gaps;    // from left to right

    double Middle() const { return top + height / 2; }
};

using PdfPage = std::vector<PdfLine>;

// Reads what "pdftotext -bbox-layout" writes, as it comes.
class PdfLayout {
public:
    explicit PdfLayout(bool keepsReferenceMarks) : keepsMarks_(keepsReferenceMarks) {}

    void Feed(std::string_view bytes);
    std::size_t TextSize() const { return textSize_; }
    std::vector<PdfPage> TakePages() { return std::move(pages_); }

private:
    struct Word {
        std::string text;
        double left, right, top, bottom;
    };

    void CutLongLine();
    void ReadLine(std::string_view line);
    const Word& UsualWord() const;
    void EndLine();

    bool keepsMarks_;
    std::string rest_;  // of a line that has not come whole
    std::vector<PdfPage> pages_;
    std::vector<Word> words_;  // of the line that is being read
    double blockLeft_ = 0;
    double blockRight_ = 0;
    bool beginsBlock_ = false;
    std::size_t textSize_ = 0;
};

// Pages of plain text: lines, a form feed behind each page, an empty line between blocks.
std::vector<PdfPage> PdfPagesOfText(std::string_view text);

// Lines come as they are seen, from the left. What is written from right to left gets the order in
// which it is read; where most of a page is, so do its places, as if it were seen in a mirror.
void PutInReadingOrder(PdfPage& page);

// A paragraph's large first letter, beside its first lines, is put to its word.
void JoinInitials(PdfPage& page);

// Two columns are read one after the other, with what stands across them before or behind.
void OrderColumns(PdfPage& page);

// Lines that begin with an item's mark or number begin anew, and get the mark that a printer has
// put into a column of its own.
void FindItems(PdfPage& page);

// Tables whose cells stand in lines of their own, some of several lines, some empty, become rows.
void JoinGrids(PdfPage& page);

// Chapters' numbers and, in contents, pages' numbers, that stand in columns of their own, are put
// to the lines that they belong to.
void JoinRows(PdfPage& page);

// The cells that stand side by side in a table become one line, parted by commas, whether its rows
// or its columns are blocks.
void JoinTables(PdfPage& page);

// Takes away what stands above or below every page: numbers that rise with the pages, and lines
// that are the same on most of them or on every other one.
void DropPageHeads(std::vector<PdfPage>& pages);

// Running text: lines and divided words are joined, a sentence that goes on upon the next page goes
// on, footnotes stand behind the paragraph at their page's end, large lines are headings.
Document JoinPages(std::vector<PdfPage> pages, const DocumentRules& rules);

// The same for pages that come one after the other, for who does not wait for the last: a page's
// heads are those that show by then.
class PageJoiner;

class GrowingPages {
public:
    // known: pages that are there from the beginning, with empty ones where others are to come:
    // heads and the letters' usual height show in them too. The rules outlive it.
    explicit GrowingPages(const DocumentRules& rules, std::vector<PdfPage> known = {});
    ~GrowingPages();
    GrowingPages(const GrowingPages&) = delete;
    GrowingPages& operator=(const GrowingPages&) = delete;

    void Add(std::vector<PdfPage> pages);  // the next ones
    Document Beginning() const;            // whole sentences, which stay as they are
    Document Take();                       // all of it, once

private:
    const DocumentRules& rules_;
    std::vector<PdfPage> known_;
    std::vector<PdfPage> pages_;  // with their heads
    std::unique_ptr<PageJoiner> joiner_;
};
