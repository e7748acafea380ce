#include "documents/document_outline.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "documents/small_texts.h"
#include "foundation/first_words.h"

namespace {

constexpr std::size_t kMostEntries = 5000;
constexpr int kLevels = 7;  // 1 to 6 are used
constexpr int kMostTitleWords = 20;
constexpr int kMostTitleCharacters = 100;

std::size_t LevelOf(const DocumentHeading& heading) {
    return static_cast<std::size_t>(std::clamp(heading.level, 1, kLevels - 1));
}

std::string_view TextOf(const Document& document, const DocumentHeading& heading) {
    return std::string_view(document.text).substr(heading.begin, heading.end - heading.begin);
}

std::string TitleOf(std::string_view words) {
    return BeginningOf(words, kMostTitleWords, kMostTitleCharacters);
}

bool IsBlank(std::string_view text) {
    return Trimmed(text).empty();
}

// Turns the levels of headings, which may begin anywhere and leave some out, into depths.
class Depths {
public:
    explicit Depths(int least) : least_(least) {}
    void Restart() { above_.clear(); }
    int Below(std::size_t level) {
        while (!above_.empty() && above_.back() >= level)
            above_.pop_back();
        above_.push_back(level);
        return least_ + static_cast<int>(above_.size()) - 1;
    }

private:
    const int least_;
    std::vector<std::size_t> above_;
};

std::vector<OutlineEntry> OfHeadings(const Document& document) {
    const std::vector<DocumentChapter> chapters = ChaptersOf(document);
    auto chapter = chapters.begin();
    std::vector<OutlineEntry> entries;
    Depths depths(0);
    for (const DocumentHeading& heading : document.headings) {
        const bool isChapter = chapter != chapters.end() && chapter->begin == heading.begin;
        if (isChapter)
            ++chapter;
        entries.push_back({TitleOf(TextOf(document, heading)), heading.begin,
                           depths.Below(LevelOf(heading)), isChapter});
    }
    return entries;
}

// A heading that only says what the chapter is called stands for it.
std::vector<OutlineEntry> OfBook(const Document& document) {
    std::vector<OutlineEntry> entries;
    Depths depths(1);
    auto heading = document.headings.begin();
    const auto addHeadings = [&](std::size_t end, const std::string& named) {
        for (; heading != document.headings.end() && heading->begin < end; ++heading) {
            std::string title = TitleOf(TextOf(document, *heading));
            if (title != named)
                entries.push_back(
                    {std::move(title), heading->begin, depths.Below(LevelOf(*heading)), false});
        }
    };
    std::string named;
    for (const DocumentChapter& chapter : document.chapters) {
        addHeadings(chapter.begin, named);
        depths.Restart();
        named = TitleOf(chapter.title);
        const bool isHeaded = heading != document.headings.end() &&
                              IsBlank(std::string_view(document.text)
                                          .substr(chapter.begin, heading->begin - chapter.begin));
        if (named.empty() && isHeaded)
            named = TitleOf(TextOf(document, *heading));
        if (isHeaded)
            ++heading;
        // One without a name goes on with the chapter before it.
        if (!named.empty())
            entries.push_back({named, chapter.begin, 0, true});
    }
    addHeadings(document.text.size(), named);
    return entries;
}

}  // namespace

std::vector<DocumentChapter> ChaptersOf(const Document& document) {
    if (document.chapters.size() > 1)
        return document.chapters;
    std::array<int, kLevels> counts{};
    for (const DocumentHeading& heading : document.headings)
        ++counts[LevelOf(heading)];
    const auto* const level =
        std::find_if(counts.begin(), counts.end(), [](int count) { return count > 1; });
    std::vector<DocumentChapter> chapters;
    for (const DocumentHeading& heading : document.headings)
        if (static_cast<std::ptrdiff_t>(LevelOf(heading)) == level - counts.begin())
            chapters.push_back({heading.begin, std::string(TextOf(document, heading))});
    return chapters;
}

std::vector<OutlineEntry> OutlineOf(const Document& document) {
    std::vector<OutlineEntry> entries =
        document.chapters.size() > 1 ? OfBook(document) : OfHeadings(document);
    std::erase_if(entries, [](const OutlineEntry& entry) { return entry.title.empty(); });
    for (int depth = kLevels; depth > 0 && entries.size() > kMostEntries; --depth)
        std::erase_if(entries, [=](const OutlineEntry& entry) { return entry.depth >= depth; });
    if (entries.size() > kMostEntries)
        entries.resize(kMostEntries);
    return entries;
}
