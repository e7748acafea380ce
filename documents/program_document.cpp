#include "documents/program_document.h"

#include <string>
#include <utility>
#include <vector>

#include "documents/html_text.h"
#include "documents/pdf_pages.h"
#include "documents/problems.h"
#include "documents/program_output.h"
#include "documents/rtf_for_program.h"
#include "documents/small_texts.h"
#include "documents/text_charset.h"
#include "foundation/processes/child_process.h"
#include "foundation/whole_characters.h"

namespace {

struct Converter {
    const char* program;
    const char* package;
    const char* documents;
    const char* command;
};
constexpr Converter kRtf = {"unrtf", "unrtf", "RTF documents", "unrtf --html --nopict"};
constexpr Converter kDjvu = {"djvutxt", "djvulibre-bin", "DjVu documents", "djvutxt /dev/stdin"};
// What Markdown holds of HTML is a part of it.
constexpr Converter kMarkdown = {
    "cmark-gfm", "cmark-gfm", "Markdown",
    "cmark-gfm --to html --unsafe -e footnotes -e table -e strikethrough -e tasklist"};

struct Converted {
    std::string text;
    std::string problem;
    bool isPart = false;  // the program failed behind it
};

bool IsInstalled(const Converter& converter) {
    return IsProgramInstalled(converter.program);
}

Converted RunConverter(const Converter& converter, std::string_view bytes,
                       const ReadingWatch& watch) {
    Converted converted;
    if (!IsInstalled(converter)) {
        converted.problem = std::string(converter.documents) + " need the program " +
                            converter.program + ": install the package " + converter.package + ".";
        return converted;
    }
    const ProgramOutcome outcome =
        RunProgram(converter.command, bytes, watch, [&converted](std::string_view part) {
            converted.text += part;
            return converted.text.size() <= kLargestDocumentText;
        });
    converted.problem = ProgramProblem(converter.program, outcome, watch);
    converted.isPart = outcome == ProgramOutcome::kFailed;
    if (converted.problem.empty() && converted.isPart && converted.text.empty())
        converted.problem = kDamagedDocument;
    return converted;
}

// The settings between lines of "---" before a text; its title is one of them.
std::string_view TakeFrontMatter(std::string_view& text) {
    if (!text.starts_with("---\n") && !text.starts_with("---\r\n"))
        return {};
    const std::size_t end = text.find("\n---", 3);
    if (end == std::string_view::npos || text.find("\n\n") < end)
        return {};
    const std::string_view front = text.substr(0, end + 1);
    const std::size_t next = text.find('\n', end + 1);
    text.remove_prefix(next == std::string_view::npos ? text.size() : next);
    return front;
}

std::string TitleIn(std::string_view front) {
    const std::size_t at = front.find("\ntitle:");
    if (at == std::string_view::npos)
        return {};
    const std::string_view rest = front.substr(at + 7);
    std::string title(rest.substr(0, rest.find('\n')));
    std::erase(title, '"');
    title.erase(0, title.find_first_not_of(kWhiteSpace));
    return std::string(WholeCharacters(title, kLongestFact));
}

}  // namespace

Document ReadRtf(std::string_view bytes, const ReadingWatch& watch, const DocumentRules& rules) {
    Converted page = RunConverter(kRtf, RtfForProgram(bytes, watch, rules), watch);
    if (!page.problem.empty())
        return DocumentProblem(std::move(page.problem));
    DocumentRules whole = rules;
    whole.wholePage = true;
    Document document = ReadPage(page.text, watch, whole);
    // The program takes a document that is cut off for a whole one.
    using std::string_view_literals::operator""sv;
    const std::size_t last = bytes.find_last_not_of(" \t\r\n\f\0"sv);
    if (page.isPart || last == std::string_view::npos || bytes[last] != '}')
        document.remark = "The RTF document is damaged or not complete; what it holds is read.";
    return document;
}

Document ReadDjvu(std::string_view bytes, const ReadingWatch& watch, const DocumentRules& rules) {
    Converted text = RunConverter(kDjvu, bytes, watch);
    if (!text.problem.empty())
        return DocumentProblem(std::move(text.problem));
    std::vector<PdfPage> pages = PdfPagesOfText(DecodeText(text.text));
    if (!rules.pageHeads)
        DropPageHeads(pages);
    Document document = JoinPages(std::move(pages), rules);
    if (document.text.find_first_not_of(kWhiteSpace) == std::string::npos)
        return DocumentProblem(
            "The DjVu document holds no text, only pictures of it, or is damaged.");
    if (text.isPart)
        document.remark = "Only a part of the DjVu document could be read.";
    return document;
}

Document ReadMarkdown(std::string_view bytes, const ReadingWatch& watch,
                      const DocumentRules& rules) {
    const std::string text = DecodeText(bytes);
    std::string_view rest = text;
    const std::string title = TitleIn(TakeFrontMatter(rest));
    Converted page = RunConverter(kMarkdown, rest, watch);
    if (!page.problem.empty() || page.isPart) {
        Document document;
        document.text = text;
        document.remark = IsInstalled(kMarkdown) ? "" : page.problem + " It is read as it stands.";
        return document;
    }
    DocumentRules whole = rules;
    whole.wholePage = true;
    Document document = ReadPage("<html><body>" + page.text, watch, whole);
    document.title = title;
    return document;
}
