// The cells of a printed page that stand in columns, and the rows that they make.
#pragma once

#include <cstddef>
#include <vector>

#include "documents/pdf_pages.h"

// A line of a cell.
struct GridCell {
    PdfLine line;
    std::size_t origin = 0;  // the page's line that it is a part of
    std::size_t column = 0;
};

// Cells' lines that stand side by side, from the left.
using GridBand = std::vector<GridCell>;

// Lengths are in points, from the page's left side.
struct GridColumn {
    double left = 0;
    double right = 0;
};

struct PageGrid {
    std::vector<GridBand> bands;  // downwards, none of them empty
    std::vector<GridColumn> columns;
};

// Of a line what stands between gaps that are at least as wide, in points, and are no blanks.
std::vector<PdfLine> WordsApart(const PdfLine& line, double leastGap);

// The page's lines from `begin` to `end`, parted where cells may be.
std::vector<GridBand> BandsOf(const PdfPage& page, std::size_t begin, std::size_t end);

// Where no line of the grid has words, columns are parted, however near they are.
void PartColumns(PageGrid& grid);

// Whether its letters are all as wide: blanks, not columns, tell how it goes on.
bool IsListing(const PageGrid& grid);

// How far lines of one cell stand below each other, or rows do, where no cell has several lines.
double PitchOf(const PageGrid& grid);

// The bands in which rows begin; none where the grid is no table.
std::vector<std::size_t> RowsOf(const PageGrid& grid);
