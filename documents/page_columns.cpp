#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>
#include <numeric>
#include <utility>

#include "documents/pdf_pages.h"
#include "documents/small_texts.h"

namespace {

constexpr std::size_t kLeastLines = 8;  // long ones, of a column
constexpr std::size_t kPlaces = 1024;   // across the page, at which a gutter is looked for
// Of a column's width: what makes a line a long one. Of the lines: how many may cross the gutter.
constexpr double kLong = 0.6;
constexpr double kMostOfLetters = 0.65;  // of a column's, where its long lines are not the most
constexpr double kMostCrossing = 0.34;
// Of how many lines beside the gutter one narrow line across it makes these a column in the middle.
constexpr std::size_t kLeastBetween = 8;
constexpr double kGutter = 0.6;         // of the letters' height, at least
constexpr double kSmallLetters = 0.93;  // of the letters' usual height: those of notes

double BottomOf(const PdfLine& line) {
    return line.top + line.height;
}

bool MayBeGutter(const PdfLine& line, const PdfLine::Gap& gap) {
    return gap.right - gap.left > line.height * kGutter;
}

// Two columns of running text, and what stands across them.
class PageColumns {
public:
    explicit PageColumns(PdfPage& page) : page_(page) {}

    void Order() {
        if (page_.size() < kLeastLines || !FindGutter())
            return;
        Split();
        if (!FindColumns())
            return;
        FindUsualHeight();
        std::vector<std::pair<std::size_t, std::size_t>> parts;  // with their lines
        for (std::size_t i = 0; i < lines_.size(); ++i)
            parts.emplace_back(PartOf(lines_[i]), i);
        std::sort(parts.begin(), parts.end());
        std::vector<std::size_t> blocks;  // of the lines
        for (const PdfLine& line : lines_)
            blocks.push_back((blocks.empty() ? 0 : blocks.back()) + (line.beginsBlock ? 1 : 0));
        page_.clear();
        auto before = parts.front();
        for (const auto& next : parts) {
            PdfLine& line = page_.emplace_back(std::move(lines_[next.second]));
            line.beginsColumn = next.first != before.first;
            line.beginsBlock = line.beginsBlock || line.beginsColumn ||
                               blocks[next.second] != blocks[before.second];
            before = next;
        }
    }

private:
    // The widest place in the page's inner quarter that the fewest lines cross.
    bool FindGutter() {
        left_ = std::numeric_limits<double>::max();
        right_ = std::numeric_limits<double>::lowest();
        for (const PdfLine& line : page_) {
            left_ = std::min(left_, line.left);
            right_ = std::max(right_, line.right);
        }
        const double step = (right_ - left_) / kPlaces;
        if (!(step > 0))
            return false;
        const auto placeOf = [this, step](double at) {
            return static_cast<std::size_t>(
                std::clamp((at - left_) / step, 0.0, static_cast<double>(kPlaces)));
        };
        std::array<int, kPlaces + 2> changes = {};
        for (const PdfLine& line : page_) {
            double left = line.left;
            const auto add = [&changes, &placeOf, &left](double right) {
                if (left < right) {
                    ++changes[placeOf(left)];
                    --changes[placeOf(right) + 1];
                }
            };
            for (const PdfLine::Gap& gap : line.gaps)
                if (MayBeGutter(line, gap)) {
                    add(gap.left);
                    left = gap.right;
                }
            add(line.right);
        }
        std::partial_sum(changes.begin(), changes.end(), changes.begin());
        const int least =
            *std::min_element(changes.begin() + kPlaces * 3 / 8, changes.begin() + kPlaces * 5 / 8);
        std::size_t longest = 0;
        for (std::size_t at = kPlaces * 3 / 8, begin = at; at < kPlaces * 5 / 8; ++at) {
            if (changes[at] != least)
                begin = at + 1;
            else if (at + 1 - begin > longest) {
                longest = at + 1 - begin;
                gutter_ = left_ + step * (static_cast<double>(begin + at + 1) / 2);
            }
        }
        return static_cast<double>(least) < kMostCrossing * static_cast<double>(page_.size());
    }

    // Lines that go on in the other column become two.
    void Split() {
        for (const PdfLine& line : page_) {
            lines_.push_back(line);
            for (const PdfLine::Gap& gap : line.gaps)
                if (gap.left < gutter_ && gap.right > gutter_ && MayBeGutter(line, gap)) {
                    PdfLine& first = lines_.back();
                    PdfLine second = line;
                    first.right = gap.left;
                    first.text.resize(std::min(line.text.find_last_not_of(' ', gap.at - 1) + 1,
                                               line.text.size()));
                    second.left = gap.right;
                    second.text.erase(0, gap.at);
                    second.firstWordWidth =
                        line.height / 2 *
                        static_cast<double>(std::min(second.text.find(' '), second.text.size()));
                    std::erase_if(first.gaps, [&gap](const auto& one) { return one.at >= gap.at; });
                    std::erase_if(second.gaps,
                                  [&gap](const auto& one) { return one.at <= gap.at; });
                    for (PdfLine::Gap& behind : second.gaps)
                        behind.at -= gap.at;
                    lines_.push_back(std::move(second));
                    break;
                }
        }
        double leftEnd = left_;
        double rightBegin = right_;
        for (const PdfLine& line : lines_)
            if (line.right <= gutter_)
                leftEnd = std::max(leftEnd, line.right);
            else if (line.left >= gutter_)
                rightBegin = std::min(rightBegin, line.left);
            else
                across_.push_back(line.Middle());
        std::sort(across_.begin(), across_.end());
        for (PdfLine& line : lines_)
            if (line.right <= gutter_)
                line.blockRight = std::min(line.blockRight, leftEnd);
            else if (line.left >= gutter_)
                line.blockLeft = std::max(line.blockLeft, rightBegin);
    }

    bool IsAcross(const PdfLine& line) const { return line.left < gutter_ && line.right > gutter_; }
    bool IsLong(const PdfLine& line) const {
        const double width = line.left < gutter_ ? gutter_ - left_ : right_ - gutter_;
        return !IsAcross(line) && line.right - line.left > width * kLong;
    }

    // Long lines on both sides of the gutter, side by side: running text, and no table. They are
    // most of the lines, or hold most of the words beside contents, lists and formulas.
    bool FindColumns() {
        std::array<std::size_t, 2> beside = {};
        std::array<std::size_t, 2> longOnes = {};
        std::array<std::size_t, 2> letters = {};
        std::array<std::size_t, 2> lettersInLongOnes = {};
        std::array<std::size_t, 2> numbers = {};
        std::array<double, 2> top = {HUGE_VAL, HUGE_VAL};
        std::array<double, 2> bottom = {-HUGE_VAL, -HUGE_VAL};
        std::size_t between = 0;
        for (const PdfLine& line : lines_)
            if (IsAcross(line)) {
                between += line.right - line.left < (right_ - left_) / 2 ? 1U : 0U;
            } else {
                const std::size_t side = SideOf(line);
                ++beside[side];
                letters[side] += line.text.size();
                numbers[side] += AreDigits(line.text) ? 1U : 0U;
                if (!IsLong(line))
                    continue;
                ++longOnes[side];
                lettersInLongOnes[side] += line.text.size();
                top[side] = std::min(top[side], line.top);
                bottom[side] = std::max(bottom[side], BottomOf(line));
            }
        top_ = std::min(top[0], top[1]);
        bottom_ = std::max(bottom[0], bottom[1]);
        if (between * kLeastBetween > beside[0] + beside[1])
            return false;
        for (const std::size_t side : {0, 1})
            if (longOnes[side] < kLeastLines ||
                (longOnes[side] * 2 < beside[side] &&
                 (static_cast<double>(lettersInLongOnes[side]) <
                      static_cast<double>(letters[side]) * kMostOfLetters ||
                  numbers[side] * 2 > beside[side])))
                return false;
        return std::min(bottom[0], bottom[1]) - std::max(top[0], top[1]) > (bottom_ - top_) / 4;
    }

    void FindUsualHeight() {
        std::map<long, std::size_t> heights;  // in half points, weighed by their letters
        std::size_t most = 0;
        for (const PdfLine& line : lines_) {
            std::size_t& letters = heights[std::lround(line.height * 2)];
            letters += line.text.size();
            if (letters > most) {
                most = letters;
                usualHeight_ = line.height;
            }
        }
        // Notes stand below all that has letters of the usual height on their side.
        for (const PdfLine& line : lines_)
            if (line.height >= usualHeight_ * kSmallLetters && line.Middle() < bottom_)
                textEnd_[SideOf(line)] = std::max(textEnd_[SideOf(line)], line.Middle());
    }

    std::size_t SideOf(const PdfLine& line) const { return line.left < gutter_ ? 0 : 1; }

    // Heads and titles first; between two lines that stand across, the left column, then the right
    // one; notes and feet last.
    std::size_t PartOf(const PdfLine& line) const {
        const std::size_t last = 3 * (across_.size() + 1);
        if (line.Middle() < top_)
            return 0;
        const bool isNote = line.height < usualHeight_ * kSmallLetters && !IsAcross(line) &&
                            line.Middle() > textEnd_[SideOf(line)];
        if (isNote)
            return last + 1 + SideOf(line);
        if (line.top > bottom_ + line.height)
            return last + 3;
        const auto above =
            std::lower_bound(across_.begin(), across_.end(), line.Middle()) - across_.begin();
        return 3 * static_cast<std::size_t>(above) + (IsAcross(line) ? 3 : 1 + SideOf(line));
    }

    PdfPage& page_;
    PdfPage lines_;  // of it, parted at the gutter
    double left_ = 0;
    double right_ = 0;
    double gutter_ = 0;
    double top_ = 0;  // of the columns' long lines
    double bottom_ = 0;
    double usualHeight_ = 0;
    std::array<double, 2> textEnd_ = {};
    std::vector<double> across_;  // the middles of lines across the gutter, downwards
};

}  // namespace

void OrderColumns(PdfPage& page) {
    PageColumns(page).Order();
}
