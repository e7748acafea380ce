// What text preparation costs, and how surely languages are told.
//
//   speech_bench TEXTFILE             seconds of processor time, a step a line
//   speech_bench --detection TAG < TEXT
//                                     seconds of processor time of a text that is prepared for the
//                                     voice of that language alone, and for one for each language;
//                                     of seven runs the shortest
//   speech_bench --languages < LINES  tag, class and paragraph between tabs: which voice spoke it;
//                                     what a wrong one spoke goes to the standard error
#include <algorithm>
#include <array>
#include <ctime>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>

#include "speech/pronunciations.h"
#include "speech/speech_pieces.h"
#include "speech/spoken_forms.h"
#include "speech/text_language.h"
#include "speech/voice_finder.h"
#include "speech/voice_stretches.h"
#include "speech/voice_table.h"

namespace {

const std::set<std::string> kTags{"en-US", "de", "fr", "es", "it", "ru", "cs"};

void KnowVoices(const std::set<std::string>& tags) {
    std::vector<Voice> voices;
    for (const std::string& tag : tags)
        voices.push_back({"espeak-ng", tag, tag, tag, VoiceCharset::kUnicode});
    AddVoices(voices);
}

template <typename Work>
double SecondsOf(Work work) {
    const std::clock_t begin = std::clock();
    work();
    return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

template <typename Work>
void Time(const char* what, Work work) {
    std::cout << what << ": " << SecondsOf(work) << " s\n";
}

void Prepare(const std::string& text, bool byLanguage, std::string_view voice = "en-US") {
    SpeechPieces pieces(text, FindVoice(voice), ReadingUse::kSaving,
                        {.saysDifferently = false, .byLanguage = byLanguage});
    for (SpeechPiece piece; pieces.Next(piece);) {
    }
}

void TimeDetection(const std::string& text, std::string_view voice) {
    constexpr int kRuns = 7;
    KnowVoices(kTags);
    std::array<double, 2> shortest{};
    for (int run = 0; run < kRuns; ++run)
        for (const bool byLanguage : {false, true}) {
            double& best = shortest[byLanguage ? 1 : 0];
            const double took = SecondsOf([&] { Prepare(text, byLanguage, voice); });
            best = run == 0 ? took : std::min(best, took);
        }
    std::cout << shortest[0] << ' ' << shortest[1] << '\n';
}

void TimeSteps(const std::string& text) {
    constexpr int kManyWords = 100000;
    constexpr int kManyVoices = 300;
    KnowVoices(kTags);
    std::cout << text.size() << " bytes\n";
    Time("prepared for one voice", [&text] { Prepare(text, false); });
    Time("a voice for each language", [&text] { Prepare(text, true); });
    Time("of these the spoken forms", [&text] {
        SpokenForms forms(text, "en-US", 0, {});
        for (std::size_t at = 0; at < text.size(); ++at)
            forms.At(at);
    });
    std::vector<Pronunciation> entries;
    for (int i = 0; i < kManyWords; ++i)
        entries.push_back({"word" + std::to_string(i), "said", "", false, false});
    std::shared_ptr<const Pronunciations> list;
    Time("100,000 pronunciations read",
         [&] { list = std::make_shared<const Pronunciations>(std::move(entries)); });
    Time("and looked for", [&] {
        SaidDifferently said(list, text, "espeak-ng:en-US", "en-US");
        for (std::size_t at = 0; at < text.size(); ++at)
            said.At(at);
    });
    std::set<std::string> many;
    for (int i = 0; i < kManyVoices; ++i)
        many.insert("en-x-" + std::to_string(i));
    KnowVoices(many);
    Time("300 voices in the order of their languages", [] { VoicesToChooseFrom(); });
}

struct Told {
    std::size_t all = 0;
    std::size_t rightly = 0;
    std::size_t wrongly = 0;  // neither its language nor the one before
    std::size_t paragraphs = 0;
    std::size_t surely = 0;  // told at once
    std::size_t surelyWrong = 0;
};

void TellLanguages() {
    std::vector<std::array<std::string, 3>> lines;
    std::set<std::string> tags{"en"};
    for (std::string line; std::getline(std::cin, line);) {
        std::istringstream parts(line);
        std::array<std::string, 3> fields;
        for (std::string& field : fields)
            std::getline(parts, field, '\t');
        tags.insert(fields[0]);
        lines.push_back(std::move(fields));
    }
    KnowVoices(tags);
    std::map<std::string, std::map<std::string, Told>> classes;
    for (const auto& [tag, size, paragraph] : lines) {
        Told& told = classes[size][tag];
        const TextLanguage seen = LanguageOf(paragraph);
        told.surely += seen.isSure ? 1 : 0;
        ++told.paragraphs;
        if (seen.isSure && seen.tag != tag) {
            ++told.surelyWrong;
            std::cerr << size << '\t' << tag << "\tsurely " << seen.tag << '\t' << paragraph
                      << '\n';
        }
        VoiceStretches stretches(paragraph, FindVoice("en"), true, {});
        for (VoiceStretch stretch{}; stretches.Next(stretch);) {
            const std::string spoken = VoiceAt(stretch.voice).name;
            const std::size_t bytes = stretch.end - stretch.begin;
            told.all += bytes;
            told.rightly += spoken == tag ? bytes : 0;
            if (spoken == tag || spoken == "en")
                continue;
            told.wrongly += bytes;
            std::cerr << size << '\t' << tag << '\t' << spoken << '\t'
                      << std::string_view(paragraph).substr(stretch.begin, bytes) << '\n';
        }
    }
    for (const auto& [size, languages] : classes) {
        std::cout << size << " words and more:";
        Told sum;
        for (const auto& [tag, told] : languages) {
            std::cout << " " << tag << " " << 100 * told.rightly / told.all;
            sum.all += told.all;
            sum.rightly += told.rightly;
            sum.wrongly += told.wrongly;
            sum.paragraphs += told.paragraphs;
            sum.surely += told.surely;
            sum.surelyWrong += told.surelyWrong;
        }
        const auto percent = [&sum](std::size_t part) {
            return 100 * static_cast<double>(part) / static_cast<double>(sum.all);
        };
        std::cout << "\n  all: " << percent(sum.rightly) << " % right, " << percent(sum.wrongly)
                  << " % wrong, the rest stays with the voice before\n  surely told " << sum.surely
                  << " of " << sum.paragraphs << " paragraphs, " << sum.surelyWrong
                  << " of these wrongly\n";
    }
}

}  // namespace

int main(int count, char** arguments) {
    const std::string what = count > 1 ? arguments[1] : "";
    if (what == "--detection" && count == 3) {
        TimeDetection({std::istreambuf_iterator<char>(std::cin), {}}, arguments[2]);
        return 0;
    }
    if (count != 2) {
        std::cerr
            << "usage: speech_bench TEXTFILE | --detection TAG < TEXT | --languages < LINES\n";
        return 2;
    }
    if (what == "--languages") {
        TellLanguages();
        return 0;
    }
    std::ifstream file(what);
    TimeSteps({std::istreambuf_iterator<char>(file), {}});
}
