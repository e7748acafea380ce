#include "speech/festival_voices.h"

#include <algorithm>
#include <filesystem>
#include <iterator>

#include "foundation/files/machine_root.h"
#include "speech/voice_description.h"
#include "speech/voice_title.h"

namespace {

struct KnownVoice {
    std::string_view name;
    const char* given;
    const char* kind;
    const char* language;
};
constexpr const char* kMan = "man";
constexpr const char* kWoman = "woman";
constexpr KnownVoice kKnown[] = {
    {"kal_diphone", "Kal", kMan, "en-US"},
    {"ked_diphone", "Ked", kMan, "en-US"},
    {"cmu_us_slt_arctic_hts", "SLT", kWoman, "en-US"},
    {"suo_fi_lj_diphone", "LJ", kWoman, "fi"},
    {"hy_fi_mv_diphone", "MV", kMan, "fi"},
    {"lp_diphone", "LP", kWoman, "it"},
    {"pc_diphone", "PC", kMan, "it"},
    {"upc_ca_ona_hts", "Ona", kWoman, "ca"},
    {"czech_dita", "Dita", kWoman, "cs"},
    {"czech_krb", "KRB", "boy", "cs"},
    {"czech_machac", "Machac", kMan, "cs"},
    {"czech_ph", "PH", kMan, "cs"},
    {"hindi_NSK_diphone", "NSK", kMan, "hi"},
    {"marathi_NSK_diphone", "NSK", kMan, "mr"},
    {"telugu_NSK_diphone", "NSK", kMan, "te"},
    {"msu_ru_nsh_clunits", "NSH", kMan, "ru"},
};

// Packages that bring voices only recommend these, so that they may be absent.
struct Companion {
    std::string_view voice;
    const char* file;  // that it brings
    const char* package;
};
constexpr Companion kCompanions[] = {
    {"hindi_NSK_diphone", "/hindi_scm/hindi_lex.scm", "festival-hi"},
    {"marathi_NSK_diphone", "/marathi_scm/marathi_lex.scm", "festival-mr"},
    {"telugu_NSK_diphone", "/telugu_scm/telugu_lex.scm", "festival-te"},
};

constexpr std::string_view kListPrompt = "festival>";
constexpr std::string_view kListBlanks = " \t\r\n";

}  // namespace

Voice FestivalVoice(const std::string& name) {
    Voice voice{"festival", name, "", "", VoiceCharset::kAscii};
    const VoiceDescription described = DescriptionOfVoice(name);
    voice.charset = described.charset;
    VoiceCalled called{.given = name};
    const auto* const known = std::ranges::find(kKnown, name, &KnownVoice::name);
    if (known != std::end(kKnown)) {
        called.given = known->given;
        called.kind = known->kind;
        voice.language = known->language;
    } else {
        called.kind = described.kind;
        voice.language = described.language;
    }
    NameVoice(voice, called);
    return voice;
}

std::vector<std::string> FestivalVoiceNames(std::string_view answer) {
    std::vector<std::string> names;
    const std::size_t open = answer.find('(', std::min(answer.find(kListPrompt), answer.size()));
    const std::size_t close = answer.find(')', std::min(open, answer.size()));
    if (close == std::string_view::npos)
        return names;
    std::string_view rest = answer.substr(open + 1, close - open - 1);
    while (true) {
        rest.remove_prefix(std::min(rest.find_first_not_of(kListBlanks), rest.size()));
        if (rest.empty())
            return names;
        const std::size_t end = std::min(rest.find_first_of(kListBlanks), rest.size());
        names.emplace_back(rest.substr(0, end));
        rest.remove_prefix(end);
    }
}

std::string MissingCompanion(std::string_view name) {
    const auto* const found = std::ranges::find(kCompanions, name, &Companion::voice);
    std::error_code error;
    // An uninstalled program has a root of its own, without an engine.
    const std::string engine = "/usr/share/festival";
    const std::string own = MachinePath(engine);
    const std::string folder = std::filesystem::exists(own, error) ? own : engine;
    if (found == std::end(kCompanions) || std::filesystem::exists(folder + found->file, error))
        return {};
    return found->package;
}
