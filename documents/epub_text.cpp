#include "documents/epub_text.h"

#include <algorithm>
#include <utility>

#include "documents/epub_book.h"
#include "documents/epub_contents.h"
#include "documents/html_text.h"
#include "documents/problems.h"
#include "documents/zip_entries.h"
#include "foundation/whole_characters.h"

namespace {

constexpr std::size_t kMaxChapter = 32U << 20;
constexpr std::size_t kMaxCover = 16U << 20;
constexpr std::size_t kNamedMissing = 3;

struct Chapter {
    Document document;
    bool isRead = false;
    EpubContents contents;  // it is nothing else
    bool isLeftOut = false;
};
using Chapters = std::map<std::string, Chapter, std::less<>>;  // by name in the archive

class EpubReader {
public:
    EpubReader(std::string_view bytes, const ZipIndex& index, const ReadingWatch& watch,
               const DocumentRules& rules)
        : bytes_(bytes),
          index_(index),
          watch_(watch),
          rules_(rules),
          book_(ReadEpubPackage(index)) {}

    Document Read() {
        if (std::string problem = ProtectionProblem(); !problem.empty())
            return DocumentProblem(std::move(problem));
        if (std::string problem = Unpack(); !problem.empty())
            return DocumentProblem(std::move(problem));
        Document document = Join();
        document.cover = std::move(cover_);
        document.title = std::move(book_.title);
        document.author = std::move(book_.author);
        document.remark = Remark();
        const bool isNothingRead = missing_.size() == book_.chapters.size();
        return isNothingRead ? DocumentProblem(kDamagedDocument) : document;
    }

private:
    // Fonts may be encrypted, chapters not.
    std::string ProtectionProblem() const {
        const std::vector<std::string> encrypted = EpubEncryptedFiles(index_);
        const bool isProtected = std::any_of(
            book_.chapters.begin(), book_.chapters.end(), [&encrypted](const auto& chapter) {
                return !chapter.name.empty() && std::find(encrypted.begin(), encrypted.end(),
                                                          chapter.name) != encrypted.end();
            });
        if (!isProtected)
            return {};
        constexpr std::pair<const char*, const char*> kSchemes[] = {
            {"META-INF/rights.xml", "Adobe ADEPT"},
            {"META-INF/license.lcpl", "Readium LCP"},
            {"META-INF/sinf.xml", "Apple FairPlay"}};
        for (const auto& [file, scheme] : kSchemes)
            if (index_.Has(file))
                return std::string("The book is protected against copying (") + scheme +
                       ") and cannot be read here.";
        return kProtectedDocument;
    }

    // In the archive's order, so that it is unpacked once.
    std::string Unpack() {
        for (const EpubChapter& chapter : book_.chapters)
            chapters_.emplace(chapter.name, Chapter());
        ZipEntries entries(bytes_);
        std::size_t length = 0;
        while (entries.Next()) {
            if (watch_.IsToEnd())
                return watch_.Problem();
            if (entries.Name() == book_.cover)
                entries.ReadAll(kMaxCover, cover_);
            const bool isContents = entries.Name() == book_.contentsPage;
            const auto chapter = chapters_.find(entries.Name());
            if (!isContents && (chapter == chapters_.end() || chapter->second.isRead))
                continue;
            std::string page;
            const bool isWhole = entries.ReadAll(kMaxChapter, page);
            if (!isWhole && !entries.IsEntryBroken())
                return kTooLongDocument;
            if (isContents)
                ReadEpubContents(page, index_, book_);
            if (chapter == chapters_.end())
                continue;
            if (!isWhole)
                damaged_.push_back(entries.Name());
            if (std::string problem = ReadChapter(page, chapter->second); !problem.empty())
                return problem;
            length += chapter->second.document.text.size();
            if (length > kLargestDocumentText)
                return kTooLongDocument;
        }
        return entries.IsTooLarge() ? kTooLongDocument : "";
    }

    std::string ReadChapter(std::string_view page, Chapter& chapter) const {
        chapter.isRead = true;
        const EpubContents last = ContentsOnLastSheet(page);
        if (last.AreThere()) {
            std::string problem = ReadText(page.substr(0, last.begin), chapter.document);
            if (!problem.empty() || AreTitlesIn({chapter.document.text}, last))
                return problem;
        }
        chapter.contents = ContentsIn(page);
        return ReadText(page, chapter.document);
    }

    std::string ReadText(std::string_view page, Document& document) const {
        TextFlow flow(rules_.referenceMarks);
        flow.SetLanguage(book_.language);
        PageFacts facts;
        std::string problem = ReadHtml(page, watch_, rules_, flow, facts);
        document = flow.TakeDocument();
        return problem;
    }

    Document Join() {
        TextFlow flow(rules_.referenceMarks);
        flow.SetLanguage(book_.language);
        LeaveOutContents();
        for (const EpubChapter& chapter : book_.chapters) {
            const auto found = chapters_.find(chapter.name);
            if (chapter.name.empty() || !found->second.isRead) {
                missing_.push_back(chapter.address);
                continue;
            }
            if (found->second.isLeftOut)
                continue;
            if (const auto title = book_.titles.find(chapter.name); title != book_.titles.end())
                flow.BeginChapter(title->second);
            // A book that names a chapter twice has it once.
            flow.Append(std::exchange(found->second.document, {}));
        }
        return flow.TakeDocument();
    }

    // Those that say so, and those behind the last chapter that only repeat its headings.
    void LeaveOutContents() {
        std::vector<std::string_view> texts;
        for (const EpubChapter& chapter : book_.chapters)
            if (const Chapter& read = chapters_.find(chapter.name)->second;
                !read.contents.AreThere())
                texts.emplace_back(read.document.text);
        bool isLast = true;
        for (auto at = book_.chapters.rbegin(); at != book_.chapters.rend(); ++at) {
            Chapter& chapter = chapters_.find(at->name)->second;
            const bool isContents = chapter.contents.AreThere();
            chapter.isLeftOut = chapter.contents.isMarked ||
                                (isContents && isLast && AreTitlesIn(texts, chapter.contents));
            isLast = isLast && (chapter.isLeftOut || chapter.document.text.empty());
        }
        if (isLast)  // there is nothing else
            for (auto& [name, chapter] : chapters_)
                chapter.isLeftOut = false;
    }

    std::string Remark() const {
        std::vector<std::string> names = missing_;
        names.insert(names.end(), damaged_.begin(), damaged_.end());
        if (names.empty())
            return {};
        std::string remark = names.size() == 1 ? "One file of the book is missing or damaged: "
                                               : std::to_string(names.size()) +
                                                     " files of the book are missing or damaged: ";
        for (std::size_t i = 0; i < std::min(names.size(), kNamedMissing); ++i)
            remark.append(i == 0 ? "\"" : ", \"").append(WholeCharacters(names[i], 200)) += '"';
        return remark + (names.size() > kNamedMissing ? ", ..." : ".");
    }

    std::string_view bytes_;
    const ZipIndex& index_;
    const ReadingWatch& watch_;
    const DocumentRules& rules_;
    EpubBook book_;
    Chapters chapters_;
    std::string cover_;
    std::vector<std::string> missing_;
    std::vector<std::string> damaged_;
};

}  // namespace

Document ReadEpub(std::string_view bytes, const ZipIndex& index, const ReadingWatch& watch,
                  const DocumentRules& rules) {
    return EpubReader(bytes, index, watch, rules).Read();
}
