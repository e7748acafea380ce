#include "speech/speech_engines.h"

#include <glib.h>

#include <algorithm>
#include <cmath>
#include <sstream>

#include "speech/festival_times.h"
#include "speech/festival_voices.h"
#include "speech/own_engines.h"
#include "speech/shell_word.h"
#include "speech/text_language.h"
#include "speech/voice_manner.h"
#include "speech/voice_title.h"
#include "speech/voice_variants.h"
#include "speech/voices.h"

namespace {

std::vector<Voice> FestivalVoicesIn(const SpeechEngine&, std::string_view answer) {
    std::vector<Voice> voices;
    for (const std::string& name : FestivalVoiceNames(answer))
        voices.push_back(FestivalVoice(name));
    return voices;
}

bool IsWholeFestivalAnswer(std::string_view answer) {
    const std::size_t prompt = answer.find("festival>");
    return prompt != std::string_view::npos && answer.find(')', prompt) != std::string_view::npos;
}

std::string FestivalCommand(const SpeechEngine&, const SpeechOrder& order) {
    return SynthesisCommand(order.voice.name, order.textPath, order.soundPath);
}

// "en-us" as "en-US"; scripts and private parts stay as they are.
std::string Tag(std::string tag) {
    const std::size_t dash = tag.find('-');
    if (dash != std::string::npos && (tag.size() == dash + 3 || tag[dash + 3] == '-'))
        for (std::size_t at = dash + 1; at < dash + 3 && at < tag.size(); ++at)
            tag[at] = g_ascii_toupper(tag[at]);
    return tag;
}

// Its file, "!v/f2", is what a voice is joined with: "en-us+f2".
void AddVariant(const std::string& title, std::string_view line,
                std::vector<VoiceVariant>& variants) {
    constexpr std::string_view kFolder = "!v/";
    const std::size_t folder = line.find(kFolder);
    if (folder == std::string_view::npos)
        return;
    std::string_view name = line.substr(folder + kFolder.size());
    name = name.substr(0, name.find_last_not_of(' ') + 1);
    variants.push_back({std::string(name), title});
}

// Lines of "priority language age/gender name file (others)" under a head.
std::vector<Voice> EspeakVoicesIn(const SpeechEngine& engine, std::string_view answer) {
    std::vector<Voice> voices;
    std::vector<VoiceVariant> variants;
    std::istringstream lines{std::string(answer)};
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string priority;
        std::string language;
        std::string gender;
        std::string title;
        words >> priority >> language >> gender >> title;
        if (title.empty() || !g_ascii_isdigit(priority[0]))
            continue;
        std::ranges::replace(title, '_', ' ');
        title.erase(title.find_last_not_of(' ') + 1);
        if (language == "variant") {
            AddVariant(title, line, variants);
            continue;
        }
        Voice voice{engine.name, language, "", Tag(language), VoiceCharset::kUnicode};
        NameVoice(voice, {.engine = engine.title, .language = title});
        voices.push_back(std::move(voice));
    }
    KnowVariants(engine.name, std::move(variants));
    return voices;
}

// Measured: 0 to 99 are 61 to 165 percent.
int EspeakPitch(int percent) {
    return std::clamp(static_cast<int>(std::lround(50 + 69 * std::log2(percent / 100.0))), 0, 99);
}

constexpr int kEspeakWords = 175;  // a minute, at its own speed

std::string EspeakCommand(const SpeechEngine& engine, const SpeechOrder& order) {
    const VoiceManner& manner = order.manner;
    const std::string variant = manner.variant.empty() ? "" : "+" + manner.variant;
    std::string options;
    if (manner.pitch != VoiceManner().pitch)
        options = " -p " + std::to_string(EspeakPitch(manner.pitch));
    if (manner.volume != VoiceManner().volume)
        options += " -a " + std::to_string(manner.volume);
    if (order.speed != 100)
        options += " -s " + std::to_string((kEspeakWords * order.speed + 50) / 100);
    return engine.program + " -b 1" + options + " -v " + ShellWord(order.voice.name + variant) +
           " -f " + ShellWord(order.textPath) + " -w " + ShellWord(order.soundPath);
}

struct FliteVoice {
    std::string_view name;
    const char* given;
    const char* kind;
    const char* language;
};
constexpr FliteVoice kFliteVoices[] = {{"kal", "Kal", "man", "en-US"},
                                       {"kal16", "Kal at 16 kHz", "man", "en-US"},
                                       {"awb", "AWB", "man", "en-GB"},
                                       {"rms", "RMS", "man", "en-US"},
                                       {"slt", "SLT", "woman", "en-US"}};

// "Voices available: kal awb_time ..."; the one that is no title here only tells the time.
std::vector<Voice> FliteVoicesIn(const SpeechEngine& engine, std::string_view answer) {
    std::vector<Voice> voices;
    std::istringstream words{std::string(answer)};
    for (std::string word; words >> word;) {
        const auto* const known = std::ranges::find(kFliteVoices, word, &FliteVoice::name);
        if (known == std::end(kFliteVoices))
            continue;
        Voice voice{engine.name, word, "", known->language, VoiceCharset::kAscii};
        NameVoice(voice, {.given = known->given, .kind = known->kind, .engine = engine.title});
        voices.push_back(std::move(voice));
    }
    return voices;
}

std::string FliteCommand(const SpeechEngine& engine, const SpeechOrder& order) {
    return engine.program + " -voice " + ShellWord(order.voice.name) + " -f " +
           ShellWord(order.textPath) + " -o " + ShellWord(order.soundPath);
}

std::vector<SpeechEngine> EnginesWithRows() {
    std::vector<SpeechEngine> rows(3);
    rows[0].name = "festival";
    rows[0].title = "Festival";
    rows[0].program = "text2wave";
    rows[0].listCommand = "festival -i";
    rows[0].listInput = kVoiceListCommand;
    rows[0].isWhole = IsWholeFestivalAnswer;
    rows[0].voicesIn = FestivalVoicesIn;
    rows[0].command = FestivalCommand;
    rows[0].timesOption = FestivalTimesOption;
    rows[0].loadsBeforeText = true;
    rows[0].saysEnglish = kSaysMoney | kSaysFractions | kSaysRomanNumerals;
    rows[1].name = "espeak-ng";
    rows[1].title = "eSpeak NG";
    rows[1].program = "espeak-ng";
    rows[1].listCommand = "espeak-ng --voices && espeak-ng --voices=variant";
    rows[1].voicesIn = EspeakVoicesIn;
    rows[1].command = EspeakCommand;
    rows[1].takesManner = true;
    // Measured with a recogniser (bench/fast_speech.py): up to three times stretching is as clear.
    rows[1].speaksFasterFrom = 310;
    rows[1].says = kSaysEmoji;
    rows[1].omitsNumbersIn = " he tk cv nog qya sjn ";
    rows[2].name = "flite";
    rows[2].title = "Flite";
    rows[2].program = "flite";
    rows[2].listCommand = "flite -lv";
    rows[2].voicesIn = FliteVoicesIn;
    rows[2].command = FliteCommand;
    rows[2].needsLineEnd = true;
    rows[2].saysEnglish = rows[0].saysEnglish;
    return rows;
}

}  // namespace

std::vector<SpeechEngine> SpeechEngines() {
    std::vector<SpeechEngine> engines = EnginesWithRows();
    for (SpeechEngine& own : OwnEngines())
        engines.push_back(std::move(own));
    return engines;
}

SpeechEngine EngineOf(const Voice& voice) {
    std::vector<SpeechEngine> engines = SpeechEngines();
    const auto found = std::ranges::find(engines, voice.engine, &SpeechEngine::name);
    return found == engines.end() ? engines.front() : *found;
}

int SpeedOfEngine(const Voice& voice, int wanted) {
    const int from = EngineOf(voice).speaksFasterFrom;
    return from > 0 && wanted >= from ? wanted : 100;
}

SaidByEngine SaidByEngineOf(const Voice& voice) {
    const SpeechEngine engine = EngineOf(voice);
    const std::string language(LanguageOnly(voice.language));
    const bool isOmitted = engine.omitsNumbersIn.find(" " + language + " ") != std::string::npos;
    return engine.says | (language == "en" ? engine.saysEnglish : 0) |
           (isOmitted ? kOmitsNumbers : 0);
}

std::string SynthesisCommand(std::string_view voice, std::string_view textPath,
                             std::string_view soundPath) {
    const std::string expression = "(voice_" + std::string(voice) + ")";
    return "text2wave -eval " + ShellWord(expression) + " " + ShellWord(textPath) + " -o " +
           ShellWord(soundPath);
}
