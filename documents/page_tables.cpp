#include <glib.h>

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

#include "documents/pdf_pages.h"
#include "documents/small_texts.h"

namespace {

constexpr std::size_t kLeastRows = 3;     // of a table whose columns are blocks of their own
constexpr std::size_t kLeastColumns = 3;  // or two, one of them figures
// Letters of a column's lines, on the average: more is text; more may be text, when its lines are
// mostly as wide as the column.
constexpr std::size_t kLongestCell = 40;
constexpr std::size_t kLongestCellLabel = 18;
constexpr double kFull = 0.8;
constexpr std::size_t kLongestTableRow = 1000;
// Of the letters' height: how far cells of one row stand apart, above each other and at least side
// by side.
constexpr double kSameTableRow = 0.4;
constexpr double kLeastWordGap = 0.4;  // words of a line that was stretched to the column's width
constexpr double kLeastCellGap = 1.6;

bool StandSideBySide(const PdfLine& one, const PdfLine& other) {
    return one.height > 0 && std::abs(one.Middle() - other.Middle()) < one.height * kSameTableRow &&
           std::abs(one.height - other.height) < one.height / 4;
}

// "12", "3.40", "-7 %", "EUR 5".
bool IsFigure(std::string_view text) {
    const auto digits =
        std::count_if(text.begin(), text.end(), [](char sign) { return g_ascii_isdigit(sign); });
    return digits > 0 && digits * 2 >= static_cast<std::ptrdiff_t>(text.size());
}

// A word or a number behind which another cell comes; not the sign of a list's item.
bool EndsCell(std::string_view text) {
    const auto last = static_cast<unsigned char>(text.empty() ? '.' : text.back());
    return text.size() > 1 &&
           (last >= 0x80 || g_ascii_isalnum(static_cast<char>(last)) || last == ')' || last == '%');
}

void AddCell(PdfLine& row, const PdfLine& cell) {
    const bool isParted =
        EndsCell(row.text) && (cell.text.empty() || g_ascii_ispunct(cell.text.front()) == 0);
    row.text += (isParted ? ", " : " ") + cell.text;
    row.right = cell.right;
    row.isRow = true;
}

void AddWords(PdfLine& row, const PdfLine& words) {
    row.text += ' ' + words.text;
    row.right = words.right;
}

// Lines of a page in which no block begins but with the first.
struct LineBlock {
    std::size_t begin;
    std::size_t end;
    double left;
    double right;

    std::size_t Lines() const { return end - begin; }
};

class PageTables {
public:
    explicit PageTables(PdfPage& page) : page_(page) {}

    void Join() {
        FindBlocks();
        for (std::size_t first = 0; first < blocks_.size();) {
            std::size_t end = first + 1;
            while (end < blocks_.size() && IsBeside(blocks_[end - 1], blocks_[end]))
                ++end;
            if (IsTable(first, end))
                AddTable(first, end);
            else
                std::for_each(At(first), At(end),
                              [this](const LineBlock& block) { AddBlock(block); });
            first = end;
        }
        page_ = std::move(joined_);
    }

private:
    std::vector<LineBlock>::const_iterator At(std::size_t block) const {
        return blocks_.begin() + static_cast<std::ptrdiff_t>(block);
    }

    void FindBlocks() {
        for (std::size_t begin = 0, end = 0; begin < page_.size(); begin = end) {
            LineBlock block{begin, begin, page_[begin].left, page_[begin].right};
            for (end = begin; end < page_.size() && (end == begin || !page_[end].beginsBlock);
                 ++end) {
                block.left = std::min(block.left, page_[end].left);
                block.right = std::max(block.right, page_[end].right);
            }
            block.end = end;
            blocks_.push_back(block);
        }
    }

    // Its columns: each line of one has its place in a row of the other.
    bool IsBeside(const LineBlock& left, const LineBlock& right) const {
        if (page_[left.begin].isRow || page_[right.begin].isRow)
            return false;
        if (left.Lines() < kLeastRows || left.Lines() != right.Lines() || right.left <= left.right)
            return false;
        for (std::size_t row = 0; row < left.Lines(); ++row)
            if (!StandSideBySide(page_[left.begin + row], page_[right.begin + row]))
                return false;
        return true;
    }

    // "oars, 12": of an index, whose columns are read one after the other.
    bool HoldsEntries(const LineBlock& block) const {
        std::size_t entries = 0;
        for (std::size_t line = block.begin; line < block.end; ++line) {
            const std::string& text = page_[line].text;
            entries +=
                text.find(", ") != std::string::npos && g_ascii_isdigit(text.back()) ? 1U : 0U;
        }
        return 2 * entries > block.Lines();
    }

    // One more in each line, as the numbers of a text's lines.
    bool IsCounted(const LineBlock& block) const {
        for (std::size_t line = block.begin; line < block.end; ++line)
            if (page_[line].text != std::to_string(NumberIn(page_[block.begin].text) +
                                                   static_cast<int>(line - block.begin)))
                return false;
        return true;
    }

    // Not two of its columns are running text.
    bool IsTable(std::size_t first, std::size_t end) const {
        if (HoldsEntries(blocks_[first]))
            return false;
        bool holdsFigures = false;
        std::size_t texts = 0;
        for (std::size_t i = first; i < end; ++i) {
            std::size_t letters = 0;
            std::size_t figures = 0;
            double width = 0;
            for (std::size_t line = blocks_[i].begin; line < blocks_[i].end; ++line) {
                letters += page_[line].text.size();
                width += page_[line].right - page_[line].left;
                figures += IsFigure(page_[line].text) ? 1U : 0U;
            }
            const auto lines = static_cast<double>(blocks_[i].Lines());
            const bool isFull = width > (blocks_[i].right - blocks_[i].left) * lines * kFull;
            texts += isFull && letters > kLongestCellLabel * blocks_[i].Lines() ? 1U : 0U;
            if (letters > kLongestCell * blocks_[i].Lines() || texts > 1)
                return false;
            // Below a head. Those before all else may be the numbers of a text's lines.
            holdsFigures = holdsFigures || (i > first && figures + 1 >= blocks_[i].Lines() &&
                                            !IsCounted(blocks_[i]));
        }
        return end - first >= kLeastColumns || (end - first > 1 && holdsFigures);
    }

    void AddTable(std::size_t first, std::size_t end) {
        for (std::size_t row = 0; row < blocks_[first].Lines(); ++row) {
            joined_.push_back(std::move(page_[blocks_[first].begin + row]));
            joined_.back().isRow = true;
            for (std::size_t column = first + 1; column < end; ++column)
                AddCell(joined_.back(), page_[blocks_[column].begin + row]);
        }
    }

    // Cells that stand side by side in one block are lines of it. Of a line that is stretched to
    // the column's width the words are, too; it has none like it beside it.
    void AddBlock(const LineBlock& block) {
        std::size_t rows = 1;
        std::size_t parted = 0;  // rows of several cells
        bool isParted = false;
        for (std::size_t i = block.begin + 1; i < block.end; ++i) {
            const double gap = GapBefore(i);
            if (gap > kLeastCellGap)
                parted += std::exchange(isParted, true) ? 0U : 1U;
            else if (gap <= kLeastWordGap && rows++ > 0)
                isParted = false;
        }
        const bool holdsRows = parted > 1 || rows == 1;
        for (std::size_t i = block.begin; i < block.end; ++i) {
            const double gap = i == block.begin || page_[i].isRow ? 0 : GapBefore(i);
            if (gap <= kLeastWordGap || joined_.back().text.size() > kLongestTableRow)
                joined_.push_back(page_[i]);
            else if (gap > kLeastCellGap && holdsRows)
                AddCell(joined_.back(), page_[i]);
            else
                AddWords(joined_.back(), page_[i]);
        }
    }

    // Of the letters' height, between two lines of one row; else 0.
    double GapBefore(std::size_t line) const {
        const PdfLine& before = page_[line - 1];
        return StandSideBySide(before, page_[line])
                   ? (page_[line].left - before.right) / before.height
                   : 0;
    }

    PdfPage& page_;
    PdfPage joined_;
    std::vector<LineBlock> blocks_;
};

}  // namespace

void JoinTables(PdfPage& page) {
    PageTables(page).Join();
}
