#include <glib.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "documents/page_grid.h"

namespace {

// Of the letters' height: how far lines of one band stand apart, above each other; what may part
// cells, and what does where other rows show it; what columns stand apart.
constexpr double kSameBand = 0.4;
constexpr double kCellGap = 0.45;
constexpr double kColumnGap = 0.38;
constexpr double kGutterOfWords = 0.3;
constexpr double kCellGapInLetters = 1.2;  // of the width of the line's letters
constexpr std::size_t kLeastWord = 2;      // of words whose width is measured
constexpr std::size_t kLeastMeasured = 4;
constexpr double kSameWidth = 0.01;
constexpr double kMostSame = 0.7;
constexpr std::size_t kLeastStretched = 4;  // words' gaps of a line, of which the widest is
constexpr double kSameBlanks = 1.5;         // of the least one
constexpr double kWidestBlank = 1.2;        // of the letters' height

// A blank stands before it.
bool MayPart(const PdfLine& line, const PdfLine::Gap& gap) {
    return gap.at > 0 && gap.at < line.text.size() && line.text[gap.at - 1] == ' ';
}

double LetterWidth(const PdfLine& line) {
    double width = line.right - line.left;
    for (const PdfLine::Gap& gap : line.gaps)
        width -= gap.right - gap.left;
    const glong letters = g_utf8_strlen(line.text.c_str(), static_cast<gssize>(line.text.size())) -
                          static_cast<glong>(line.gaps.size());
    return width / static_cast<double>(std::max<glong>(letters, 1));
}

// All its words stand equally far apart: it fills its column's width.
bool IsStretched(const PdfLine& line) {
    if (line.gaps.size() < kLeastStretched ||
        static_cast<std::size_t>(std::count(line.text.begin(), line.text.end(), ' ')) !=
            line.gaps.size())
        return false;
    const auto [least, most] = std::minmax_element(
        line.gaps.begin(), line.gaps.end(), [](const auto& one, const auto& other) {
            return one.right - one.left < other.right - other.left;
        });
    const double widest = most->right - most->left;
    return widest < line.height * kWidestBlank &&
           widest < (least->right - least->left) * kSameBlanks;
}

void JoinWords(GridBand& band, const std::vector<GridColumn>& columns) {
    GridBand cells;
    for (GridCell& words : band) {
        const auto next = std::upper_bound(
            columns.begin(), columns.end(), words.line.left,
            [](double left, const GridColumn& column) { return left < column.left; });
        words.column =
            static_cast<std::size_t>(std::max<std::ptrdiff_t>(next - columns.begin() - 1, 0));
        if (!cells.empty() && cells.back().column == words.column &&
            cells.back().origin == words.origin) {
            cells.back().line.text += ' ' + words.line.text;
            cells.back().line.right = words.line.right;
        } else {
            cells.push_back(std::move(words));
        }
    }
    band = std::move(cells);
}

}  // namespace

std::vector<PdfLine> WordsApart(const PdfLine& line, double leastGap) {
    std::vector<PdfLine> parts;
    std::vector<PdfLine::Gap> gaps;
    std::size_t begin = 0;
    double left = line.left;
    const auto add = [&](std::size_t end, double right) {
        PdfLine& part = parts.emplace_back();
        part.text = line.text.substr(begin, end - begin);
        part.left = left;
        part.right = right;
        part.top = line.top;
        part.height = line.height;
        part.gaps = std::exchange(gaps, {});
    };
    const double letter = LetterWidth(line);
    const bool isStretched = IsStretched(line);
    for (PdfLine::Gap gap : line.gaps) {
        if (gap.at <= begin + 1 || !MayPart(line, gap))  // no part is empty
            continue;
        const double width = gap.right - gap.left;
        // A blank that is as wide as letters are, as on typewriters, is nothing but a blank.
        const bool isBlank = isStretched || std::abs(width - letter) < letter * kSameWidth;
        if (width >= leastGap && !isBlank) {
            add(gap.at - 1, gap.left);
            begin = gap.at;
            left = gap.right;
        } else {
            gap.at -= begin;
            gaps.push_back(gap);
        }
    }
    add(line.text.size(), line.right);
    return parts;
}

std::vector<GridBand> BandsOf(const PdfPage& page, std::size_t begin, std::size_t end) {
    std::vector<GridBand> bands;
    std::vector<std::size_t> order;
    for (std::size_t i = begin; i < end; ++i)
        if (page[i].height > 0)
            order.push_back(i);
    std::stable_sort(order.begin(), order.end(), [&page](std::size_t one, std::size_t other) {
        return page[one].Middle() < page[other].Middle();
    });
    for (const std::size_t i : order) {
        const PdfLine& line = page[i];
        if (bands.empty() ||
            line.Middle() - bands.back().front().line.Middle() > line.height * kSameBand)
            bands.emplace_back();
        for (PdfLine& part : WordsApart(
                 line, std::max(line.height * kCellGap, LetterWidth(line) * kCellGapInLetters)))
            bands.back().push_back({std::move(part), i});
    }
    for (GridBand& band : bands)
        std::stable_sort(band.begin(), band.end(), [](const GridCell& one, const GridCell& other) {
            return one.line.left < other.line.left;
        });
    return bands;
}

void PartColumns(PageGrid& grid) {
    std::vector<GridColumn> words;
    double slack = 0;
    for (GridBand& band : grid.bands) {
        GridBand cells;
        for (GridCell& cell : band)
            for (PdfLine& part : WordsApart(cell.line, cell.line.height * kColumnGap)) {
                words.push_back({part.left, part.right});
                cells.push_back({std::move(part), cell.origin});
            }
        slack = std::max(slack, cells.front().line.height * kGutterOfWords);
        band = std::move(cells);
    }
    std::sort(words.begin(), words.end(),
              [](const GridColumn& one, const GridColumn& other) { return one.left < other.left; });
    grid.columns.clear();
    for (const GridColumn& word : words)
        if (grid.columns.empty() || word.left > grid.columns.back().right + slack)
            grid.columns.push_back(word);
        else
            grid.columns.back().right = std::max(grid.columns.back().right, word.right);
    for (GridBand& band : grid.bands)
        JoinWords(band, grid.columns);
}

bool IsListing(const PageGrid& grid) {
    std::vector<double> widths;
    for (const GridBand& band : grid.bands)
        for (const GridCell& cell : band)
            if (const std::string& text = cell.line.text;
                text.size() >= kLeastWord && cell.line.gaps.empty() &&
                std::any_of(text.begin(), text.end(),
                            [](char sign) { return g_ascii_isalpha(sign); }) &&
                std::all_of(text.begin(), text.end(),
                            [](char sign) { return g_ascii_isgraph(sign); }))
                widths.push_back((cell.line.right - cell.line.left) /
                                 static_cast<double>(text.size()));
    if (widths.size() < kLeastMeasured)
        return false;
    std::sort(widths.begin(), widths.end());
    const double usual = widths[widths.size() / 2];
    const auto same = std::count_if(widths.begin(), widths.end(), [usual](double width) {
        return std::abs(width - usual) < usual * kSameWidth;
    });
    return static_cast<double>(same) > static_cast<double>(widths.size()) * kMostSame;
}
