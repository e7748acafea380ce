#include <glib.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

#include "documents/pdf_pages.h"

namespace {

constexpr std::string_view kWithinNumbers = ".,:/+-";
constexpr std::string_view kBesideNumbers = "%$#";
constexpr double kSameLine = 0.4;      // of the letters' height
constexpr std::size_t kLeastName = 3;  // letters before a number that belongs to them: "Windows 11"
constexpr std::size_t kMostSignsOfNumber = 8;  // "-", "%" before its digits: more are none of it

enum class Direction { kNone, kLeft, kRight, kDigit };  // of reading, what begins on the right

// A letter with the marks that stand on it.
struct Sign {
    gunichar letter = 0;
    std::string text;
    Direction direction = Direction::kNone;
};

bool IsOfRightToLeft(gunichar letter) {
    // Hebrew, Arabic and their kin.
    return (letter >= 0x590 && letter < 0x900) || (letter >= 0xFB1D && letter < 0xFE00) ||
           (letter >= 0xFE70 && letter < 0xFEFF) || (letter >= 0x10800 && letter < 0x11000) ||
           (letter >= 0x1E800 && letter < 0x1F000);
}

bool IsMarkOnLetter(gunichar letter) {
    return g_unichar_type(letter) == G_UNICODE_NON_SPACING_MARK;
}

Direction DirectionOf(gunichar letter) {
    if (g_unichar_isdigit(letter))
        return Direction::kDigit;
    if (!g_unichar_isalpha(letter) && !IsMarkOnLetter(letter))
        return Direction::kNone;
    return IsOfRightToLeft(letter) ? Direction::kRight : Direction::kLeft;
}

// "5 %", "$5": read with the number.
bool IsOfNumber(gunichar letter) {
    return (letter < 0x80 && kBesideNumbers.find(static_cast<char>(letter)) != std::string::npos) ||
           g_unichar_type(letter) == G_UNICODE_CURRENCY_SYMBOL || letter == 0xB0;
}

bool IsWithinNumber(gunichar letter) {
    return letter < 0x80 && kWithinNumbers.find(static_cast<char>(letter)) != std::string::npos;
}

constexpr std::pair<gunichar, gunichar> kBrackets[] = {
    {'(', ')'}, {'[', ']'}, {'{', '}'}, {0xAB, 0xBB}, {0x2039, 0x203A}};

bool IsBracket(gunichar letter) {
    return std::any_of(std::begin(kBrackets), std::end(kBrackets), [letter](const auto& pair) {
        return letter == pair.first || letter == pair.second;
    });
}

class ShownLine {
public:
    explicit ShownLine(std::string_view text) {
        for (const char* at = text.data(); at < text.data() + text.size();
             at = g_utf8_next_char(at)) {
            const gunichar letter = g_utf8_get_char(at);
            signs_.push_back({letter,
                              {at, static_cast<std::size_t>(g_utf8_next_char(at) - at)},
                              DirectionOf(letter)});
        }
    }

    bool HoldsRightToLeft() const {
        return std::any_of(signs_.begin(), signs_.end(),
                           [](const Sign& sign) { return sign.direction == Direction::kRight; });
    }

    // Of the first and the last letter.
    std::pair<Direction, Direction> OuterDirections() const {
        const auto isLetter = [](const Sign& sign) {
            return sign.direction == Direction::kLeft || sign.direction == Direction::kRight;
        };
        const auto first = std::find_if(signs_.begin(), signs_.end(), isLetter);
        const auto last = std::find_if(signs_.rbegin(), signs_.rend(), isLetter);
        return first == signs_.end() ? std::pair(Direction::kNone, Direction::kNone)
                                     : std::pair(first->direction, last->direction);
    }

    // Marks follow their letters, also where a program drew them before.
    void JoinMarks() {
        bool areBehind = false;  // their letters, seen from the left
        for (std::size_t i = 0; i < signs_.size(); ++i)
            areBehind = areBehind ||
                        (IsRightMark(i) && (i + 1 == signs_.size() || signs_[i + 1].letter == ' '));
        std::vector<Sign> joined;
        std::string waiting;
        for (std::size_t i = 0; i < signs_.size(); ++i) {
            if (!IsRightMark(i)) {
                joined.push_back(std::move(signs_[i]));
                joined.back().text += std::exchange(waiting, {});
            } else if (areBehind && !joined.empty()) {
                joined.back().text += signs_[i].text;
            } else {
                // The last one drawn is the first one written.
                waiting.insert(0, signs_[i].text);
            }
        }
        if (!waiting.empty() && !joined.empty())
            joined.back().text += waiting;
        signs_ = std::move(joined);
    }

    // What is read from the right on; what stands in it and is read from the left on stays so.
    void Turn(std::size_t begin, std::size_t end) {
        for (std::size_t at = begin; at < end; ++at) {
            const std::size_t islandEnd = IslandEnd(at, end);
            if (islandEnd == at)
                continue;
            std::reverse(At(at), At(islandEnd));
            at = islandEnd - 1;
        }
        std::reverse(At(begin), At(end));
        TurnBrackets(begin, end);
    }

    // Only words of this direction, with what stands between them.
    void TurnRightToLeft() {
        for (std::size_t at = 0; at < signs_.size(); ++at) {
            std::size_t begin = at;
            std::size_t end = StretchEnd(at, signs_.size(), Direction::kRight);
            if (end == at)
                continue;
            Widen(begin, end);
            Turn(begin, end);
            at = end - 1;
        }
    }

    std::size_t Size() const { return signs_.size(); }

    std::string Text() const {
        std::string text;
        for (const Sign& sign : signs_)
            text += sign.text;
        return text;
    }

private:
    std::vector<Sign>::iterator At(std::size_t index) {
        return signs_.begin() + static_cast<std::ptrdiff_t>(index);
    }
    // Behind the last letter of this direction before one of the other; where it begins, without.
    std::size_t StretchEnd(std::size_t begin, std::size_t end, Direction direction) const {
        const Direction other =
            direction == Direction::kLeft ? Direction::kRight : Direction::kLeft;
        if (signs_[begin].direction != direction)
            return begin;
        std::size_t last = begin;
        for (std::size_t i = begin; i < end && signs_[i].direction != other; ++i)
            if (signs_[i].direction == direction)
                last = i;
        return last + 1;
    }

    // By a number that hangs on its last word, and the other one of two brackets.
    void Widen(std::size_t& begin, std::size_t& end) const {
        std::size_t at = begin;
        while (at > 0 && (IsDigit(at - 1) || IsWithinNumber(signs_[at - 1].letter)))
            --at;
        if (at < begin && IsDigit(at) && signs_[begin - 1].letter == '-')
            begin = at;
        std::size_t brackets = 0;
        for (std::size_t i = begin; i < end; ++i)
            brackets += IsBracket(signs_[i].letter) ? 1U : 0U;
        if (brackets % 2 == 0)
            return;
        if (begin > 0 && IsBracket(signs_[begin - 1].letter))
            --begin;
        else if (end < signs_.size() && IsBracket(signs_[end].letter))
            ++end;
    }

    // Numbers, and words from left to right with the numbers that belong to them.
    std::size_t IslandEnd(std::size_t begin, std::size_t end) const {
        std::size_t at = begin;
        while (at < std::min(end, begin + kMostSignsOfNumber) && IsOfNumber(signs_[at].letter))
            ++at;
        at = NumberEnd(at, end);
        if (at == begin || (at < end && signs_[at].direction == Direction::kLeft))
            at = StretchEnd(at, end, Direction::kLeft);
        else if (!IsDigit(at - 1) && !HoldsDigit(begin, at))
            return begin;
        std::size_t letters = 0;
        while (at - letters > begin && signs_[at - letters - 1].direction == Direction::kLeft)
            ++letters;
        const bool isName =
            letters >= kLeastName && at + 1 < end && signs_[at].letter == ' ' && IsDigit(at + 1);
        return letters == 0 ? at : NumberEnd(at + (isName ? 1 : 0), end);
    }
    std::size_t NumberEnd(std::size_t at, std::size_t end) const {
        const std::size_t begin = at;
        while (at < end && (IsDigit(at) || (at > begin && at + 1 < end && IsDigit(at + 1) &&
                                            IsWithinNumber(signs_[at].letter))))
            ++at;
        while (at > begin && at < end && IsOfNumber(signs_[at].letter))
            ++at;
        return at;
    }
    bool HoldsDigit(std::size_t begin, std::size_t end) const {
        return std::any_of(signs_.begin() + static_cast<std::ptrdiff_t>(begin),
                           signs_.begin() + static_cast<std::ptrdiff_t>(end),
                           [](const Sign& sign) { return sign.direction == Direction::kDigit; });
    }

    bool IsDigit(std::size_t at) const { return signs_[at].direction == Direction::kDigit; }
    bool IsRightMark(std::size_t at) const {
        return signs_[at].direction == Direction::kRight && IsMarkOnLetter(signs_[at].letter);
    }

    // Some programs tell what a bracket is, others what it looks like: a text closes none that is
    // not open.
    void TurnBrackets(std::size_t begin, std::size_t end) {
        int open = 0;
        bool areTurned = false;
        bool isOpened = false;
        for (std::size_t i = begin; i < end; ++i)
            for (const auto& [opening, closing] : kBrackets) {
                isOpened = isOpened || signs_[i].letter == opening;
                open += signs_[i].letter == opening ? 1 : signs_[i].letter == closing ? -1 : 0;
                areTurned = areTurned || open < 0;
            }
        if (!areTurned || !isOpened)
            return;
        for (std::size_t i = begin; i < end; ++i)
            for (const auto& [opening, closing] : kBrackets)
                if (signs_[i].letter == opening || signs_[i].letter == closing) {
                    signs_[i].letter = signs_[i].letter == opening ? closing : opening;
                    char text[6];
                    signs_[i].text.assign(
                        text, static_cast<std::size_t>(g_unichar_to_utf8(signs_[i].letter, text)));
                    break;
                }
    }

    std::vector<Sign> signs_;
};

struct LetterCounts {
    std::size_t left = 0;
    std::size_t right = 0;

    void Add(std::string_view text) {
        for (const char* at = text.data(); at < text.data() + text.size();
             at = g_utf8_next_char(at)) {
            const Direction direction = DirectionOf(g_utf8_get_char(at));
            left += direction == Direction::kLeft ? 1U : 0U;
            right += direction == Direction::kRight ? 1U : 0U;
        }
    }
};

// A paragraph mostly begins and ends its first line in its own script.
bool IsParagraphRightToLeft(const LetterCounts& letters, std::string_view firstLine) {
    if (letters.right > 2 * letters.left || letters.left > 2 * letters.right)
        return letters.right > letters.left;
    const ShownLine line(firstLine);
    const auto [first, last] = line.OuterDirections();
    return first == last ? first == Direction::kRight : letters.right > letters.left;
}

void TurnLine(PdfLine& line, bool isRightToLeft, bool isPageTurned) {
    ShownLine shown(line.text);
    if (isRightToLeft) {
        shown.JoinMarks();
        shown.Turn(0, shown.Size());
        std::swap(line.firstWordWidth, line.lastWordWidth);
    } else if (shown.HoldsRightToLeft()) {
        shown.JoinMarks();
        shown.TurnRightToLeft();
    }
    line.text = shown.Text();
    if (isRightToLeft != isPageTurned)
        line.gaps.clear();
}

// Lines of one block that stand side by side come from the left.
bool IsOfRow(const PdfLine& line, const PdfLine& next) {
    return !next.beginsBlock && line.height > 0 &&
           std::abs(line.Middle() - next.Middle()) < line.height * kSameLine;
}

void Mirror(PdfLine& line, double width) {
    const auto turn = [width](double& left, double& right) {
        left = width - std::exchange(right, width - left);
    };
    turn(line.left, line.right);
    turn(line.blockLeft, line.blockRight);
    std::reverse(line.gaps.begin(), line.gaps.end());
    for (PdfLine::Gap& gap : line.gaps) {
        turn(gap.left, gap.right);
        gap.at = line.text.size() - gap.at + 1;
    }
    // One within words that stay as they stand is at another place by now.
    std::erase_if(line.gaps, [&line](const PdfLine::Gap& gap) {
        const std::string& text = line.text;
        if (gap.at < 2 || gap.at >= text.size() || text[gap.at - 1] != ' ')
            return true;
        const auto isRight = [](const char* at) {
            return DirectionOf(g_utf8_get_char(at)) == Direction::kRight;
        };
        const char* const before = g_utf8_find_prev_char(text.data(), text.data() + gap.at - 1);
        return before == nullptr || (!isRight(before) && !isRight(text.data() + gap.at));
    });
}

}  // namespace

void PutInReadingOrder(PdfPage& page) {
    LetterCounts ofPage;
    double width = 0;
    for (const PdfLine& line : page) {
        ofPage.Add(line.text);
        width = std::max({width, line.right, line.blockRight});
    }
    if (ofPage.right == 0)
        return;
    const bool isPageTurned = ofPage.right > ofPage.left;
    for (std::size_t begin = 0, end = 0; begin < page.size(); begin = end) {
        LetterCounts letters;
        for (end = begin; end < page.size() && (end == begin || !page[end].beginsBlock); ++end)
            letters.Add(page[end].text);
        const bool isRightToLeft = IsParagraphRightToLeft(letters, page[begin].text);
        for (std::size_t i = begin; i < end; ++i)
            TurnLine(page[i], isRightToLeft, isPageTurned);
    }
    if (!isPageTurned)
        return;
    for (PdfLine& line : page)
        Mirror(line, width);
    for (std::size_t begin = 0, end = 0; begin < page.size(); begin = end) {
        for (end = begin + 1; end < page.size() && IsOfRow(page[end - 1], page[end]);)
            ++end;
        const bool beginsBlock = std::exchange(page[begin].beginsBlock, false);
        std::stable_sort(
            page.begin() + static_cast<std::ptrdiff_t>(begin),
            page.begin() + static_cast<std::ptrdiff_t>(end),
            [](const PdfLine& one, const PdfLine& other) { return one.left < other.left; });
        page[begin].beginsBlock = beginsBlock;
    }
}
