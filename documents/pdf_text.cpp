#include "documents/pdf_text.h"

#include <algorithm>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "documents/pdf_pages.h"
#include "documents/problems.h"
#include "documents/program_output.h"
#include "documents/recognised_text.h"
#include "documents/small_texts.h"
#include "documents/text_charset.h"
#include "foundation/processes/child_process.h"

namespace {

constexpr const char* kLayoutCommand = "pdftotext -q -bbox-layout -enc UTF-8 - -";
constexpr const char* kTextCommand = "pdftotext -q -enc UTF-8 -eol unix - -";
constexpr std::size_t kLargestPictureList = 4U << 20;
constexpr std::size_t kLeastPixels = 400;                      // of a page's picture, each way
constexpr std::size_t kMostLayout = 4 * kLargestDocumentText;  // lines with their places

Document WithoutText(std::string_view bytes, std::size_t pages, const ReadingWatch& watch,
                     const DocumentRules& rules) {
    // One that only may not be printed or copied has its pages.
    if (pages == 0 && bytes.find("/Encrypt") != std::string_view::npos)
        return DocumentProblem("The PDF document is protected by a password.");
    if (bytes.find("%%EOF") == std::string_view::npos)
        return DocumentProblem("The PDF document is damaged or not complete.");
    return ReadScannedPdf(bytes, pages, watch, rules);
}

bool PageHoldsWords(const PdfPage& page) {
    return std::any_of(page.begin(), page.end(), [](const PdfLine& line) {
        return line.text.find_first_not_of(kWhiteSpace) != std::string::npos;
    });
}

// Of these pages, those with a large picture, in the order of their numbers.
std::vector<std::size_t> PagesOfPictures(std::string_view bytes, const std::set<std::size_t>& among,
                                         const ReadingWatch& watch) {
    std::string list;
    RunProgram("pdfimages -list /dev/stdin", bytes, watch, [&list](std::string_view part) {
        list += part;
        return list.size() < kLargestPictureList;
    });
    std::set<std::size_t> found;
    std::istringstream lines(list);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::size_t page = 0;
        std::size_t number = 0;
        std::size_t width = 0;
        std::size_t height = 0;
        std::string type;
        if (words >> page >> number >> type >> width >> height;
            words && among.contains(page) && width >= kLeastPixels && height >= kLeastPixels)
            found.insert(page);
    }
    return {found.begin(), found.end()};
}

// Nobody misses an empty page, but one that was scanned.
std::string PictureRemark(std::string_view bytes, const std::vector<PdfPage>& pages,
                          const ReadingWatch& watch) {
    std::set<std::size_t> empty;
    for (std::size_t page = 0; page < pages.size(); ++page)
        if (!PageHoldsWords(pages[page]))
            empty.insert(page + 1);
    if (empty.empty())
        return {};
    const std::vector<std::size_t> pictures = PagesOfPictures(bytes, empty, watch);
    return pictures.empty()
               ? std::string()
               : "Pages that hold only pictures, no text, are left out: " + RangesOf(pictures) +
                     ".";
}

}  // namespace

Document ReadPdf(std::string_view bytes, const ReadingWatch& watch, const DocumentRules& rules) {
    if (!IsProgramInstalled("pdftotext"))
        return DocumentProblem(
            "PDF documents need the program pdftotext: install the package poppler-utils.");
    PdfLayout layout(rules.referenceMarks);
    ProgramOutcome outcome =
        RunProgram(kLayoutCommand, bytes, watch, [&layout](std::string_view part) {
            layout.Feed(part);
            return layout.TextSize() <= kMostLayout;
        });
    if (std::string problem = ProgramProblem("pdftotext", outcome, watch); !problem.empty())
        return DocumentProblem(std::move(problem));
    std::vector<PdfPage> pages = layout.TakePages();
    if (layout.IsRightToLeft()) {
        // Only as plain text the program turns such words round.
        std::string text;
        outcome = RunProgram(kTextCommand, bytes, watch, [&text](std::string_view part) {
            text += part;
            return text.size() <= kLargestDocumentText;
        });
        if (std::string problem = ProgramProblem("pdftotext", outcome, watch); !problem.empty())
            return DocumentProblem(std::move(problem));
        pages = PdfPagesOfText(DecodeText(text));
    }
    if (std::none_of(pages.begin(), pages.end(), PageHoldsWords))
        return WithoutText(bytes, pages.size(), watch, rules);
    const std::size_t read = pages.size();
    const std::string pictures = PictureRemark(bytes, pages, watch);
    if (!rules.pageHeads)
        DropPageHeads(pages);
    Document document = JoinPages(std::move(pages), rules);
    document.remark = pictures;
    if (outcome == ProgramOutcome::kFailed)
        document.remark = "Only a part of the PDF document could be read, up to page " +
                          std::to_string(read) + ".";
    return document;
}
