#include "documents/pdf_text.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "documents/pdf_pages.h"
#include "documents/picture_pages.h"
#include "documents/problems.h"
#include "documents/program_output.h"
#include "documents/recognised_text.h"
#include "foundation/processes/child_process.h"

namespace {

constexpr const char* kLayoutCommand = "pdftotext -q -bbox-layout -enc UTF-8 - -";
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

}  // namespace

Document ReadPdf(std::string_view bytes, const ReadingWatch& watch, const DocumentRules& rules) {
    if (!IsProgramInstalled("pdftotext"))
        return DocumentProblem(
            "PDF documents need the program pdftotext: install the package poppler-utils.");
    PdfLayout layout(rules.referenceMarks);
    const ProgramOutcome outcome =
        RunProgram(kLayoutCommand, bytes, watch, [&layout](std::string_view part) {
            layout.Feed(part);
            return layout.TextSize() <= kMostLayout;
        });
    if (std::string problem = ProgramProblem("pdftotext", outcome, watch); !problem.empty())
        return DocumentProblem(std::move(problem));
    std::vector<PdfPage> pages = layout.TakePages();
    if (std::ranges::none_of(pages, PageHoldsWords))
        return WithoutText(bytes, pages.size(), watch, rules);
    const std::size_t read = pages.size();
    Document document;
    // Nobody misses an empty page, but one that was scanned.
    if (const std::vector<std::size_t> pictures = FindPicturePages(bytes, pages, watch);
        !pictures.empty()) {
        document = JoinWithPictures(bytes, std::move(pages), pictures, watch, rules);
    } else {
        if (!rules.pageHeads)
            DropPageHeads(pages);
        document = JoinPages(std::move(pages), rules);
    }
    if (outcome == ProgramOutcome::kFailed)
        document.remark = "Only a part of the PDF document could be read, up to page " +
                          std::to_string(read) + "." +
                          (document.remark.empty() ? "" : " " + document.remark);
    return document;
}
