#include "speech/paragraph_lines.h"

#include <algorithm>
#include <utility>

#include "foundation/white_space.h"
#include "speech/language_forms.h"
#include "speech/sentence_characters.h"

namespace {

// Beyond this a line was wrapped by its width, not ended on purpose.
constexpr std::size_t kShortLine = 55;
constexpr gunichar kMiddleDot = 0x00B7;
constexpr gunichar kEllipsis = 0x2026;

bool BeginsItem(std::string_view line) {
    const gunichar first = CharacterAt(line, 0);
    if (IsBullet(first) ||
        ((first == '-' || first == '*' || first == '+') && line.size() > 1 && line[1] == ' '))
        return true;
    const std::optional<ItemMark> mark = MarkAt(line);
    return mark && (!mark->isLetter || mark->tail != "." || !mark->isCapital);
}

bool EndsInStop(std::string_view line) {
    for (std::size_t at = line.size(); at > 0;) {
        at = Before(line, at);
        const gunichar character = CharacterAt(line, at);
        if (IsStop(character) || character == ':' || character == ';')
            return true;
        if (!IsCloser(character))
            return false;
    }
    return false;
}

bool EndsInFigure(std::string_view line) {
    const std::size_t number = line.find_last_not_of("0123456789") + 1;
    return number < line.size() && number > 0 && IsWhite(CharacterAt(line, Before(line, number)));
}

bool EndsOpen(std::string_view line) {
    return line.ends_with(',') || line.ends_with('-') || line.ends_with('(');
}

bool BeginsCapital(std::string_view line) {
    const gunichar first = CharacterAt(line, 0);
    return g_unichar_isupper(first) != 0 || g_unichar_isdigit(first) != 0;
}

bool BeginsSmall(std::string_view line) {
    return g_unichar_islower(CharacterAt(line, 0)) != 0;
}

// "12", "xviii", "A-12"; not the "I" of somebody who hesitates.
bool IsPage(std::string_view word) {
    constexpr std::string_view kDigits = "0123456789";
    const bool isOfAppendix = word.size() > 2 && g_ascii_isupper(word[0]) && word[1] == '-';
    const std::string_view number = word.substr(isOfAppendix ? 2 : 0);
    if (number.find_first_not_of(kDigits) == std::string_view::npos)
        return true;
    std::string capitals(word);
    std::ranges::transform(capitals, capitals.begin(), g_ascii_toupper);
    const bool isOneCase =
        capitals == word
            ? word.size() > 1
            : std::ranges::all_of(word, [](char letter) { return g_ascii_islower(letter) != 0; });
    return isOneCase && RomanValue(capitals) > 0;
}

// Of an entry in a table of contents the row of dots that leads to its page, with the stop before
// it; empty: there is none.
std::string_view LeaderOf(std::string_view line) {
    constexpr int kLeastDots = 4;
    constexpr std::size_t kLongestPage = 8;
    const std::size_t end = line.find_last_of(" .\xb7\xa6\xa0") + 1;  // the dots' last bytes
    if (end == line.size() || line.size() - end > kLongestPage || !IsPage(line.substr(end)))
        return {};
    int dots = 0;
    std::size_t begin = end;
    for (std::size_t at = end; at > 0; at = begin) {
        begin = Before(line, at);
        const gunichar character = CharacterAt(line, begin);
        const bool isDot = character == '.' || character == kMiddleDot || character == kEllipsis;
        if (isDot)
            dots += character == kEllipsis ? 3 : 1;
        else if (!IsWhite(character) && !IsStop(character)) {
            begin = at;
            break;
        }
    }
    return dots < kLeastDots ? std::string_view() : line.substr(begin, end - begin);
}

}  // namespace

ParagraphLines::ParagraphLines(std::string_view paragraph) : joined_(paragraph) {
    std::vector<std::pair<std::size_t, std::string_view>> lines;
    std::vector<std::string_view> leaders;  // of each
    for (std::size_t at = 0; at <= paragraph.size();) {
        const std::size_t end = std::min(paragraph.find('\n', at), paragraph.size());
        const std::string_view line = Trimmed(paragraph.substr(at, end - at));
        if (!line.empty()) {
            lines.emplace_back(static_cast<std::size_t>(line.data() - paragraph.data()), line);
            leaders.push_back(LeaderOf(line));
        }
        at = end + 1;
    }
    std::ranges::replace(joined_, '\n', ' ');
    std::ranges::replace(joined_, '\r', ' ');
    std::ranges::replace(joined_, '\f', ' ');
    constexpr std::string_view kLineSeparator = "\xe2\x80\xa8";
    for (std::size_t at = joined_.find(kLineSeparator); at != std::string::npos;
         at = joined_.find(kLineSeparator, at))
        joined_.replace(at, kLineSeparator.size(), kLineSeparator.size(), ' ');
    for (const std::string_view leader : leaders)
        std::fill_n(joined_.begin() + (leader.empty() ? 0 : leader.data() - paragraph.data()),
                    leader.size(), ' ');
    // Short lines of which none ends in a stop are a list, whatever they begin
    // with.
    const bool isList = lines.size() > 2 && std::ranges::all_of(lines, [](const auto& line) {
                            return line.second.size() < kShortLine && !EndsInStop(line.second);
                        });
    // Of which most end in a number: of contents or of a table.
    const auto numbers =
        std::ranges::count_if(lines, [](const auto& line) { return EndsInFigure(line.second); });
    // In prose a line ends in a year at times, and the next one goes on.
    const auto goesOn = std::ranges::adjacent_find(lines, [](const auto& line, const auto& next) {
        return EndsInFigure(line.second) && BeginsSmall(next.second);
    });
    const bool areRows =
        numbers > 2 && (numbers == std::ssize(lines) ||
                        (numbers * 3 > std::ssize(lines) * 2 && goesOn == lines.end()));
    for (std::size_t i = 1; i < lines.size(); ++i) {
        const std::string_view before = lines[i - 1].second;
        const std::string_view line = lines[i].second;
        const bool followsHeading = before.size() < kShortLine && !EndsInStop(before) &&
                                    !EndsOpen(before) && BeginsCapital(line) &&
                                    (i == 1 || EndsInStop(lines[i - 2].second));
        const bool isEntry = (!leaders[i - 1].empty() && !BeginsSmall(line)) ||
                             (!leaders[i].empty() && BeginsCapital(line)) ||
                             (areRows && EndsInFigure(before) && !EndsOpen(before));
        if (BeginsItem(line) || isList || followsHeading || isEntry)
            starts_.push_back(lines[i].first);
    }
}
