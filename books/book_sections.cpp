#include "books/book_sections.h"

#include <algorithm>

#include "books/book_order.h"
#include "foundation/whole_characters.h"
#include "speech/text_places.h"

namespace {

// One is spoken while others are encoded: with so many, the disk holds a small part of the book as
// WAV, and no core waits long for the last one. Below the least they would cost more than they
// save.
constexpr double kFewestSections = 24;
constexpr double kLeastSection = 4'000;  // bytes, which speak for some four minutes
// The last ones get shorter, so that encoders end at nearly the same time.
constexpr double kShareOfRest = 0.25;
constexpr double kLeastLastSection = 1'000;

std::size_t EndOfPart(std::string_view text, std::size_t begin, std::size_t wanted) {
    const std::size_t least = begin + (wanted - begin) / 2;
    const auto behindLast = [&](std::string_view separator) {
        const std::size_t at = text.substr(least, wanted - least).rfind(separator);
        return at == std::string_view::npos ? 0 : least + at + separator.size();
    };
    for (const std::string_view separator : {"\n\n", "\n"})
        if (const std::size_t at = behindLast(separator); at > 0)
            return at;
    if (const std::size_t at = SentenceAt(text, wanted); at > least && at <= wanted)
        return at;
    if (const std::size_t at = behindLast(" "); at > 0)
        return at;
    return begin + WholeCharacters(text.substr(begin), wanted - begin).size();
}

}  // namespace

std::vector<std::size_t> EndsOfParts(std::string_view text, std::size_t begin, std::size_t end,
                                     std::size_t longest) {
    const std::size_t parts = (end - begin + longest - 1) / longest;
    std::vector<std::size_t> ends;
    for (std::size_t part = 1; part < parts; ++part) {
        begin = EndOfPart(text, begin, begin + (end - begin) / (parts - part + 1));
        ends.push_back(begin);
    }
    ends.push_back(end);
    return ends;
}

double LongestSection(double size) {
    return std::max(size / kFewestSections, kLeastSection);
}

std::vector<BookSection> SectionsOf(const BookOrder& order) {
    const auto size = static_cast<double>(order.text.size());
    const auto longestAt = [size](std::size_t begin) {
        const double rest = size - static_cast<double>(begin);
        return static_cast<std::size_t>(
            std::min(LongestSection(size), std::max(rest * kShareOfRest, kLeastLastSection)));
    };
    std::vector<BookSection> sections;
    for (std::size_t i = 0; i < order.plan.chapters.size(); ++i) {
        const BookChapter& chapter = order.plan.chapters[i];
        std::size_t begin = chapter.begin;
        do {
            const std::size_t longest = longestAt(begin);
            for (const std::size_t end : EndsOfParts(order.text, begin, chapter.end, longest)) {
                const bool beginsFile =
                    begin == chapter.begin && (i == 0 || order.HasFileAChapter());
                sections.push_back({i, begin, end, beginsFile, end == chapter.end});
                begin = end;
                if (longestAt(begin) < longest)
                    break;
            }
        } while (begin < chapter.end);
    }
    return sections;
}
