#include "documents/page_recogniser.h"

#include <glib.h>
#include <unicode/uloc.h>

#include <algorithm>
#include <string>
#include <vector>

#include "documents/small_texts.h"
#include "foundation/processes/child_process.h"

namespace {

constexpr std::size_t kLargestPicture = 64U << 20;  // of a page
constexpr std::size_t kMostLanguages = 6;           // each takes time of its own

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

}  // namespace

PageRecogniser::PageRecogniser(const ReadingWatch& watch) {
    if (!IsProgramInstalled("tesseract"))
        lack_ =
            "The text in pictures is read by the program tesseract: install the package "
            "tesseract-ocr, by \"Check This Computer\" in Lectora's menu Help for example.";
    else if (languages_ = ChosenLanguages(watch); languages_.empty())
        lack_ = "The program tesseract knows no language: install the package tesseract-ocr-eng.";
}

ProgramOutcome PageRecogniser::Read(std::string_view picture, const ReadingWatch& watch,
                                    std::string& text) const {
    text.clear();
    const ProgramOutcome outcome =
        RunProgram("env OMP_THREAD_LIMIT=1 stdbuf -oL tesseract stdin stdout -l " + languages_,
                   picture, watch, [&text](std::string_view part) {
                       text += part;
                       return text.size() <= kLargestDocumentText;
                   });
    if (!text.ends_with('\f'))
        text += '\f';
    return outcome;
}

// Grey, as large as an office's page at 300 dots an inch.
ProgramOutcome DrawPdfPage(std::string_view bytes, std::size_t page, const ReadingWatch& watch,
                           std::string& picture) {
    const std::string number = std::to_string(page);
    const ProgramOutcome outcome =
        RunProgram("pdftoppm -gray -scale-to 3500 -f " + number + " -l " + number + " - ", bytes,
                   watch, [&picture](std::string_view part) {
                       picture += part;
                       return picture.size() <= kLargestPicture;
                   });
    return outcome == ProgramOutcome::kDone && picture.empty() ? ProgramOutcome::kFailed : outcome;
}
