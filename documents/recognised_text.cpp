#include "documents/recognised_text.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "documents/page_recogniser.h"
#include "documents/pdf_pages.h"
#include "documents/problems.h"
#include "documents/program_output.h"
#include "documents/text_charset.h"

namespace {

constexpr std::size_t kMostScans = 2000;
constexpr int kMostRanges = 20;  // of missing pages that are told

// A document all of whose pages are pictures.
class Recogniser {
public:
    Recogniser(const ReadingWatch& watch, const DocumentRules& rules)
        : rules_(rules), reader_(watch) {
        if (watch.WantsBeginning())
            growing_ = std::make_unique<GrowingPages>(rules);
    }

    const std::string& Lack() const { return reader_.Lack(); }
    std::size_t Pages() const { return pages_; }
    bool HasText() const { return text_.find_first_not_of(" \n\f") != std::string::npos; }

    ProgramOutcome Read(std::string_view picture, const ReadingWatch& watch) {
        std::string text;
        const ProgramOutcome outcome = reader_.Read(picture, watch, text);
        text_ += text;
        ++pages_;
        if (growing_)
            Grow(text, watch);
        return text_.size() > kLargestDocumentText ? ProgramOutcome::kTooLong : outcome;
    }

    // A page that cannot be recognised; the others keep their numbers.
    void Skip() {
        text_ += '\f';
        if (growing_)
            growing_->Add(std::vector<PdfPage>(1));
    }

    Document Take() const {
        Document document = growing_ ? growing_->Take() : Joined();
        document.isRecognised = true;
        document.remark = "The text was recognised in pictures; some of its words may be wrong.";
        return document;
    }

private:
    Document Joined() const {
        std::vector<PdfPage> pages = PdfPagesOfText(DecodeText(text_));
        if (!rules_.pageHeads)
            DropPageHeads(pages);
        return JoinPages(std::move(pages), rules_);
    }
    void Grow(std::string_view text, const ReadingWatch& watch) {
        std::vector<PdfPage> pages = PdfPagesOfText(DecodeText(text));
        if (pages.back().empty())  // behind the form feed
            pages.pop_back();
        growing_->Add(std::move(pages));
        Document beginning = growing_->Beginning();
        beginning.isRecognised = true;
        if (!beginning.text.empty())
            watch.TellBeginning(beginning);
    }

    const DocumentRules& rules_;
    PageRecogniser reader_;
    std::string text_;
    std::size_t pages_ = 0;
    std::unique_ptr<GrowingPages> growing_;  // where the first page is not to wait for the last
};

}  // namespace

std::string RangesOf(const std::vector<std::size_t>& pages) {
    std::string text;
    std::size_t told = 0;
    for (int ranges = 0; told < pages.size() && ranges < kMostRanges; ++ranges) {
        const std::size_t first = told;
        while (++told < pages.size() && pages[told] == pages[told - 1] + 1) {
        }
        text += (text.empty() ? "" : ", ") + std::to_string(pages[first]);
        if (told - first > 1)
            text += "-" + std::to_string(pages[told - 1]);
    }
    return told < pages.size() ? text + " and " + std::to_string(pages.size() - told) + " more"
                               : text;
}

Document ReadPicture(std::string_view bytes, const ReadingWatch& watch,
                     const DocumentRules& rules) {
    Recogniser recogniser(watch, rules);
    if (!recogniser.Lack().empty())
        return DocumentProblem(recogniser.Lack());
    const ProgramOutcome outcome = recogniser.Read(bytes, watch.Anew(kPagePatience));
    if ((outcome == ProgramOutcome::kFailed || outcome == ProgramOutcome::kEnded) &&
        recogniser.HasText() && !watch.WasStopped()) {
        Document document = recogniser.Take();
        document.remark +=
            " It took too long or is damaged further on: what was recognised by then is read.";
        return document;
    }
    if (outcome == ProgramOutcome::kFailed)
        return DocumentProblem("The picture is damaged or of a kind that cannot be read.");
    if (std::string problem = ProgramProblem("tesseract", outcome, watch.Anew()); !problem.empty())
        return DocumentProblem(std::move(problem));
    return recogniser.Take();
}

Document ReadScannedPdf(std::string_view bytes, std::size_t pages, const ReadingWatch& watch,
                        const DocumentRules& rules, std::chrono::seconds patience) {
    Recogniser recogniser(watch, rules);
    if (!recogniser.Lack().empty())
        return DocumentProblem("The PDF document holds only pictures of its pages. " +
                               recogniser.Lack());
    std::vector<std::size_t> missing;
    std::size_t page = 1;
    for (; page <= kMostScans; ++page) {
        const ReadingWatch pageWatch = watch.Anew(patience);
        std::string picture;
        ProgramOutcome outcome = DrawPdfPage(bytes, page, pageWatch, picture);
        if (outcome == ProgramOutcome::kFailed && page > pages)
            break;  // behind the last page
        const bool isDrawn = outcome == ProgramOutcome::kDone;
        if (isDrawn)
            outcome = recogniser.Read(picture, pageWatch);
        // One page that takes too long or is damaged does not cost the others.
        if (outcome == ProgramOutcome::kFailed ||
            (outcome == ProgramOutcome::kEnded && !pageWatch.WasStopped())) {
            missing.push_back(page);
            if (!isDrawn)
                recogniser.Skip();
        } else if (std::string problem = ProgramProblem("tesseract", outcome, pageWatch);
                   !problem.empty())
            return DocumentProblem(std::move(problem));
    }
    if (recogniser.Pages() == 0)
        return DocumentProblem("The PDF document holds no text, or is damaged.");
    Document document = recogniser.Take();
    if (!missing.empty())
        document.remark +=
            " Pages that took too long or are damaged are missing: " + RangesOf(missing) + ".";
    if (page > kMostScans)
        document.remark += " Only " + std::to_string(kMostScans) + " pages were recognised.";
    return document;
}
