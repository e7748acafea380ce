#include "books/book_key.h"

#include <glib.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "books/book_order.h"
#include "books/book_sections.h"
#include "speech/language_voices.h"
#include "speech/pronunciations.h"
#include "speech/voice_table.h"

namespace {

constexpr std::string_view kForm = "4 ";  // of what is kept
constexpr std::string_view kChoicesLine = "choices";
constexpr std::string_view kVoiceLine = "voice";
constexpr std::string_view kWordsLine = "words\n";  // the list is behind it

constexpr int kMostKilobits = 320;
constexpr int kMostSilence = 60'000;  // milliseconds

class KeySum {
public:
    void Add(const std::string& part) {
        const std::string framed = std::to_string(part.size()) + ":" + part;
        g_checksum_update(sum_.get(), reinterpret_cast<const guchar*>(framed.data()),
                          static_cast<gssize>(framed.size()));
    }
    std::string Text() const { return g_checksum_get_string(sum_.get()); }

private:
    std::unique_ptr<GChecksum, decltype(&g_checksum_free)> sum_{g_checksum_new(G_CHECKSUM_SHA256),
                                                                &g_checksum_free};
};

// File names hold the titles of chapters.
std::string TextKey(const BookOrder& order) {
    KeySum sum;
    sum.Add(order.text);
    for (const LanguageMark& mark : order.rules.marks)
        sum.Add(mark.tag + " " + std::to_string(mark.begin));
    for (const DocumentHeading& heading : order.plan.headings)
        sum.Add(std::to_string(heading.begin));
    for (const BookSection& section : SectionsOf(order)) {
        sum.Add(std::to_string(section.begin));
        if (order.target.back() == '/')
            sum.Add(order.plan.chapters[section.chapter].title);
    }
    return sum.Text();
}

using Choices = std::array<int, 11>;

Choices ChoicesOf(const BookOrder& order) {
    const SpeakingRules& rules = order.rules;
    return {static_cast<int>(order.type),
            order.kilobits,
            order.evensLoudness ? 1 : 0,
            static_cast<int>(order.secondsBetween * 1000),
            order.subtitles ? static_cast<int>(*order.subtitles) : -1,
            order.isReadAlong ? 1 : 0,
            rules.choices.spellsCapitals ? 1 : 0,
            rules.choices.saysPunctuation ? 1 : 0,
            rules.choices.saysEmoji ? 1 : 0,
            rules.byLanguage ? 1 : 0,
            rules.saysHosts ? 1 : 0};
}

void TakeChoices(const Choices& choices, BookOrder& order) {
    for (const SoundType type :
         {SoundType::kMp3, SoundType::kM4b, SoundType::kOpus, SoundType::kFlac, SoundType::kWav})
        if (static_cast<int>(type) == choices[0])
            order.type = type;
    order.kilobits = std::clamp(choices[1], 0, kMostKilobits);
    order.evensLoudness = choices[2] != 0;
    order.secondsBetween = std::clamp(choices[3], 0, kMostSilence) / 1000.0;
    order.subtitles.reset();
    for (const SubtitleForm form : kSubtitleForms)
        if (static_cast<int>(form) == choices[4])
            order.subtitles = form;
    order.isReadAlong = choices[5] != 0;
    order.rules.choices.spellsCapitals = choices[6] != 0;
    order.rules.choices.saysPunctuation = choices[7] != 0;
    order.rules.choices.saysEmoji = choices[8] != 0;
    order.rules.byLanguage = choices[9] != 0;
    order.rules.saysHosts = choices[10] != 0;
}

// The book's own, under no language, then those that say its other languages.
std::map<std::string, int> VoicesOf(const BookOrder& order) {
    std::map<std::string, int> voices{{"", order.voice}};
    if (order.rules.byLanguage)
        for (const Voice& voice : KnownVoices()) {
            const std::string language = voice.language.substr(0, voice.language.find('-'));
            if (!language.empty() && !voices.contains(language))
                voices[language] = VoiceForLanguage(language);
        }
    return voices;
}

std::string VoiceLine(const BookOrder& order, const std::string& language, int voice) {
    const VoiceManner manner = order.rules.MannerAt(voice);
    std::string line(kVoiceLine);
    for (const std::string& column :
         {language, std::to_string(order.rules.SpeedOf(voice)), std::to_string(manner.pitch),
          std::to_string(manner.volume), manner.variant, KeyOf(VoiceAt(voice))})
        line += '\t' + column;
    return line + '\n';
}

std::string TakeColumn(std::string_view& line) {
    std::string column(line.substr(0, line.find('\t')));
    line.remove_prefix(std::min(column.size() + 1, line.size()));
    return column;
}

int TakeNumber(std::string_view& line) {
    const std::string column = TakeColumn(line);
    int number = 0;
    std::from_chars(column.data(), column.data() + column.size(), number);
    return number;
}

void TakeVoice(std::string_view line, BookOrder& order) {
    const std::string language = TakeColumn(line);
    const int speed = TakeNumber(line);
    VoiceManner manner;
    manner.pitch = TakeNumber(line);
    manner.volume = TakeNumber(line);
    manner.variant = TakeColumn(line);
    const int voice = FindVoice(line);
    if (voice < 0)
        return;
    const auto at = static_cast<std::size_t>(voice);
    for (std::vector<int>& speeds = order.rules.speeds; speeds.size() <= at;)
        speeds.push_back(order.rules.SpeedOf(static_cast<int>(speeds.size())));
    for (std::vector<VoiceManner>& manners = order.rules.manners; manners.size() <= at;)
        manners.push_back(order.rules.MannerAt(static_cast<int>(manners.size())));
    order.rules.speeds[at] = speed;
    order.rules.manners[at] = manner;
    if (language.empty())
        order.voice = voice;
}

void TakeWords(std::string_view words, BookOrder& order) {
    order.rules.saysDifferently = !words.empty();
    order.rules.pronunciations =
        words.empty() ? nullptr
                      : std::make_shared<const Pronunciations>(ParsePronunciations(words).entries);
}

}  // namespace

std::string BookKey(const BookOrder& order) {
    std::string key = std::string(kForm) + TextKey(order) + '\n' + std::string(kChoicesLine);
    for (const int choice : ChoicesOf(order))
        key += '\t' + std::to_string(choice);
    key += '\n';
    for (const auto& [language, voice] : VoicesOf(order))
        key += VoiceLine(order, language, voice);
    key += kWordsLine;
    if (order.rules.pronunciations)
        key += FormatPronunciations(order.rules.pronunciations->Entries());
    return key;
}

// Whatever could not be taken shows in the key that the order has then.
bool TakeBookKey(std::string_view key, BookOrder& order) {
    std::string_view rest = key;
    while (!rest.empty() && !rest.starts_with(kWordsLine)) {
        std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        const std::string kind = TakeColumn(line);
        if (kind == kVoiceLine) {
            TakeVoice(line, order);
        } else if (kind == kChoicesLine) {
            Choices choices{};
            for (int& choice : choices)
                choice = TakeNumber(line);
            TakeChoices(choices, order);
        }
    }
    if (!rest.empty())
        TakeWords(rest.substr(kWordsLine.size()), order);
    return BookKey(order) == key;
}

std::string TagsKey(const BookOrder& order) {
    KeySum sum;
    for (const std::string& part :
         {order.plan.title, order.plan.author, order.plan.language, order.plan.cover})
        sum.Add(part);
    return sum.Text();
}
