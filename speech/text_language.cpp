#include "speech/text_language.h"

#include <cld2/public/compact_lang_det.h>
#include <cld2/public/encodings.h>
#include <glib.h>

#include <algorithm>
#include <array>

#include "speech/language_tellers.h"
#include "speech/language_words.h"

namespace {

// Percent of a text; the rest may be names and numbers.
constexpr int kMostOfIt = 75;
// Letters' bytes. Of texts with fewer, one in ten is another language than it seems; 60 are some
// ten words.
constexpr int kFewestBytes = 30;
constexpr int kEnoughForOthers = 60;
constexpr int kEnoughForAlike = 160;

constexpr std::pair<std::string_view, std::string_view> kSameLanguages[] = {
    {"no", "nb"}, {"iw", "he"}, {"in", "id"}, {"zh-Hant", "zh"}, {"cmn", "zh"}, {"jw", "jv"}};

constexpr std::array<std::string_view, 5> kAlike[] = {{"da", "nb", "nn", "sv"},
                                                      {"es", "gl", "pt", "ca"},
                                                      {"nl", "af"},
                                                      {"cs", "sk"},
                                                      {"hr", "sr", "bs", "sl"},
                                                      {"id", "ms"},
                                                      {"ru", "uk", "be", "bg", "sr"}};

// A voice of the one reads the other as it is spoken.
constexpr std::array<std::string_view, 2> kSpokenAlike[] = {
    {"hr", "bs"}, {"nb", "nn"}, {"id", "ms"}};

// Of small words (language_words.h): that many show a language which CLD2 is not sure of, when it
// leads by so many; and, where its own has none, that it is another one.
constexpr double kEnoughWords = 1.5;
constexpr double kEnoughToAgree = 0.8;
constexpr double kContradicts = 1.9;
constexpr double kShowsEnglish = 0.6;
constexpr double kWeakScore = 850;  // of CLD2; English has mostly above 1,000
constexpr double kManyWords = 2;
constexpr double kLead = 0.7;
constexpr double kSeenFirst = 0.01;
constexpr double kSeenSurely = 3;  // where nothing is known here that tells the language apart
constexpr double kNearly = 1;      // as much
constexpr double kSureLead = 3;    // of what tells one from those much alike

// Of a tag of two small letters; of any other one beyond all of them.
constexpr std::size_t kAlphabet = 26;
constexpr std::size_t PlaceOfTag(std::string_view tag) {
    const auto letter = [tag](std::size_t at) { return static_cast<std::size_t>(tag[at] - 'a'); };
    const bool isTag = tag.size() == 2 && letter(0) < kAlphabet && letter(1) < kAlphabet;
    return isTag ? letter(0) * kAlphabet + letter(1) : kAlphabet * kAlphabet;
}

// A bit for each group of kAlike that a language is in: asked for hundreds of times a sentence.
unsigned GroupsOf(std::string_view language) {
    static_assert(std::size(kAlike) <= 8);
    static const auto kGroups = [] {
        std::array<unsigned char, kAlphabet * kAlphabet + 1> groups{};
        for (std::size_t i = 0; i < std::size(kAlike); ++i)
            for (const std::string_view one : kAlike[i])
                if (!one.empty())
                    groups[PlaceOfTag(one)] |= static_cast<unsigned char>(1U << i);
        return groups;
    }();
    return kGroups[PlaceOfTag(language)];
}

double SumOf(const std::vector<ShownByWords>& shown, std::string_view language) {
    const auto found = std::ranges::find(shown, language, &ShownByWords::language);
    return found == shown.end() ? 0 : found->sum;
}

bool HoldsScript(std::string_view text, GUnicodeScript script) {
    for (const char* at = text.data(); at < text.data() + text.size(); at = g_utf8_next_char(at))
        if (g_unichar_get_script(g_utf8_get_char(at)) == script)
            return true;
    return false;
}

// With itself.
std::vector<std::string_view> MuchAlike(std::string_view language) {
    std::vector<std::string_view> all;
    for (const auto& group : kAlike)
        if (std::ranges::find(group, language) != std::end(group))
            for (const std::string_view one : group)
                if (!one.empty() && std::ranges::find(all, one) == all.end())
                    all.push_back(one);
    return all;
}

double SeenFirst(std::string_view language) {
    return HasTellers(language) ? kSeenFirst : kSeenSurely;
}

// The one of those much alike that the text shows; small: the same in small letters.
TextLanguage ToldApart(std::string_view text, const std::string& small, std::string language,
                       const std::vector<ShownByWords>& shown) {
    TextLanguage found;
    if (!shown.empty() && shown[0].sum >= kManyWords && IsKnownByWords(language) &&
        SumOf(shown, language) == 0)
        language = shown[0].language;
    // What is Serbian in Latin letters has to show it: mostly it has its own.
    if (language == "sr" && !HoldsScript(text, G_UNICODE_SCRIPT_CYRILLIC))
        language = "hr";
    const TellersIn tellers(" " + small + " ");
    const auto shows = [&](std::string_view one) {
        return static_cast<double>(tellers.Of(one)) + SumOf(shown, one);
    };
    std::vector<std::pair<double, std::string_view>> sums;
    for (const std::string_view other : MuchAlike(language))
        // What was seen first goes before what shows as much.
        sums.emplace_back(shows(other) + (other == language ? SeenFirst(language) : 0), other);
    std::ranges::stable_sort(sums, std::ranges::greater(), &decltype(sums)::value_type::first);
    for (const auto& [sum, other] : sums)
        if (other != sums.front().second && sum >= sums.front().first - kNearly)
            found.orElse.emplace_back(other);
    found.isSure = sums.size() < 2 ||
                   (HasTellers(sums[0].second) && sums[0].first - sums[1].first >= kSureLead);
    if (!sums.empty())
        language = sums.front().second;
    found.tag = std::move(language);
    return found;
}

// What each shows together with those much alike: mostly they share their words.
std::vector<ShownByWords> SharedWithAlike(const std::vector<ShownByWords>& shown) {
    std::vector<unsigned> groups;
    groups.reserve(shown.size());
    for (const ShownByWords& one : shown)
        groups.push_back(GroupsOf(one.language));
    std::vector<ShownByWords> sums = shown;
    for (std::size_t i = 0; i < shown.size(); ++i)
        for (std::size_t k = 0; k < shown.size(); ++k)
            sums[i].sum += i != k && (groups[i] & groups[k]) != 0 ? shown[k].sum : 0;
    return sums;
}

// The words of the language and of those much alike, whether or not it shows any itself.
double SumOfAlike(const std::vector<ShownByWords>& shown, std::string_view language) {
    const unsigned groups = GroupsOf(language);
    double sum = 0;
    for (const ShownByWords& one : shown)
        sum += one.language == language || (groups & GroupsOf(one.language)) != 0 ? one.sum : 0;
    return sum;
}

// The most that another one shows.
double SumOfOthers(const std::vector<ShownByWords>& shared, std::string_view language) {
    const unsigned groups = GroupsOf(language);
    double most = 0;
    for (const ShownByWords& one : shared)
        if (one.language != language && (groups & GroupsOf(one.language)) == 0)
            most = std::max(most, one.sum);
    return most;
}

// maybe: what CLD2 would say.
std::string ShownAlone(const std::vector<ShownByWords>& shared, std::string_view maybe) {
    const auto found = std::ranges::max_element(shared, {}, &ShownByWords::sum);
    if (found == shared.end())
        return {};
    const auto [best, most] = *found;
    const double next = SumOfOthers(shared, best);
    const bool isShown = best == maybe || AreMuchAlike(best, maybe)
                             ? most >= kEnoughToAgree
                             : most >= kEnoughWords && next <= most - kLead;
    return isShown ? std::string(best) : "";
}

struct Guess {
    std::string tag;
    int bytes = 0;     // letters', of what was looked at
    double score = 0;  // the more often its letters stand together so in the language
    bool isGood = false;
};

Guess GuessOf(std::string_view text) {
    const CLD2::CLDHints hints{nullptr, nullptr, CLD2::UNKNOWN_ENCODING, CLD2::UNKNOWN_LANGUAGE};
    CLD2::Language languages[3];
    int percents[3];
    double scores[3];
    Guess guess;
    bool isReliable = false;
    const CLD2::Language language = CLD2::ExtDetectLanguageSummary(
        text.data(), static_cast<int>(text.size()), true, &hints, 0, languages, percents, scores,
        nullptr, &guess.bytes, &isReliable);
    guess.tag = LanguageOnly(CLD2::LanguageCode(language));
    guess.score = scores[0];
    // What is much alike is shared out among several.
    int percent = percents[0];
    for (const int i : {1, 2})
        if (AreMuchAlike(guess.tag, LanguageOnly(CLD2::LanguageCode(languages[i]))))
            percent += percents[i];
    guess.isGood = (isReliable || percent > percents[0]) && language != CLD2::UNKNOWN_LANGUAGE &&
                   percent >= kMostOfIt;
    return guess;
}

}  // namespace

std::string_view LanguageOnly(std::string_view tag) {
    const std::string_view language = tag.substr(0, tag.find_first_of("-_.@"));
    const auto* const same = std::ranges::find(
        kSameLanguages, language, &std::pair<std::string_view, std::string_view>::first);
    return same == std::end(kSameLanguages) ? language : same->second;
}

std::vector<std::string_view> SpokenAlike(std::string_view language) {
    for (const auto& group : kSpokenAlike)
        if (std::ranges::find(group, language) != std::end(group))
            return {group.begin(), group.end()};
    return {};
}

bool AreMuchAlike(std::string_view one, std::string_view other) {
    return (GroupsOf(one) & GroupsOf(other)) != 0;
}

TextLanguage LanguageOf(std::string_view text) {
    // What is no UTF-8 would be read beyond its end.
    if (g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr) == FALSE)
        return {};
    const Guess guess = GuessOf(text);
    TextLanguage found;
    found.isLong = guess.bytes >= kEnoughForAlike;
    if (guess.bytes < kFewestBytes)
        return found;
    const std::string small = InSmallLetters(text);
    const bool isEnough = guess.bytes >= kEnoughForOthers;
    const std::vector<ShownByWords> shown = LanguagesShownByWords(small);
    const std::vector<ShownByWords> shared = SharedWithAlike(shown);
    const double others = SumOfOthers(shared, guess.tag);
    const double own = SumOfAlike(shown, guess.tag);
    const bool isContradicted =
        (own == 0 && others >= kContradicts && IsKnownByWords(guess.tag)) ||
        // CLD2 takes short texts whose words it does not know for English.
        (guess.tag == "en" && guess.score < kWeakScore && own < kShowsEnglish && others > own) ||
        ((isEnough || own < others) && LacksItsLetters(text, guess.tag));
    const bool isKnown = guess.isGood && !isContradicted;
    const bool agrees = isKnown && isEnough && own >= others;
    if (isKnown && isEnough && MuchAlike(guess.tag).empty()) {
        found.tag = guess.tag;
        found.isSure = agrees;
        return found;
    }
    const std::string seen = isKnown ? guess.tag : ShownAlone(shared, guess.tag);
    if (seen.empty())
        return found;
    TextLanguage apart = ToldApart(text, small, seen, shown);
    apart.isLong = found.isLong;
    apart.isSure = apart.isSure && agrees;
    return apart;
}
