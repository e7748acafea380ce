#include "documents/recognised_text.h"

#include <glib.h>
#include <unicode/uloc.h>

#include <algorithm>
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
constexpr int kMostRanges = 20;            // of missing pages that are told
constexpr std::size_t kMostLanguages = 6;  // each takes time of its own

// Of the user's languages, as this program names them, and English.
std::vector<std::string> LikelyLanguages() {
    std::vector<std::string> likely;
    for (const char* const* name = g_get_language_names(); *name != nullptr; ++name) {
        const std::string language = uloc_getISO3Language(*name);
        if (language == "zho")
            likely.emplace_back("chi");
        else if (language == "nob" || language == "nno")
            likely.emplace_back("nor");
        else if (!language.empty())
            likely.push_back(language);
    }
    likely.emplace_back("eng");
    return likely;
}

// What is installed, scripts and the detector of the page's direction aside.
std::vector<std::string> InstalledLanguages(const ReadingWatch& watch) {
    std::string list;
    RunProgram("tesseract --list-langs 2>&1", {}, watch, [&list](std::string_view part) {
        list += part;
        return list.size() < kReadAtOnce;
    });
    std::vector<std::string> languages;
    std::size_t at = list.find('\n');
    while (at != std::string::npos) {
        const std::size_t end = list.find('\n', ++at);
        const std::string name = list.substr(at, end == std::string::npos ? end : end - at);
        at = end;
        if (!name.empty() && name != "osd" && name != "equ" &&
            name.find_first_not_of("abcdefghijklmnopqrstuvwxyz_") == std::string::npos)
            languages.push_back(name);
    }
    return languages;
}

// "deu+eng": the likely ones first, others as far as they fit.
std::string ChosenLanguages(const ReadingWatch& watch) {
    std::vector<std::string> languages = InstalledLanguages(watch);
    auto rest = languages.begin();
    for (const std::string& likely : LikelyLanguages())
        rest = std::stable_partition(rest, languages.end(), [&likely](const std::string& name) {
            return name.starts_with(likely);
        });
    std::string chosen;
    for (std::size_t i = 0; i < std::min(languages.size(), kMostLanguages); ++i)
        chosen += (i == 0 ? "" : "+") + languages[i];
    return chosen;
}

class Recogniser {
public:
    Recogniser(const ReadingWatch& watch, const DocumentRules& rules)
        : rules_(rules), languages_(ChosenLanguages(watch)) {
        if (watch.WantsBeginning())
            growing_ = std::make_unique<GrowingPages>(rules);
    }

    bool HasLanguage() const { return !languages_.empty(); }
    std::size_t Pages() const { return pages_; }
    bool HasText() const { return text_.find_first_not_of(" \n\f") != std::string::npos; }

    // One page, or the pages of one file. Lines come as they are recognised, so that those of a
    // run that is ended are not lost.
    ProgramOutcome Read(std::string_view picture, const ReadingWatch& watch) {
        std::string text;
        const ProgramOutcome outcome =
            RunProgram("env OMP_THREAD_LIMIT=1 stdbuf -oL tesseract stdin stdout -l " + languages_,
                       picture, watch, [&text](std::string_view part) {
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
