#include "speech/text_places.h"

#include <algorithm>
#include <vector>

#include "speech/sentences.h"

namespace {

constexpr std::string_view kWhite = " \t\r\n\f\v";
// The longest sentence that Sentences gives is half as long.
constexpr std::size_t kFirstLookBack = 8192;
// That is looked through for its end; a step is as far then.
constexpr std::size_t kLongestLine = 4096;

// Behind the first empty line from there on; npos when there is none.
std::size_t BehindEmptyLine(std::string_view text, std::size_t from) {
    for (std::size_t at = text.find('\n', from); at != std::string_view::npos;
         at = text.find('\n', at + 1)) {
        const std::size_t next = text.find_first_not_of(kWhite, at + 1);
        if (next == std::string_view::npos)
            return next;
        if (text.substr(at + 1, next - at - 1).find('\n') != std::string_view::npos)
            return next;
        at = next - 1;
    }
    return std::string_view::npos;
}

// Where to begin so that all sentences within `back` bytes before the place come out whole: at a
// paragraph where there is one. isWhole: whether the first one is.
std::size_t StartBefore(std::string_view text, std::size_t place, std::size_t back, bool& isWhole) {
    isWhole = true;
    if (place <= back)
        return 0;
    const std::size_t from = place - back;
    const std::size_t paragraph = BehindEmptyLine(text.substr(0, place), from);
    if (paragraph < place)
        return paragraph;
    isWhole = false;
    const std::size_t blank = text.substr(0, place).find_first_of(kWhite, from);
    return blank == std::string_view::npos ? from : blank;
}

// Those that begin before the place, nearest last, and the one behind these.
struct Around {
    std::vector<Sentence> before;
    std::optional<Sentence> behind;
};

Around SentencesAround(std::string_view text, std::size_t place) {
    for (std::size_t back = kFirstLookBack;; back *= 2) {
        bool isWhole = false;
        const std::size_t start = StartBefore(text, place, back, isWhole);
        Around found;
        Sentences sentences(text.substr(start));
        for (Sentence next{}; !found.behind && sentences.Next(next);) {
            next.begin += start;
            next.end += start;
            if (next.begin < place)
                found.before.push_back(next);
            else
                found.behind = next;
        }
        if (!isWhole && found.before.size() > 1)
            found.before.erase(found.before.begin());
        if (!found.before.empty() || start == 0)
            return found;
    }
}

// As its beginning shows.
bool HasEmptyLines(std::string_view text) {
    constexpr std::size_t kEnough = 65536;
    return BehindEmptyLine(text.substr(0, kEnough), 0) != std::string_view::npos;
}

bool BeginsLine(std::string_view text, std::size_t place) {
    const std::size_t before = text.substr(0, place).find_last_not_of(" \t\r\f\v");
    return before == std::string_view::npos || text[before] == '\n';
}

std::optional<std::size_t> LineBefore(std::string_view text, std::size_t place) {
    auto found = SentenceBefore(text, place);
    while (found && !BeginsLine(text, *found) && place - *found < kLongestLine)
        found = SentenceBefore(text, *found);
    return found;
}

std::optional<std::size_t> LineBehind(std::string_view text, std::size_t place) {
    auto found = SentenceBehind(text, place);
    while (found && !BeginsLine(text, *found) && *found - place < kLongestLine)
        found = SentenceBehind(text, *found);
    return found;
}

}  // namespace

std::size_t SentenceAt(std::string_view text, std::size_t place) {
    const Around found = SentencesAround(text, std::min(place, text.size()));
    const bool standsThere = !found.before.empty() && found.before.back().end > place;
    if (found.behind && (!standsThere || found.behind->begin == place))
        return found.behind->begin;
    return found.before.empty() ? 0 : found.before.back().begin;
}

std::optional<std::size_t> SentenceBefore(std::string_view text, std::size_t place) {
    const Around found = SentencesAround(text, std::min(place, text.size()));
    return found.before.empty() ? std::nullopt : std::optional(found.before.back().begin);
}

std::optional<std::size_t> SentenceBehind(std::string_view text, std::size_t place) {
    if (place >= text.size())
        return std::nullopt;
    const Around found = SentencesAround(text, place + 1);
    return found.behind ? std::optional(found.behind->begin) : std::nullopt;
}

std::optional<std::size_t> ParagraphBefore(std::string_view text, std::size_t place) {
    if (!HasEmptyLines(text))
        return LineBefore(text, place);
    const std::size_t first = text.find_first_not_of(kWhite);
    place = std::min(place, text.size());
    if (first >= place)
        return std::nullopt;
    for (std::size_t back = kFirstLookBack;; back *= 2) {
        const std::size_t from = place > back ? place - back : 0;
        std::optional<std::size_t> last;
        for (std::size_t at = BehindEmptyLine(text, from); at < place;
             at = BehindEmptyLine(text, at))
            last = at;
        if (last)
            return last;
        if (from == 0)
            return first;
    }
}

std::optional<std::size_t> ParagraphBehind(std::string_view text, std::size_t place) {
    if (!HasEmptyLines(text))
        return LineBehind(text, place);
    const std::size_t found = BehindEmptyLine(text, std::min(place, text.size()));
    return found == std::string_view::npos ? std::nullopt : std::optional(found);
}

std::size_t WordAt(std::string_view text, std::size_t place) {
    place = std::min(place, text.size());
    while (place > 0 && kWhite.find(text[place - 1]) == std::string_view::npos)
        --place;
    return std::min(text.find_first_not_of(kWhite, place), text.size());
}
