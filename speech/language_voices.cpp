#include "speech/language_voices.h"

#include <glib.h>

#include <algorithm>
#include <atomic>

#include "foundation/processes/pipes.h"
#include "foundation/settings/setting.h"
#include "speech/text_language.h"
#include "speech/voice_title.h"

namespace {

constexpr const char* kVoicesSection = "Voices";
constexpr std::size_t kMostKept = 200;  // a document may name any number of languages

// How often the user has chosen since the program began.
std::atomic<unsigned>& Choices() {
    static std::atomic<unsigned> choices = 0;
    return choices;
}

// Where most of its speakers are, when that is not told by its own name ("fr-FR").
constexpr std::pair<std::string_view, std::string_view> kMainRegions[] = {
    {"en", "US"}, {"en", "GB"}, {"zh", "CN"}, {"pt", "PT"}, {"sv", "SE"}, {"da", "DK"},
    {"cs", "CZ"}, {"el", "GR"}, {"ja", "JP"}, {"ko", "KR"}, {"uk", "UA"}, {"vi", "VN"}};

std::string_view RegionOf(std::string_view tag) {
    const std::size_t dash = tag.find('-');
    return dash == std::string_view::npos ? "" : tag.substr(dash + 1);
}

// The smaller, the better.
std::size_t RankOf(std::string_view tag, std::string_view language, std::string_view region) {
    const std::string_view has = RegionOf(tag);
    if (!region.empty() && has == region)
        return 0;
    if (has.empty())
        return 1;
    if (g_ascii_strncasecmp(has.data(), language.data(), std::max(has.size(), language.size())) ==
        0)
        return 2;
    for (std::size_t i = 0; i < std::size(kMainRegions); ++i)
        if (kMainRegions[i].first == language && kMainRegions[i].second == has)
            return 3 + i;
    return 3 + std::size(kMainRegions);
}

}  // namespace

int FindVoiceOfLanguage(std::string_view language, std::string_view region) {
    const std::vector<Voice> voices = KnownVoices();
    int best = -1;
    for (std::size_t i = 0; i < voices.size(); ++i) {
        if (voices[i].language.empty() || LanguageOnly(voices[i].language) != language)
            continue;
        if (best < 0 ||
            RankOf(voices[i].language, language, region) <
                RankOf(voices[static_cast<std::size_t>(best)].language, language, region))
            best = static_cast<int>(i);
    }
    return best;
}

int VoiceForLanguage(std::string_view language) {
    const std::string key(language);
    const std::string stored = UserSetting<const char*>{kVoicesSection, key.c_str(), ""}.Get();
    const int chosen = stored.empty() ? -1 : FindVoice(stored);
    return chosen >= 0 ? chosen : FindVoiceOfLanguage(language, "");
}

void KeepVoiceForLanguage(const Voice& voice) {
    const std::string key(LanguageOnly(voice.language));
    if (!key.empty() && KeyOf(voice).size() < kTextBufferSize)
        UserSetting<const char*>{kVoicesSection, key.c_str(), ""}.Set(KeyOf(voice));
    ++Choices();
}

int VoicesForRun::Of(std::string_view language) {
    const int voices = CountVoices();
    const unsigned choices = Choices();
    if (std::pair(voices, choices) != std::pair(voices_, choices_) || found_.size() > kMostKept)
        found_.clear();
    voices_ = voices;
    choices_ = choices;
    auto kept = std::ranges::find(found_, language, &std::pair<std::string, int>::first);
    if (kept == found_.end())
        kept = found_.emplace(kept, language, VoiceForLanguage(language));
    return kept->second;
}

std::string MissingVoicesMessage(const std::vector<std::string>& languages) {
    if (languages.empty())
        return {};
    std::string text = "The text is partly in ";
    for (std::size_t i = 0; i < languages.size(); ++i) {
        text += i == 0 ? "" : i + 1 == languages.size() ? " and " : ", ";
        text += EnglishNameOfLanguage(languages[i]);
    }
    text += ", for which no voice is installed.";
    if (!IsProgramInstalled("espeak-ng"))
        text += " The package \"espeak-ng\" brings voices for most languages.";
    return text;
}
