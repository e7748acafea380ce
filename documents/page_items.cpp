#include <glib.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

#include "documents/pdf_pages.h"

namespace {

// Of the letters' height: how far a mark and its item stand apart, above each other and side by
// side.
constexpr double kBesideMark = 0.4;
constexpr double kLargestItemGap = 5;
constexpr double kRoomBehind = 0.6;
constexpr int kMostOnLine = 32;                   // lines at one height that are looked at
constexpr std::size_t kLongestMarkedLine = 1000;  // gets no more marks
constexpr std::size_t kMostDigits = 3;
constexpr char32_t kMarks[] = {U'•', U'‣', U'⁃', U'◦', U'▪', U'▫', U'●', U'○', U'■', U'□', U'◆',
                               U'◇', U'❖', U'➢', U'►', U'▶', U'✓', U'✔', U'➔', U'→', U'∙'};
// What also stands within sentences, or is a word: marks where much room is left behind them.
constexpr char32_t kFaintMarks[] = {U'-', U'–', U'—', U'*', U'·', U'o'};
// Symbol fonts keep their signs there, and nobody can say them.
constexpr char32_t kFirstOfSymbolFonts = 0xF020;
constexpr char32_t kLastOfSymbolFonts = 0xF0FF;

struct Mark {
    std::size_t bytes = 0;
    bool isFaint = false;
    std::string_view said;  // in its place; empty: itself
};

std::optional<Mark> MarkOf(std::string_view line) {
    if (line.empty())
        return std::nullopt;
    const char32_t first = g_utf8_get_char(line.data());
    const std::size_t bytes = static_cast<std::size_t>(g_utf8_next_char(line.data()) - line.data());
    if (bytes < line.size() && line[bytes] != ' ')
        return std::nullopt;
    if (first >= kFirstOfSymbolFonts && first <= kLastOfSymbolFonts)
        return Mark{bytes, false, "•"};
    if (std::ranges::find(kMarks, first) != std::end(kMarks))
        return Mark{bytes, false, {}};
    if (std::ranges::find(kFaintMarks, first) != std::end(kFaintMarks))
        return Mark{bytes, true, first == U'o' ? std::string_view("◦") : std::string_view()};
    return std::nullopt;
}

// "3.", "(b)", "[12]": what one line begins with, and the next one goes on with.
struct ItemNumber {
    std::string style;  // the signs around it, and whether it is a letter
    int value = 0;
    std::size_t bytes = 0;
};

std::optional<ItemNumber> ItemNumberOf(std::string_view line) {
    const std::size_t end = line.find(' ');
    if (end == std::string_view::npos || end > kMostDigits + 2)
        return std::nullopt;
    std::string_view inner = line.substr(0, end);
    ItemNumber number;
    number.bytes = end;
    if (inner.starts_with('(') || inner.starts_with('[')) {
        number.style += inner.front();
        inner.remove_prefix(1);
    }
    if (inner.empty() || std::string_view(".)]").find(inner.back()) == std::string_view::npos)
        return std::nullopt;
    number.style += inner.back();
    inner.remove_suffix(1);
    if (inner.size() == 1 && g_ascii_isalpha(inner.front())) {
        number.style += g_ascii_islower(inner.front()) ? 'a' : 'A';
        number.value = static_cast<unsigned char>(inner.front());
        return number;
    }
    if (inner.empty() || inner.size() > kMostDigits ||
        inner.find_first_not_of("0123456789") != std::string_view::npos)
        return std::nullopt;
    for (const char digit : inner)
        number.value = number.value * 10 + (digit - '0');
    return number;
}

bool LeavesRoomBehind(const PdfLine& line, std::size_t bytes) {
    return !line.gaps.empty() && line.gaps.front().at == bytes + 1 &&
           line.gaps.front().right - line.gaps.front().left > line.height * kRoomBehind;
}

class PageItems {
public:
    explicit PageItems(PdfPage& page) : page_(page) {}

    void Find() {
        PutMarksToLines();
        for (PdfLine& line : page_)
            if (const auto mark = MarkOf(line.text);
                mark && mark->bytes < line.text.size() &&
                (!mark->isFaint || LeavesRoomBehind(line, mark->bytes)))
                Begin(line, *mark);
        FindNumbers();
    }

private:
    static void Begin(PdfLine& line, const Mark& mark) {
        line.beginsItem = true;
        if (mark.said.empty())
            return;
        line.text.replace(0, mark.bytes, mark.said);
        for (PdfLine::Gap& gap : line.gaps)
            gap.at += mark.said.size() - mark.bytes;
    }

    // Some printers make the marks of a list a column of their own.
    void PutMarksToLines() {
        std::multimap<double, std::size_t> lines;  // by their middle
        std::vector<std::size_t> marks;
        for (std::size_t i = 0; i < page_.size(); ++i) {
            const auto mark = MarkOf(page_[i].text);
            // A dash alone may be a table's empty cell.
            if (mark && !mark->isFaint && mark->bytes == page_[i].text.size() &&
                page_[i].height > 0)
                marks.push_back(i);
            else if (!mark)
                lines.emplace(page_[i].Middle(), i);
        }
        std::vector<bool> isTaken(page_.size());
        for (const std::size_t i : marks) {
            PdfLine* const line = ItemOf(page_[i], lines);
            if (line == nullptr)
                continue;
            const Mark mark = *MarkOf(page_[i].text);
            const std::string said(mark.said.empty() ? std::string_view(page_[i].text) : mark.said);
            line->text.insert(0, said + ' ');
            for (PdfLine::Gap& gap : line->gaps)
                gap.at += said.size() + 1;
            line->beginsItem = true;
            isTaken[i] = true;
        }
        std::size_t kept = 0;
        bool beginsColumn = false;
        for (std::size_t i = 0; i < page_.size(); ++i) {
            beginsColumn = beginsColumn || page_[i].beginsColumn;
            if (isTaken[i])
                continue;
            if (kept != i)
                page_[kept] = std::move(page_[i]);
            page_[kept++].beginsColumn = std::exchange(beginsColumn, false);
        }
        page_.resize(kept);
    }

    PdfLine* ItemOf(const PdfLine& mark, const std::multimap<double, std::size_t>& lines) {
        // The mark's own letters may be of another size.
        PdfLine* nearest = nullptr;
        double least = HUGE_VAL;
        int looked = 0;
        for (auto at = lines.lower_bound(mark.Middle() - mark.height);
             at != lines.end() && at->first < mark.Middle() + mark.height && looked < kMostOnLine;
             ++at, ++looked) {
            PdfLine& line = page_[at->second];
            const double gap = line.left - mark.right;
            if (std::abs(at->first - mark.Middle()) < line.height * kBesideMark &&
                gap > -line.height / 4 && gap < std::min(least, line.height * kLargestItemGap) &&
                !line.beginsItem && line.text.size() < kLongestMarkedLine) {
                least = gap;
                nearest = &line;
            }
        }
        return nearest;
    }

    // A number that begins a line is its item's where room is left behind it and it stands further
    // out than the line above, or where the one before it or behind it begins a line at the same
    // place: a sentence may well end in a year.
    void FindNumbers() {
        std::map<std::string, std::pair<PdfLine*, int>> last;  // by style
        const PdfLine* above = nullptr;
        for (PdfLine& line : page_) {
            const PdfLine* const formerly = std::exchange(above, &line);
            const auto number = line.height > 0 ? ItemNumberOf(line.text) : std::nullopt;
            if (!number)
                continue;
            const bool standsOut = formerly == nullptr || line.beginsBlock ||
                                   line.left < formerly->left - line.height * kBesideMark;
            line.beginsItem =
                line.beginsItem || (standsOut && LeavesRoomBehind(line, number->bytes));
            auto& [before, value] = last[number->style];
            if (before != nullptr && value + 1 == number->value &&
                std::abs(before->left - line.left) < line.height)
                before->beginsItem = line.beginsItem = true;
            before = &line;
            value = number->value;
        }
    }

    PdfPage& page_;
};

}  // namespace

void FindItems(PdfPage& page) {
    PageItems(page).Find();
}
