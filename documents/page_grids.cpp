#include <glib.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "documents/page_grid.h"
#include "documents/small_texts.h"

namespace {

constexpr std::size_t kMostColumns = 40;
// Of a page; of a table, and above its first row; and cells of a band: more is no page of a book.
constexpr std::size_t kMostTables = 200;
constexpr std::size_t kMostBands = 400;
constexpr std::size_t kMostBandsAbove = 10;
constexpr std::size_t kMostCells = 200;
constexpr std::ptrdiff_t kLeastOfContents = 3;
// Of the letters' height: what columns stand apart, and bands of a table.
constexpr double kLeastGutter = 0.3;
constexpr double kFarBand = 3;
constexpr double kNearBand = 1.9;
constexpr double kFarther = 1.6;  // than all others between the bands of a table
constexpr std::size_t kLeastBands = 4;
constexpr double kLargeWords = 1.25;   // of the table's first line's height
constexpr double kBetweenLines = 0.8;  // of the distance of a cell's lines
constexpr double kNextLine = 1.1;      // the same

class PageGrids {
public:
    explicit PageGrids(PdfPage& page) : page_(page) {}

    void Join() {
        if (std::ranges::count_if(page_, HoldsLeader, &PdfLine::text) >= kLeastOfContents)
            return;
        for (std::size_t begin = 0, end = 0; begin < page_.size(); begin = end) {
            for (end = begin + 1; end < page_.size() && !page_[end].beginsColumn;)
                ++end;
            bands_ = BandsOf(page_, begin, end);
            FindGrids();
            TakePart(begin, end);
        }
        page_ = std::move(joined_);
    }

private:
    struct Table {
        PdfPage lines;
        std::vector<std::size_t> origins;
        double top;
    };

    // From each band with several cells on, as far as columns last.
    void FindGrids() {
        tables_.clear();
        for (std::size_t begin = 0, end = 0; begin < bands_.size() && tables_.size() < kMostTables;
             begin = end) {
            end = begin + 1;
            if (bands_[begin].size() < 2)
                continue;
            PageGrid grid;
            end = begin;
            while (end < bands_.size() && end - begin < kMostBands && !IsFar(end, begin) &&
                   Add(grid, bands_[end]))
                ++end;
            end = std::max(end, begin + 1);
            Trim(grid);
            if (grid.columns.size() < 2 || grid.bands.size() < 2)
                continue;
            TakeLinesAbove(grid, begin);
            PartColumns(grid);
            if (grid.columns.size() > kMostColumns || IsListing(grid))
                continue;
            if (const std::vector<std::size_t> rows = RowsOf(grid); !rows.empty())
                AddTable(grid, rows);
        }
    }

    // Another table may stand below.
    bool IsFar(std::size_t band, std::size_t begin) const {
        if (band == begin)
            return false;
        const double height = bands_[band].front().line.height;
        const auto distance = [this](std::size_t below) {
            return bands_[below].front().line.top - bands_[below - 1].front().line.top;
        };
        if (distance(band) > height * kFarBand)
            return true;
        if (band - begin < kLeastBands || distance(band) < height * kNearBand)
            return false;
        double most = 0;  // till now
        for (std::size_t i = begin + 1; i < band; ++i)
            most = std::max(most, distance(i));
        return distance(band) > most * kFarther;
    }

    // The only column that the words stand in; the number of columns: a new one; more: several.
    static std::size_t ColumnOf(const std::vector<GridColumn>& columns, const PdfLine& words) {
        const double slack = words.height * kLeastGutter;
        std::size_t found = columns.size();
        for (std::size_t i = 0; i < columns.size(); ++i)
            if (words.left < columns[i].right + slack && words.right > columns[i].left - slack)
                found = found == columns.size() ? i : columns.size() + 1;
        return found;
    }

    static bool AddTo(std::vector<GridColumn>& columns, const PdfLine& words) {
        const std::size_t column = ColumnOf(columns, words);
        if (column > columns.size() || columns.size() > kMostColumns)
            return false;
        if (column == columns.size()) {
            columns.push_back({words.left, words.right});
        } else {
            columns[column].left = std::min(columns[column].left, words.left);
            columns[column].right = std::max(columns[column].right, words.right);
        }
        return true;
    }

    // False where the band does not stand in the grid's columns.
    static bool Add(PageGrid& grid, const GridBand& band) {
        if (band.size() > kMostCells)
            return false;
        std::vector<GridColumn> columns = grid.columns;
        GridBand cells;
        for (const GridCell& cell : band) {
            if (!grid.bands.empty() &&
                cell.line.height > grid.bands.front().front().line.height * kLargeWords)
                return false;
            if (AddTo(columns, cell.line)) {
                cells.push_back(cell);
                continue;
            }
            // Words that stand near each other are parted where columns are.
            for (PdfLine& words : WordsApart(cell.line, 0)) {
                if (!AddTo(columns, words))
                    return false;
                cells.push_back({std::move(words), cell.origin});
            }
        }
        grid.columns = std::move(columns);
        grid.bands.push_back(std::move(cells));
        return true;
    }

    // What stands alone below a table is its last cell's, or no part of it.
    static void Trim(PageGrid& grid) {
        while (grid.bands.size() > 1 && grid.bands.back().size() == 1) {
            SetColumns(grid);
            const GridCell& last = grid.bands.back().front();
            const std::size_t above = grid.bands.size() - 2;
            bool goesOn = false;  // a line above may be of cells in the middle of their row
            for (std::size_t band = above + 1; band-- > above - std::min<std::size_t>(above, 1);)
                goesOn = goesOn || std::any_of(grid.bands[band].begin(), grid.bands[band].end(),
                                               [&last](const GridCell& cell) {
                                                   return cell.column == last.column;
                                               });
            goesOn = goesOn && last.column > 0 &&
                     last.line.top - grid.bands[above].front().line.top < PitchOf(grid) * kNextLine;
            if (goesOn)
                return;
            grid.bands.pop_back();
        }
    }

    // Cells may begin above others of their row.
    void TakeLinesAbove(PageGrid& grid, std::size_t begin) {
        SetColumns(grid);
        const double pitch = PitchOf(grid);
        for (std::size_t left = std::min(begin, kMostBandsAbove);
             left > 0 && bands_[begin - 1].size() == 1; --left) {
            --begin;
            const PdfLine& line = bands_[begin].front().line;
            const double distance = grid.bands.front().front().line.top - line.top;
            const std::size_t column = ColumnOf(grid.columns, line);
            const bool isNear = distance < pitch * kBetweenLines ||
                                (distance < pitch * kNextLine && pitch < line.height * kNextLine);
            if (!isNear || column == 0 || column >= grid.columns.size())
                return;
            grid.bands.insert(grid.bands.begin(), bands_[begin]);
            AddTo(grid.columns, line);
        }
    }

    static void SetColumns(PageGrid& grid) {
        std::sort(
            grid.columns.begin(), grid.columns.end(),
            [](const GridColumn& one, const GridColumn& other) { return one.left < other.left; });
        for (GridBand& band : grid.bands)
            for (GridCell& cell : band)
                cell.column = std::min(ColumnOf(grid.columns, cell.line), grid.columns.size() - 1);
    }

    void AddTable(const PageGrid& grid, const std::vector<std::size_t>& rows) {
        Table table{{}, {}, grid.bands.front().front().line.top};
        bool areLines = true;  // of the page, each a row: they are read so anyway
        for (std::size_t row = 0; row < rows.size(); ++row) {
            const std::size_t end = row + 1 < rows.size() ? rows[row + 1] : grid.bands.size();
            const std::size_t first = table.origins.size();
            AddRow(table, grid, rows[row], end);
            for (std::size_t i = first; i < table.origins.size(); ++i)
                areLines = areLines && table.origins[i] == table.origins[first];
        }
        if (areLines)
            return;
        table.lines.front().beginsBlock = true;
        std::sort(table.origins.begin(), table.origins.end());
        tables_.push_back(std::move(table));
    }

    static void AddRow(Table& table, const PageGrid& grid, std::size_t begin, std::size_t end) {
        std::vector<std::vector<const GridCell*>> columns(grid.columns.size());
        for (std::size_t band = begin; band < end; ++band)
            for (const GridCell& cell : grid.bands[band])
                columns[cell.column].push_back(&cell);
        const std::size_t first = table.lines.size();
        for (const std::vector<const GridCell*>& cells : columns)
            for (const GridCell* cell : cells) {
                const bool isNext = cell == cells.front() && table.lines.size() > first;
                if (isNext && EndsCell(table.lines.back().text) &&
                    (cell->line.text.empty() || !g_ascii_ispunct(cell->line.text.front())))
                    table.lines.back().text += ',';
                PdfLine& line = table.lines.emplace_back(cell->line);
                line.height = table.lines[first].height;
                line.isRow = true;
                line.isInRow = table.lines.size() > first + 1;
                line.beginsCell = isNext;
                table.origins.push_back(cell->origin);
            }
    }

    // "12", "Town": a comma before the next cell is heard as a pause.
    static bool EndsCell(std::string_view text) {
        const auto last = static_cast<unsigned char>(text.empty() ? '.' : text.back());
        return last >= 0x80 || g_ascii_isalnum(static_cast<char>(last)) || last == ')' ||
               last == '%';
    }

    // Tables stand where their first line stood, behind those of the lines between that are above.
    void TakePart(std::size_t begin, std::size_t end) {
        std::vector<bool> isTaken(end - begin);
        for (const Table& table : tables_)
            for (const std::size_t origin : table.origins)
                isTaken[origin - begin] = true;
        std::sort(tables_.begin(), tables_.end(), [](const Table& one, const Table& other) {
            return one.origins.front() < other.origins.front();
        });
        auto next = tables_.begin();
        bool isBehindTable = false;
        bool beginsBlock = false;  // of a line that a table has taken
        for (std::size_t i = begin; i < end; ++i) {
            if (next != tables_.end() && i == next->origins.front()) {
                std::vector<std::size_t> above;
                for (std::size_t line = i; line < next->origins.back(); ++line)
                    if (!isTaken[line - begin] && page_[line].top < next->top)
                        above.push_back(line);
                for (const std::size_t line : above) {
                    isTaken[line - begin] = true;
                    joined_.push_back(std::move(page_[line]));
                    joined_.back().beginsBlock =
                        joined_.back().beginsBlock || line == above.front();
                }
                next->lines.front().beginsColumn = page_[i].beginsColumn;
                std::move(next->lines.begin(), next->lines.end(), std::back_inserter(joined_));
                ++next;
                isBehindTable = true;
            }
            if (isTaken[i - begin]) {
                beginsBlock = beginsBlock || page_[i].beginsBlock;
                continue;
            }
            joined_.push_back(std::move(page_[i]));
            const bool begins = std::exchange(isBehindTable, false) || beginsBlock;
            beginsBlock = false;
            joined_.back().beginsBlock = joined_.back().beginsBlock || begins;
        }
    }

    PdfPage& page_;
    PdfPage joined_;
    std::vector<GridBand> bands_;  // of the part that is looked at
    std::vector<Table> tables_;    // in it
};

}  // namespace

void JoinGrids(PdfPage& page) {
    PageGrids(page).Join();
}
