#include "app/text/structure_text.h"

#include <algorithm>
#include <string_view>

#include "foundation/leading_number.h"

namespace {

constexpr int kDeepest = 20;

// "title Ferries", "chapter 120 0 Oars", "heading 300 1 More of oars", "page 0", "language 0 de",
// "part", "recognised".
constexpr std::string_view kTitleLine = "title ";
constexpr std::string_view kChapterLine = "chapter ";
constexpr std::string_view kHeadingLine = "heading ";
constexpr std::string_view kPageLine = "page ";
constexpr std::string_view kLanguageLine = "language ";
constexpr std::string_view kPartLine = "part";
constexpr std::string_view kRecognisedLine = "recognised";

std::string Unbroken(std::string title) {
    std::ranges::replace(title, '\n', ' ');
    return title;
}

bool TakeLanguage(std::string_view line, std::size_t textSize, KeptStructure& structure) {
    std::size_t begin = 0;
    const std::size_t least = structure.languages.empty() ? 0 : structure.languages.back().begin;
    if (!TakeLeadingNumber(line, begin) || begin < least || begin > textSize)
        return false;
    structure.languages.push_back({begin, std::string(line)});
    return true;
}

bool TakeLine(std::string_view line, std::size_t textSize, KeptStructure& structure) {
    std::size_t begin = 0;
    if (line.starts_with(kTitleLine)) {
        structure.title = line.substr(kTitleLine.size());
        return true;
    }
    if (line.starts_with(kPageLine)) {
        line.remove_prefix(kPageLine.size());
        const std::size_t least = structure.pages.empty() ? 0 : structure.pages.back();
        if (!TakeLeadingNumber(line, begin) || begin < least || begin > textSize)
            return false;
        structure.pages.push_back(begin);
        return true;
    }
    if (line == kPartLine || line == kRecognisedLine) {
        (line == kPartLine ? structure.isPart : structure.isRecognised) = true;
        return true;
    }
    if (line.starts_with(kLanguageLine))
        return TakeLanguage(line.substr(kLanguageLine.size()), textSize, structure);
    const bool isChapter = line.starts_with(kChapterLine);
    static_assert(kChapterLine.size() == kHeadingLine.size());
    if (!isChapter && !line.starts_with(kHeadingLine))
        return false;
    line.remove_prefix(kChapterLine.size());
    int depth = 0;
    const std::size_t least = structure.outline.empty() ? 0 : structure.outline.back().begin;
    if (!TakeLeadingNumber(line, begin) || !TakeLeadingNumber(line, depth) || begin < least ||
        begin > textSize || depth < 0 || depth > kDeepest || line.empty())
        return false;
    structure.outline.push_back({std::string(line), begin, depth, isChapter});
    return true;
}

}  // namespace

std::string LinesOfStructure(const KeptStructure& structure) {
    std::string lines;
    if (!structure.title.empty())
        lines += std::string(kTitleLine) + Unbroken(structure.title) + '\n';
    for (const OutlineEntry& entry : structure.outline) {
        lines += entry.isChapter ? kChapterLine : kHeadingLine;
        lines += std::to_string(entry.begin) + ' ' + std::to_string(entry.depth) + ' ' +
                 Unbroken(entry.title) + '\n';
    }
    for (const std::size_t page : structure.pages)
        lines += std::string(kPageLine) + std::to_string(page) + '\n';
    for (const DocumentLanguage& language : structure.languages)
        lines += std::string(kLanguageLine) + std::to_string(language.begin) + ' ' +
                 Unbroken(language.tag) + '\n';
    if (structure.isPart)
        lines += std::string(kPartLine) + '\n';
    if (structure.isRecognised)
        lines += std::string(kRecognisedLine) + '\n';
    return lines;
}

KeptStructure StructureOfLines(const std::string& lines, std::size_t textSize) {
    KeptStructure structure;
    for (std::string_view rest = lines; !rest.empty();) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        if (!TakeLine(rest.substr(0, end), textSize, structure))
            break;
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return structure;
}
