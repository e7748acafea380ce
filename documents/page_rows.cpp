#include <glib.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <string_view>

#include "documents/pdf_pages.h"
#include "documents/small_texts.h"

namespace {

constexpr std::size_t kLongestLabel = 8;
constexpr std::size_t kLeastNumberedLines = 8;   // when each line is
constexpr std::size_t kLeastNumbersOfLines = 3;  // when only every fifth is, for example
constexpr std::size_t kLeastNumbersOfPages = 4;  // of contents
// Of the letters' height: how far lines of one row stand apart, above each other and side by side.
constexpr double kSameRow = 0.4;
constexpr double kLargestLabelGap = 5;
constexpr double kHeadApart = 1.3;         // of the distance of lines
constexpr int kMostBeside = 32;            // lines of a row that are looked at
constexpr std::size_t kLongestRow = 1000;  // gets no more labels

// "3", "12.4.1", "xiv": a chapter's number, or a page's.
bool IsLabel(std::string_view text) {
    return !text.empty() && text.size() <= kLongestLabel &&
           (text.find_first_not_of("0123456789.") == std::string_view::npos ||
            text.find_first_not_of("ivxlc") == std::string_view::npos);
}

std::string_view LastWordOf(std::string_view text) {
    return text.substr(text.find_last_of(' ') + 1);
}

// No title ends in a comma or a stop, but for the dots before its page.
bool IsOfSentence(std::string_view line) {
    constexpr std::string_view kMarks = ",;.!?";
    return line.size() > 1 && kMarks.find(line.back()) != std::string_view::npos &&
           line[line.size() - 2] != ' ' && !HoldsLeader(line);
}

class PageRows {
public:
    explicit PageRows(PdfPage& page) : page_(page), isTaken_(page.size()) {}

    void Join() {
        for (std::size_t begin = 0, end = 0; begin < page_.size(); begin = end) {
            for (end = begin + 1; end < page_.size() && !page_[end].beginsBlock;)
                ++end;
            if (page_[begin].isRow)
                continue;
            if (std::all_of(At(begin), At(end),
                            [](const PdfLine& line) { return IsLabel(line.text); }))
                labels_.emplace_back(begin, end);
            else
                for (std::size_t i = begin; i < end; ++i)
                    rows_.emplace(page_[i].Middle(), i);
        }
        areLinesNumbered_ = AreLinesNumbered();
        JoinNumbersOfPages();
        for (const auto& [begin, end] : labels_)
            if (!isTaken_[begin])
                JoinBlock(begin, end);
        for (PdfLine& line : page_)
            if (HoldsLeader(line.text) && g_ascii_isalnum(line.text.back()))
                EndRow(line);
        std::size_t kept = 0;
        for (std::size_t i = 0; i < page_.size(); ++i)
            if (!isTaken_[i] && kept++ != i)
                page_[kept - 1] = std::move(page_[i]);
        page_.resize(kept);
    }

private:
    // Nothing goes on behind a page's number.
    static void EndRow(PdfLine& line) { line.right = line.left; }

    PdfPage::iterator At(std::size_t index) {
        return page_.begin() + static_cast<std::ptrdiff_t>(index);
    }

    struct NumberAtSide {
        double right;
        double top;
        int value;
        std::size_t at;
        PdfLine* line;  // to which it is put; none: it stands in its line
    };
    using NumbersAtSide = std::vector<NumberAtSide>;

    // Numbers below each other that rise, each at the end of a line's row: of contents, whether
    // dots lead to them or not.
    void JoinNumbersOfPages() {
        NumbersAtSide numbers;
        for (const auto& [begin, end] : labels_)
            for (std::size_t i = begin; i < end; ++i)
                if (PdfLine* const line = Beside(page_[i], false);
                    line != nullptr && AreDigits(page_[i].text) &&
                    Beside(page_[i], true) == nullptr)
                    numbers.push_back(
                        {page_[i].right, page_[i].top, NumberIn(page_[i].text), i, line});
        for (const auto& [middle, i] : rows_)
            if (const std::string_view last = LastWordOf(page_[i].text);
                HoldsLeader(page_[i].text) && AreDigits(last))
                numbers.push_back({page_[i].right, page_[i].top, NumberIn(last), i, nullptr});
        std::ranges::sort(numbers, {}, &NumberAtSide::right);
        const auto [above, below] = std::ranges::minmax_element(page_, {}, &PdfLine::top);
        for (auto begin = numbers.begin(), end = begin; begin != numbers.end(); begin = end) {
            const double most = begin->right + page_[begin->at].height * kSameRow;
            end = std::find_if(begin, numbers.end(),
                               [most](const auto& number) { return number.right > most; });
            NumbersAtSide column(begin, end);
            std::ranges::sort(column, {}, &NumberAtSide::top);
            DropOwnNumber(column, above->top, below->top);
            if (!AreNumbersOfPages(column))
                continue;
            for (const NumberAtSide& number : column)
                if (number.line != nullptr) {
                    number.line->text +=
                        (HoldsLeader(number.line->text) ? " " : ", ") + page_[number.at].text;
                    EndRow(*number.line);
                    isTaken_[number.at] = true;
                }
        }
    }

    // Neither of steps, one by one, nor of every fifth line of a poem or a play.
    static bool AreNumbersOfPages(const NumbersAtSide& column) {
        if (column.size() < kLeastNumbersOfPages ||
            !std::ranges::is_sorted(column, {}, &NumberAtSide::value))
            return false;
        // The first line has its number often, too: 1, 5, 10.
        const int first = column[1].value;
        const int step = column[2].value - first;
        bool areEven = step > 0 && (step == 1 || first % step == 0) &&
                       (column[0].value == first - step || (step > 1 && column[0].value == 1));
        for (std::size_t i = 2; areEven && i < column.size(); ++i)
            areEven = column[i].value - column[i - 1].value == step;
        const auto goOn = std::ranges::count_if(column, [](const NumberAtSide& number) {
            return number.line != nullptr && IsOfSentence(number.line->text);
        });
        return !areEven && static_cast<std::size_t>(goOn) * 2 < column.size();
    }

    // This page's, which stands apart, above or below all else.
    void DropOwnNumber(NumbersAtSide& column, double above, double below) const {
        if (column.size() < kLeastNumbersOfPages)
            return;
        double apart = HUGE_VAL;
        for (std::size_t i = 1; i < column.size(); ++i)
            apart = std::min(apart, (column[i].top - column[i - 1].top) * kHeadApart);
        const double slack = page_[column.front().at].height * kSameRow;
        if (column[1].top - column[0].top > apart && column[0].top < above + slack)
            column.erase(column.begin());
        else if (column.back().top - std::prev(column.end(), 2)->top > apart &&
                 column.back().top > below - slack)
            column.pop_back();
    }

    // Only the labels of a whole block: one that finds no line is no chapter's and no page's.
    void JoinBlock(std::size_t begin, std::size_t end) {
        std::vector<PdfLine*> lines;
        bool isBefore = false;
        bool areNumbersOfPages = false;
        for (std::size_t i = begin; i < end; ++i) {
            PdfLine* line = Beside(page_[i], true);
            if (i == begin)
                isBefore = line != nullptr;
            if (!isBefore)
                line = Beside(page_[i], false);
            if (line == nullptr)
                return;
            areNumbersOfPages = areNumbersOfPages || HoldsLeader(line->text);
            lines.push_back(line);
        }
        if (!areNumbersOfPages && (!isBefore || areLinesNumbered_ || AreNumbersOfLines(begin, end)))
            return;
        for (std::size_t i = begin; i < end; ++i) {
            PdfLine& line = *lines[i - begin];
            line.text =
                isBefore ? page_[i].text + ' ' + line.text : line.text + ' ' + page_[i].text;
            isTaken_[i] = true;
        }
    }

    // Those in a margin, which would stand within sentences.
    bool AreNumbersOfLines(std::size_t begin, std::size_t end) const {
        for (std::size_t i = begin; i < end; ++i)
            if (page_[i].text !=
                std::to_string(NumberIn(page_[begin].text) + static_cast<int>(i - begin)))
                return false;
        return end - begin >= kLeastNumberedLines;
    }

    // The same of the whole page, where each number is a block of its own.
    bool AreLinesNumbered() {
        std::vector<std::pair<double, int>> numbers;  // downwards
        bool areWithin = false;  // those of items stand before the first line of a block
        for (const auto& [begin, end] : labels_)
            for (std::size_t i = begin; i < end; ++i) {
                if (page_[i].text.find_first_not_of("0123456789") != std::string::npos)
                    return false;
                if (const PdfLine* const line = Beside(page_[i], true)) {
                    areWithin = areWithin || !line->beginsBlock;
                    numbers.emplace_back(page_[i].Middle(), NumberIn(page_[i].text));
                }
            }
        std::sort(numbers.begin(), numbers.end());
        if (!areWithin || numbers.size() < kLeastNumbersOfLines)
            return false;
        const int step = numbers[1].second - numbers[0].second;
        for (std::size_t i = 1; i < numbers.size(); ++i)
            if (numbers[i].second - numbers[i - 1].second != step)
                return false;
        return step > 1 || (step == 1 && numbers.size() >= kLeastNumberedLines);
    }

    // The nearest line on the same row, behind the label or before it.
    PdfLine* Beside(const PdfLine& label, bool isBefore) {
        const double slack = label.height * kSameRow;
        PdfLine* nearest = nullptr;
        double least = isBefore ? label.height * kLargestLabelGap : HUGE_VAL;
        int looked = 0;
        for (auto row = rows_.lower_bound(label.Middle() - slack);
             row != rows_.end() && row->first < label.Middle() + slack && looked < kMostBeside;
             ++row, ++looked) {
            PdfLine& line = page_[row->second];
            const double gap = isBefore ? line.left - label.right : label.left - line.right;
            if (gap > -label.height && gap < least && line.text.size() < kLongestRow) {
                least = gap;
                nearest = &line;
            }
        }
        return nearest;
    }

    PdfPage& page_;
    std::vector<bool> isTaken_;
    bool areLinesNumbered_ = false;
    std::vector<std::pair<std::size_t, std::size_t>> labels_;  // blocks of nothing else
    std::multimap<double, std::size_t> rows_;                  // other lines, by their middle
};

}  // namespace

void JoinRows(PdfPage& page) {
    PageRows(page).Join();
}
