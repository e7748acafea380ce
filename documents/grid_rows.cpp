#include <glib.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <string_view>

#include "documents/page_grid.h"
#include "documents/small_texts.h"

namespace {

constexpr std::size_t kLeastGridRows = 3;
constexpr std::size_t kLeastGridColumns = 3;  // or two, one of them figures
// Of the distance of a cell's lines: what parts rows; of the letters' height: from which distance
// on lines are no longer those of one cell.
constexpr double kRowPart = 1.15;
constexpr double kFarLines = 1.6;
constexpr double kBetween = 0.7;
constexpr double kSameDistance = 0.06;
constexpr double kMostWithKey = 0.7;   // of the parts: have one line in the first column
constexpr double kLeastFilled = 0.45;  // of the cells
constexpr std::size_t kFewRows = 5;
constexpr double kLeastOfFew = 0.7;
constexpr double kLeastOfColumn = 0.25;
constexpr double kLeastAligned = 0.7;  // of the lines, with others of their column
constexpr double kAligned = 0.3;       // of the letters' height
constexpr double kWide = 0.8;          // of its column's width: a line that goes on
constexpr std::size_t kLongestKey = 40;
constexpr std::size_t kLeastKeys = 4;
constexpr double kLongerThanKeys = 1.5;
constexpr std::size_t kLongestWords = 18;  // of a line's letters: more may be running text

bool IsFigureCell(std::string_view text) {
    const auto digits =
        std::count_if(text.begin(), text.end(), [](char sign) { return g_ascii_isdigit(sign); });
    return digits > 0 && digits * 2 >= static_cast<std::ptrdiff_t>(text.size());
}

const GridCell* CellIn(const GridBand& band, std::size_t column) {
    const auto cell = std::find_if(band.begin(), band.end(),
                                   [column](const GridCell& one) { return one.column == column; });
    return cell == band.end() ? nullptr : &*cell;
}

// "oars, 12": an index's, whose columns are read one after the other.
bool IsEntry(std::string_view text) {
    return text.find(", ") != std::string_view::npos && g_ascii_isdigit(text.back());
}

class GridRows {
public:
    explicit GridRows(const PageGrid& grid)
        : grid_(grid), pitch_(PitchOf(grid)), height_(grid.bands.front().front().line.height) {}

    std::vector<std::size_t> Find() {
        FindParts();
        FindKeys();
        for (std::size_t i = 0; i < parts_.size(); ++i) {
            const std::size_t end = i + 1 < parts_.size() ? parts_[i + 1] : grid_.bands.size();
            const bool isRow = isPadded_ && KeysIn(parts_[i], end) < 2;
            for (std::size_t band = parts_[i]; band < end;) {
                rows_.push_back(band);
                band = isRow ? end : RowEnd(band, end);
            }
        }
        return IsTable() ? rows_ : std::vector<std::size_t>();
    }

private:
    double TopOf(std::size_t band) const { return grid_.bands[band].front().line.top; }

    // Rows with room between them.
    void FindParts() {
        for (std::size_t band = 0; band < grid_.bands.size(); ++band)
            if (band == 0 || TopOf(band) - TopOf(band - 1) > pitch_ * kRowPart)
                parts_.push_back(band);
    }

    std::size_t KeysIn(std::size_t begin, std::size_t end) const {
        std::size_t keys = 0;
        for (std::size_t band = begin; band < end; ++band)
            keys += CellIn(grid_.bands[band], 0) == nullptr ? 0U : 1U;
        return keys;
    }

    void FindKeys() {
        std::size_t keys = 0;
        std::size_t lower = 0;
        std::size_t single = 0;  // parts that have one key at most
        for (std::size_t i = 0; i < parts_.size(); ++i) {
            const std::size_t end = i + 1 < parts_.size() ? parts_[i + 1] : grid_.bands.size();
            std::size_t ofPart = 0;
            for (std::size_t band = parts_[i]; band < end; ++band)
                if (const GridCell* const key = CellIn(grid_.bands[band], 0); key != nullptr) {
                    ++ofPart;
                    lower += BeginsLower(key->line.text) ? 1U : 0U;
                }
            keys += ofPart;
            single += ofPart < 2 ? 1U : 0U;
        }
        for (std::size_t band = 1; band < grid_.bands.size(); ++band)
            areMiddle_ = areMiddle_ || IsBetween(band);
        areKeysLower_ = lower * 2 > keys;
        isPadded_ =
            parts_.size() >= kLeastGridRows &&
            static_cast<double>(single) >= static_cast<double>(parts_.size()) * kMostWithKey;
    }

    std::size_t RowEnd(std::size_t row, std::size_t end) const {
        std::size_t band = row + 1;
        if (!areMiddle_) {
            while (band < end && GoesOn(band))
                ++band;
            return band;
        }
        // As many lines stand below a key as above it.
        std::size_t key = row;
        while (key < end && CellIn(grid_.bands[key], 0) == nullptr)
            ++key;
        const double bottom = key < end ? 2 * TopOf(key) - TopOf(row) : TopOf(row);
        while (band < end && (band <= key || TopOf(band) < bottom + pitch_ / 4 || IsBetween(band) ||
                              (CellIn(grid_.bands[band], 0) != nullptr && GoesOn(band))))
            ++band;
        return band;
    }

    // Lines between those of other cells are of the same row.
    bool IsBetween(std::size_t band) const {
        return TopOf(band) - TopOf(band - 1) < pitch_ * kBetween;
    }

    // Whether the lines of this band are further ones of the cells above it.
    bool GoesOn(std::size_t band) const {
        if (pitch_ > height_ * kFarLines)
            return false;
        const GridBand& cells = grid_.bands[band];
        if (const GridCell* const key = CellIn(cells, 0); key != nullptr)
            return !areKeysLower_ && BeginsLower(key->line.text) &&
                   CellIn(grid_.bands[band - 1], 0);
        bool areWords = true;
        for (const GridCell& cell : cells) {
            const GridCell* const above = CellIn(grid_.bands[band - 1], cell.column);
            if (above == nullptr ||
                (IsFigureCell(cell.line.text) && IsFigureCell(above->line.text)))
                return false;
            areWords = areWords && !BeginsLower(cell.line.text) &&
                       above->line.text.find(' ') == std::string::npos;
        }
        return cells.size() < 2 || !areWords;
    }

    bool IsTable() const {
        const std::size_t columns = grid_.columns.size();
        if (rows_.size() < kLeastGridRows || columns < 2 || !IsFilled() || !IsAligned())
            return false;
        if (IsRunningText(0) || HoldsMargin() || HoldsEntries() || BreaksSentences())
            return false;
        return columns >= kLeastGridColumns || HoldsFigures(1) || AreKeysWithTexts();
    }

    // Names and, beside each of them, what they are: longer, of one line, none as wide as all
    // others, as lines of running text and of verse would be.
    bool AreKeysWithTexts() const {
        std::size_t keys = 0;
        std::size_t texts = 0;
        std::size_t several = 0;  // words: two addresses may stand so, too
        std::size_t wide = 0;
        for (const GridBand& band : grid_.bands) {
            if (band.size() != 2 || band[0].column == band[1].column ||
                band[0].line.text.size() > kLongestKey)
                return false;
            keys += band[0].line.text.size();
            texts += band[1].line.text.size();
            const std::string& key = band[0].line.text;
            several += key.front() == '-' || key.find(' ') == std::string::npos ? 0U : 1U;
            wide += IsWide(band[1]) ? 1U : 0U;
        }
        const auto rows = static_cast<double>(grid_.bands.size());
        return grid_.bands.size() >= kLeastKeys && rows == static_cast<double>(rows_.size()) &&
               static_cast<double>(texts) > static_cast<double>(keys) * kLongerThanKeys &&
               several * 3 <= grid_.bands.size() && wide * 2 < grid_.bands.size();
    }

    // Few rows may stand so by chance.
    bool IsFilled() const {
        std::vector<std::size_t> filled(grid_.columns.size());  // cells of each column
        for (std::size_t row = 0; row < rows_.size(); ++row) {
            std::vector<bool> isIn(grid_.columns.size());
            const std::size_t end = row + 1 < rows_.size() ? rows_[row + 1] : grid_.bands.size();
            for (std::size_t band = rows_[row]; band < end; ++band)
                for (const GridCell& cell : grid_.bands[band])
                    isIn[cell.column] = true;
            for (std::size_t i = 0; i < isIn.size(); ++i)
                filled[i] += isIn[i] ? 1U : 0U;
        }
        const auto rows = static_cast<double>(rows_.size());
        const double least = rows_.size() < kFewRows ? kLeastOfFew : kLeastFilled;
        return static_cast<double>(std::accumulate(filled.begin(), filled.end(), std::size_t{0})) >=
                   rows * static_cast<double>(filled.size()) * least &&
               static_cast<double>(*std::min_element(filled.begin(), filled.end())) >=
                   std::max(2.0, rows * kLeastOfColumn);
    }

    // By their left sides, their middles or their right sides.
    bool IsAligned() const {
        std::vector<std::array<std::vector<double>, 3>> places(grid_.columns.size());
        std::size_t lines = 0;
        for (const GridBand& band : grid_.bands)
            for (const GridCell& cell : band) {
                auto& [left, middle, right] = places[cell.column];
                left.push_back(cell.line.left);
                middle.push_back((cell.line.left + cell.line.right) / 2);
                right.push_back(cell.line.right);
                ++lines;
            }
        std::size_t aligned = 0;
        for (auto& column : places) {
            std::size_t best = 0;
            for (std::vector<double>& way : column) {
                std::sort(way.begin(), way.end());
                for (std::size_t begin = 0, end = 0; end < way.size(); ++end) {
                    while (way[end] - way[begin] > height_ * kAligned)
                        ++begin;
                    best = std::max(best, end + 1 - begin);
                }
            }
            aligned += best;
        }
        return static_cast<double>(aligned) >= static_cast<double>(lines) * kLeastAligned;
    }

    bool IsWide(const GridCell& cell) const {
        const GridColumn& column = grid_.columns[cell.column];
        return cell.line.text.size() > kLongestWords &&
               cell.line.right - cell.line.left > (column.right - column.left) * kWide;
    }

    bool IsRunningText(std::size_t column) const {
        std::size_t lines = 0;
        std::size_t wide = 0;
        std::size_t letters = 0;
        for (const GridBand& band : grid_.bands)
            if (const GridCell* const cell = CellIn(band, column); cell != nullptr) {
                ++lines;
                letters += cell->line.text.size();
                wide += IsWide(*cell) ? 1U : 0U;
            }
        return letters > kLongestKey * lines || wide * 2 > lines;
    }

    // "[Function]", "(3)", of a list "[12]": stand at the side of something else.
    bool HoldsMargin() const {
        std::size_t notes = 0;
        std::size_t keys = 0;
        std::size_t items = 0;
        for (const GridBand& band : grid_.bands) {
            const std::string& last = band.back().line.text;
            notes += last.back() == ']' || (last.front() == '(' && last.back() == ')') ? 1U : 0U;
            keys += band.front().column == 0 ? 1U : 0U;
            items += band.front().column == 0 && band.front().line.text.front() == '[' ? 1U : 0U;
        }
        return notes * 3 > grid_.bands.size() || items * 2 > keys;
    }

    bool HoldsEntries() const {
        std::size_t lines = 0;
        std::size_t entries = 0;
        for (const GridBand& band : grid_.bands)
            for (const GridCell& cell : band) {
                ++lines;
                entries += IsEntry(cell.line.text) ? 1U : 0U;
            }
        return entries * 3 > lines;
    }

    bool HoldsFigures(std::size_t column) const {
        std::size_t lines = 0;
        std::size_t figures = 0;
        for (const GridBand& band : grid_.bands)
            if (const GridCell* const cell = CellIn(band, column); cell != nullptr) {
                ++lines;
                figures += IsFigureCell(cell->line.text) ? 1U : 0U;
            }
        return figures > 1 && figures + 1 >= lines;
    }

    // Sentences that go on from row to row stand beside something else.
    bool BreaksSentences() const {
        std::size_t begun = 0;
        std::size_t broken = 0;
        for (const std::size_t row : rows_)
            for (const GridCell& cell : grid_.bands[row]) {
                const GridCell* const above =
                    row == 0 ? nullptr : CellIn(grid_.bands[row - 1], cell.column);
                if (above == nullptr || !IsWide(*above))
                    continue;
                ++begun;
                broken += BeginsLower(cell.line.text) ? 1U : 0U;
            }
        return broken > 1 && broken * 3 > begun;
    }

    const PageGrid& grid_;
    const double pitch_;
    const double height_;
    std::vector<std::size_t> parts_;
    std::vector<std::size_t> rows_;
    bool isPadded_ = false;
    bool areKeysLower_ = false;
    bool areMiddle_ = false;  // cells of few lines beside those of many
};

}  // namespace

double PitchOf(const PageGrid& grid) {
    std::vector<double> distances;
    std::vector<const PdfLine*> above(grid.columns.size());
    for (const GridBand& band : grid.bands)
        for (const GridCell& cell : band) {
            const PdfLine*& last = above[cell.column];
            if (last != nullptr && cell.line.top - last->top > cell.line.height * 0.7)
                distances.push_back(cell.line.top - last->top);
            last = &cell.line;
        }
    std::sort(distances.begin(), distances.end());
    for (std::size_t i = 1; i < distances.size(); ++i)
        if (distances[i] - distances[i - 1] < distances[i] * kSameDistance)
            return distances[i];
    return distances.empty() ? grid.bands.front().front().line.height : distances.front();
}

std::vector<std::size_t> RowsOf(const PageGrid& grid) {
    return GridRows(grid).Find();
}
