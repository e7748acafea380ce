#include "speech/voice_finder.h"

#include <glib.h>

#include <algorithm>
#include <sstream>
#include <tuple>

#include "foundation/files/private_file.h"
#include "foundation/owned_text.h"
#include "speech/speech_engines.h"
#include "speech/text_language.h"
#include "speech/voice_title.h"

namespace {

// Keys, newest first, each behind a zero byte: the one that none holds.
constexpr const char* kUsedFile = "recent-voices";
constexpr std::size_t kMostUsed = 8;
constexpr std::size_t kMostUsedBytes = 1 << 16;

std::string Folded(const std::string& text) {
    const OwnedText valid(g_utf8_make_valid(text.c_str(), -1));
    return OwnedText(g_utf8_casefold(valid.get(), -1)).get();
}

// "en_US", "en"; of programs without a language English.
std::vector<std::string> UsersTags() {
    std::vector<std::string> tags;
    for (const char* const* name = g_get_language_names(); *name != nullptr; ++name)
        tags.emplace_back(std::string_view(*name) == "C" ? "en" : *name);
    return tags;
}

std::ptrdiff_t PlaceIn(const std::vector<std::string>& list, const std::string& wanted) {
    return std::ranges::find(list, wanted) - list.begin();
}

// The smaller, the earlier, member by member.
struct Rank {
    std::ptrdiff_t language;   // without region
    std::ptrdiff_t region;     // the user's own first
    std::string languageName;  // as it sorts
    std::ptrdiff_t used;
    int index;

    auto Members() const { return std::tie(language, region, languageName, used, index); }
    bool operator<(const Rank& other) const { return Members() < other.Members(); }
};

ListedVoice Listed(int index, Voice voice, const std::vector<SpeechEngine>& engines) {
    const auto engine = std::ranges::find(engines, voice.engine, &SpeechEngine::name);
    ListedVoice listed{index, std::move(voice), ""};
    listed.engine = engine == engines.end() ? listed.voice.engine : engine->title;
    if (listed.voice.languageTitle.empty())
        listed.voice.languageTitle = "Other languages";
    if (listed.voice.shortTitle.empty())
        listed.voice.shortTitle = listed.voice.title;
    return listed;
}

// The names of languages cost most of what hundreds of voices do.
std::string WordsOf(const ListedVoice& listed) {
    const Voice& named = listed.voice;
    return Folded(named.title + "\n" + named.languageTitle + "\n" + listed.engine + "\n" +
                  named.name + "\n" + named.language + "\n" +
                  EnglishNameOfLanguage(named.language) + "\n" + OwnNameOfLanguage(named.language));
}

// Languages in the order in which a user looks for them.
class Order {
public:
    Order() : tags_(UsersTags()), used_(VoicesUsedLast()) {
        for (const std::string& tag : tags_)
            languages_.emplace_back(LanguageOnly(tag));
        for (const std::string& key : used_)
            if (const int index = FindVoice(key); index >= 0)
                languages_.emplace_back(LanguageOnly(VoiceAt(index).language));
    }

    Rank RankOf(const ListedVoice& listed) const {
        const Voice& voice = listed.voice;
        std::string tag = voice.language;
        std::ranges::replace(tag, '-', '_');
        const OwnedText name(g_utf8_collate_key(voice.languageTitle.c_str(), -1));
        const std::ptrdiff_t last = voice.language.empty() ? 1 : 0;
        return {PlaceIn(languages_, std::string(LanguageOnly(tag))) + last, PlaceIn(tags_, tag),
                name.get(), PlaceIn(used_, KeyOf(voice)), listed.index};
    }

private:
    std::vector<std::string> tags_;
    std::vector<std::string> used_;
    std::vector<std::string> languages_;
};

}  // namespace

std::vector<ListedVoice> VoicesToChooseFrom() {
    const std::vector<SpeechEngine> engines = SpeechEngines();
    const Order order;
    std::vector<std::pair<Rank, ListedVoice>> ranked;
    for (Voice& voice : KnownVoices()) {
        ListedVoice listed = Listed(static_cast<int>(ranked.size()), std::move(voice), engines);
        Rank rank = order.RankOf(listed);
        ranked.emplace_back(std::move(rank), std::move(listed));
    }
    std::ranges::sort(ranked,
                      [](const auto& one, const auto& other) { return one.first < other.first; });
    std::vector<ListedVoice> voices;
    voices.reserve(ranked.size());
    for (auto& [rank, listed] : ranked)
        voices.push_back(std::move(listed));
    return voices;
}

bool IsFoundBy(ListedVoice& voice, const std::string& typed) {
    std::istringstream words(Folded(typed));
    if (voice.words.empty() && !typed.empty())
        voice.words = WordsOf(voice);
    for (std::string word; words >> word;)
        if (voice.words.find(word) == std::string::npos)
            return false;
    return true;
}

std::vector<std::string> VoicesUsedLast() {
    std::string content;
    std::vector<std::string> keys;
    ReadPrivateFile(kUsedFile, kMostUsedBytes, content);
    for (std::size_t at = 0; at < content.size() && keys.size() < kMostUsed;) {
        const std::size_t end = std::min(content.find('\0', at + 1), content.size());
        keys.push_back(content.substr(at + 1, end - at - 1));
        at = end;
    }
    return keys;
}

void KeepVoiceUsed(const Voice& voice) {
    std::vector<std::string> keys = VoicesUsedLast();
    if (!keys.empty() && keys.front() == KeyOf(voice))
        return;
    std::erase(keys, KeyOf(voice));
    keys.insert(keys.begin(), KeyOf(voice));
    keys.resize(std::min(keys.size(), kMostUsed));
    std::string content;
    for (const std::string& key : keys)
        content.append(1, '\0').append(key);
    WritePrivateFile(kUsedFile, content);
}
