#include "books/book_sections.h"

#include <algorithm>

#include "books/book_order.h"
#include "foundation/whole_characters.h"

namespace {

// One is spoken while others are encoded: with so many, the disk never holds half of the book as
// WAV, and no core waits long for the last one. Below the least they would cost more than they
// save.
constexpr std::size_t kFewestSections = 12;
constexpr std::size_t kLeastSection = 4'000;  // bytes, which speak for some four minutes

std::size_t EndOfPart(std::string_view text, std::size_t begin, std::size_t wanted) {
    const std::size_t least = begin + (wanted - begin) / 2;
    for (const std::string_view separator : {"\n\n", "\n", ". ", " "}) {
        const std::size_t at = text.substr(least, wanted - least).rfind(separator);
        if (at != std::string_view::npos)
            return least + at + separator.size();
    }
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

std::vector<BookSection> SectionsOf(const BookOrder& order) {
    const bool isFileAChapter = order.target.back() == '/' || order.isReadAlong;
    const std::size_t longest = std::max(order.text.size() / kFewestSections, kLeastSection);
    std::vector<BookSection> sections;
    for (std::size_t i = 0; i < order.plan.chapters.size(); ++i) {
        const BookChapter& chapter = order.plan.chapters[i];
        std::size_t begin = chapter.begin;
        for (const std::size_t end : EndsOfParts(
                 order.text, chapter.begin, chapter.end,
                 isFileAChapter ? std::max(longest, chapter.end - chapter.begin) : longest)) {
            sections.push_back({i, begin, end, end == chapter.end});
            begin = end;
        }
    }
    return sections;
}
