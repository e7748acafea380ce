#include "app/books/book_entry.h"

#include <algorithm>
#include <array>
#include <set>
#include <string_view>

#include "app/text/kept_text.h"
#include "books/book_cover.h"
#include "foundation/files/private_file.h"

namespace {

constexpr const char* kKeptBooks = "audiobooks.txt";
constexpr std::size_t kMostKept = 4U << 20;
constexpr const char* kCoverTaken = "-";

bool FitsIntoLine(const std::string& text) {
    return text.find_first_of("\t\n") == std::string::npos;
}

}  // namespace

BookEntry EntryOf(const Document& document, const std::string& path, const std::string& name) {
    BookEntry entry;
    entry.path = path;
    entry.text = document.text;
    for (const DocumentLanguage& language : document.languages)
        entry.marks.push_back({language.begin, language.tag});
    entry.plan = PlanBook(document, name);
    entry.documentsCover = entry.plan.cover;
    return entry;
}

std::string TargetOf(const BookEntry& entry, const std::string& folder, const char* ending,
                     bool inChapters, const std::vector<std::string>& others) {
    const std::string stem =
        (folder == "/" ? "" : folder) + "/" + FileNameOfTitle(entry.plan.title);
    const std::string end = inChapters ? "/" : std::string(".") + ending;
    std::string target = stem + end;
    for (int number = 2; std::ranges::find(others, target) != others.end(); ++number)
        target = stem + " " + std::to_string(number) + end;
    return target;
}

std::vector<KeptBook> LoadKeptBooks() {
    std::string content;
    ReadPrivateFile(kKeptBooks, kMostKept, content);
    std::vector<KeptBook> books;
    std::string_view rest = content;
    while (!rest.empty()) {
        std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        std::array<std::string, 7> columns;
        for (std::string& column : columns) {
            column = line.substr(0, line.find('\t'));
            line.remove_prefix(std::min(column.size() + 1, line.size()));
        }
        if (!columns[0].empty())
            books.push_back({columns[0], columns[1], columns[2], columns[3], columns[4], columns[5],
                             columns[6]});
    }
    return books;
}

int StoreKeptBooks(const std::vector<KeptBook>& books) {
    std::string content;
    for (const KeptBook& book : books)
        if (!book.path.empty() && FitsIntoLine(book.path) && FitsIntoLine(book.coverPath))
            content += book.path + '\t' + book.title + '\t' + book.author + '\t' + book.language +
                       '\t' + book.coverPath + '\t' + (FitsIntoLine(book.voice) ? book.voice : "") +
                       '\t' + (FitsIntoLine(book.target) ? book.target : "") + '\n';
    int error = 0;
    if (content.empty())
        RemovePrivateFile(kKeptBooks);
    else
        error = WritePrivateFile(kKeptBooks, content);
    std::set<std::string> texts;
    for (const KeptBook& book : books)
        texts.insert(book.path);
    RemoveBookTexts(texts);
    return error;
}

KeptBook KeptOf(const BookEntry& entry) {
    const BookPlan& plan = entry.plan;
    const bool isCoverTaken = plan.cover.empty() && !entry.documentsCover.empty();
    return {
        entry.path.empty() ? entry.keptAs : entry.path, plan.title,  plan.author,  plan.language,
        isCoverTaken ? kCoverTaken : entry.coverPath,   entry.voice, entry.begunAt};
}

std::string Restore(const KeptBook& kept, BookEntry& entry) {
    TitleBook(entry.plan, kept.title);
    entry.plan.author = kept.author;
    entry.plan.language = kept.language;
    entry.voice = kept.voice;
    entry.begunAt = kept.target;
    std::string problem;
    if (kept.coverPath == kCoverTaken)
        entry.plan.cover.clear();
    if (kept.coverPath.empty() || kept.coverPath == kCoverTaken)
        return problem;
    const std::string cover = ReadCover(kept.coverPath, problem);
    if (cover.empty())
        return problem;
    entry.plan.cover = cover;
    entry.coverPath = kept.coverPath;
    return problem;
}
