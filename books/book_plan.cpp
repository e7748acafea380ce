#include "books/book_plan.h"

#include <algorithm>
#include <string_view>

#include "books/book_cover.h"
#include "books/book_sections.h"
#include "documents/document_outline.h"
#include "foundation/whole_characters.h"
#include "speech/speech_estimate.h"

namespace {

constexpr std::size_t kLongestTitle = 200;  // bytes
constexpr std::size_t kLongestFileName = 120;
constexpr std::string_view kSpaces = " \t\r\n\f\v";

std::string CutTo(std::string_view text, std::size_t size) {
    return std::string(WholeCharacters(text, size));
}

bool HasWords(std::string_view text) {
    return text.find_first_not_of(kSpaces) != std::string_view::npos;
}

// The first heading within, else the number.
std::string TitleOf(const Document& document, const BookChapter& chapter, std::size_t number) {
    if (!chapter.title.empty())
        return chapter.title;
    for (const DocumentHeading& heading : document.headings)
        if (heading.begin >= chapter.begin && heading.begin < chapter.end)
            return AsTag(
                std::string_view(document.text).substr(heading.begin, heading.end - heading.begin));
    return "Chapter " + std::to_string(number);
}

void CutLongChapters(std::string_view text, std::vector<BookChapter>& chapters) {
    std::vector<BookChapter> cut;
    for (const BookChapter& chapter : chapters) {
        const std::vector<std::size_t> ends =
            EndsOfParts(text, chapter.begin, chapter.end, kLongestChapter);
        std::size_t begin = chapter.begin;
        for (std::size_t part = 0; part < ends.size(); ++part) {
            std::string title = chapter.title;
            const std::string which =
                std::to_string(part + 1) + " of " + std::to_string(ends.size());
            if (ends.size() > 1 && chapters.size() == 1)
                title = "Part " + which;
            else if (ends.size() > 1)
                title = CutTo(title, kLongestTitle - 20) + " (" + which + ")";
            cut.push_back({title, begin, ends[part]});
            begin = ends[part];
        }
    }
    chapters = std::move(cut);
}

}  // namespace

std::string AsTag(std::string_view text) {
    std::string line;
    for (const char character : text) {
        const bool isSpace = static_cast<unsigned char>(character) <= ' ' || character == 127;
        if (!isSpace)
            line += character;
        else if (!line.empty() && line.back() != ' ')
            line += ' ';
    }
    if (!line.empty() && line.back() == ' ')
        line.pop_back();
    return CutTo(line, kLongestTitle);
}

BookPlan PlanBook(const Document& document, const std::string& name) {
    BookPlan plan;
    plan.title = AsTag(document.title);
    if (plan.title.empty())
        plan.title = AsTag(name);
    plan.author = AsTag(document.author);
    if (!document.languages.empty())
        plan.language = CutTo(document.languages.front().tag, 20);
    if (document.cover.size() > kLargestCover)
        plan.remark = "The cover is larger than 5 MB and is left out.";
    else if (!document.cover.empty() && PictureType(document.cover) == nullptr)
        plan.remark = "The cover is no PNG, JPEG or GIF picture and is left out.";
    else
        plan.cover = document.cover;

    plan.headings = document.headings;

    const std::vector<DocumentChapter> starts = ChaptersOf(document);
    const std::string_view text = document.text;
    std::size_t begin = 0;
    std::string title;
    const auto close = [&](std::size_t end) {
        // One without a word joins the next, and keeps its title for that.
        if (end <= begin || !HasWords(text.substr(begin, end - begin)))
            return;
        plan.chapters.push_back({AsTag(title), begin, end});
        begin = end;
        title.clear();
    };
    for (const DocumentChapter& start : starts) {
        close(std::min(start.begin, text.size()));
        if (!start.title.empty())
            title = start.title;
    }
    close(text.size());
    if (!plan.chapters.empty())
        plan.chapters.back().end = text.size();
    for (std::size_t i = 0; i < plan.chapters.size(); ++i)
        plan.chapters[i].title = TitleOf(document, plan.chapters[i], i + 1);
    CutLongChapters(text, plan.chapters);
    for (BookChapter& chapter : plan.chapters)
        chapter.letters = LettersIn(text.substr(chapter.begin, chapter.end - chapter.begin));
    TitleBook(plan, plan.title);
    return plan;
}

void TitleBook(BookPlan& plan, const std::string& title) {
    plan.title = title;
    if (plan.chapters.size() == 1)
        plan.chapters[0].title = title;
}

std::string FileNameOfTitle(const std::string& title) {
    std::string name;
    for (const char character : title)
        name += std::string_view("/\\:*?\"<>|").find(character) == std::string_view::npos
                    ? character
                    : ' ';
    name = AsTag(name);
    while (!name.empty() && (name.front() == '.' || name.front() == '-' || name.front() == ' '))
        name.erase(0, 1);
    name = CutTo(name, kLongestFileName);
    while (!name.empty() && (name.back() == '.' || name.back() == ' '))
        name.pop_back();
    return name.empty() ? "untitled" : name;
}
