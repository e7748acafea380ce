#include "documents/recognised_text.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "documents/pdf_pages.h"
#include "documents/problems.h"
#include "documents/program_output.h"
#include "documents/small_texts.h"
#include "documents/text_charset.h"
#include "foundation/processes/child_process.h"

namespace {

constexpr std::size_t kLargestPicture = 64U << 20;  // of a page
constexpr std::size_t kMostScans = 2000;
constexpr int kMostRanges = 20;    // of missing pages that are told
constexpr int kMostLanguages = 6;  // each takes time of its own

// "deu+eng": what is installed, scripts and the detector of the page's direction aside.
std::string InstalledLanguages(const ReadingWatch& watch) {
    std::string list;
    RunProgram("tesseract --list-langs 2>&1", {}, watch, [&list](std::string_view part) {
        list += part;
        return list.size() < kReadAtOnce;
    });
    std::string languages;
    int count = 0;
    std::size_t at = list.find('\n');
    while (at != std::string::npos && count < kMostLanguages) {
        const std::size_t end = list.find('\n', ++at);
        const std::string name = list.substr(at, end == std::string::npos ? end : end - at);
        at = end;
        if (name.empty() || name == "osd" || name == "equ" ||
            name.find_first_not_of("abcdefghijklmnopqrstuvwxyz_") != std::string::npos)
            continue;
        languages += (count++ == 0 ? "" : "+") + name;
    }
    return languages;
}

class Recogniser {
public:
    Recogniser(const ReadingWatch& watch, const DocumentRules& rules)
        : rules_(rules), languages_(InstalledLanguages(watch)) {
        if (watch.WantsBeginning())
            growing_ = std::make_unique<GrowingPages>(rules);
    }

    bool HasLanguage() const { return !languages_.empty(); }
    std::size_t Pages() const { return pages_; }

    // One page, or the pages of one file.
    ProgramOutcome Read(std::string_view picture, const ReadingWatch& watch) {
        std::string text;
        const ProgramOutcome outcome =
            RunProgram("env OMP_THREAD_LIMIT=1 tesseract stdin stdout -l " + languages_, picture,
                       watch, [&text](std::string_view part) {
                           text += part;
                           return text.size() <= kLargestDocumentText;
                       });
        if (!text.ends_with('\f'))
            text += '\f';
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
            growing_->Add({});
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
        for (PdfPage& page : pages)
            growing_->Add(std::move(page));
        Document beginning = growing_->Beginning();
        beginning.isRecognised = true;
        if (!beginning.text.empty())
            watch.TellBeginning(beginning);
    }

    const DocumentRules& rules_;
    std::string languages_;
    std::string text_;
    std::size_t pages_ = 0;
    std::unique_ptr<GrowingPages> growing_;  // where the first page is not to wait for the last
};

std::string Lack(const Recogniser& recogniser) {
    return recogniser.HasLanguage()
               ? ""
               : "The program tesseract knows no language: install the package tesseract-ocr-eng.";
}

constexpr const char* kNotInstalled =
    "The text in pictures is read by the program tesseract: install the package tesseract-ocr, by "
    "\"Check This Computer\" in Lectora's menu Help for example.";

// Grey, as large as an office's page at 300 dots an inch.
std::string PageCommand(std::size_t page) {
    const std::string number = std::to_string(page);
    return "pdftoppm -gray -scale-to 3500 -f " + number + " -l " + number + " - ";
}

ProgramOutcome DrawPage(std::string_view bytes, std::size_t page, const ReadingWatch& watch,
                        std::string& picture) {
    const ProgramOutcome outcome =
        RunProgram(PageCommand(page), bytes, watch, [&picture](std::string_view part) {
            picture += part;
            return picture.size() <= kLargestPicture;
        });
    return outcome == ProgramOutcome::kDone && picture.empty() ? ProgramOutcome::kFailed : outcome;
}

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
    if (!IsProgramInstalled("tesseract"))
        return DocumentProblem(kNotInstalled);
    Recogniser recogniser(watch, rules);
    if (std::string lack = Lack(recogniser); !lack.empty())
        return DocumentProblem(std::move(lack));
    const ProgramOutcome outcome = recogniser.Read(bytes, watch.Anew(kPagePatience));
    if (outcome == ProgramOutcome::kFailed)
        return DocumentProblem("The picture is damaged or of a kind that cannot be read.");
    if (std::string problem = ProgramProblem("tesseract", outcome, watch.Anew()); !problem.empty())
        return DocumentProblem(std::move(problem));
    return recogniser.Take();
}

Document ReadScannedPdf(std::string_view bytes, std::size_t pages, const ReadingWatch& watch,
                        const DocumentRules& rules, std::chrono::seconds patience) {
    if (!IsProgramInstalled("tesseract"))
        return DocumentProblem(std::string("The PDF document holds only pictures of its pages. ") +
                               kNotInstalled);
    Recogniser recogniser(watch, rules);
    if (std::string lack = Lack(recogniser); !lack.empty())
        return DocumentProblem(std::move(lack));
    std::vector<std::size_t> missing;
    std::size_t page = 1;
    for (; page <= kMostScans; ++page) {
        const ReadingWatch pageWatch = watch.Anew(patience);
        std::string picture;
        ProgramOutcome outcome = DrawPage(bytes, page, pageWatch, picture);
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
