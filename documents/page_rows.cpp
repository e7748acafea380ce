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
// Of the letters' height: how far lines of one row stand apart, above each other and side by side.
constexpr double kSameRow = 0.4;
constexpr double kLargestLabelGap = 5;
constexpr int kMostBeside = 32;            // lines of a row that are looked at
constexpr std::size_t kLongestRow = 1000;  // gets no more labels

// "3", "12.4.1", "xiv": a chapter's number, or a page's.
bool IsLabel(std::string_view text) {
    return !text.empty() && text.size() <= kLongestLabel &&
           (text.find_first_not_of("0123456789.") == std::string_view::npos ||
            text.find_first_not_of("ivxlc") == std::string_view::npos);
}

bool HoldsLeader(std::string_view text) {
    return text.find(". . .") != std::string_view::npos ||
           text.find("....") != std::string_view::npos;
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
        for (const auto& [begin, end] : labels_)
            JoinBlock(begin, end);
        for (PdfLine& line : page_)
            if (HoldsLeader(line.text) && g_ascii_isalnum(line.text.back()))
                line.right = line.left;  // nothing goes on behind a page's number
        std::size_t kept = 0;
        for (std::size_t i = 0; i < page_.size(); ++i)
            if (!isTaken_[i] && kept++ != i)
                page_[kept - 1] = std::move(page_[i]);
        page_.resize(kept);
    }

private:
    PdfPage::iterator At(std::size_t index) {
        return page_.begin() + static_cast<std::ptrdiff_t>(index);
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
