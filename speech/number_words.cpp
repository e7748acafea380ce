#include "speech/number_words.h"

#include <glib.h>
#include <unicode/unum.h>
#include <unicode/unumberformatter.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <memory>
#include <mutex>

namespace {

constexpr int kMostLetters = 300;
constexpr int kMostOrdinal = 100;

using Utf16 = std::array<UChar, kMostLetters>;

Utf16 ToUtf16(const std::string& text, UErrorCode& error) {
    Utf16 units{};
    u_strFromUTF8(units.data(), kMostLetters, nullptr, text.data(), static_cast<int>(text.size()),
                  &error);
    return units;
}

// Without soft hyphens and with plain blanks.
std::string ToUtf8(const Utf16& units, int length, UErrorCode error) {
    std::array<char, std::size_t{3} * kMostLetters> bytes{};
    u_strToUTF8(bytes.data(), static_cast<int>(bytes.size()), nullptr, units.data(), length,
                &error);
    if (U_FAILURE(error))
        return {};
    std::string text;
    for (const char* at = bytes.data(); *at != '\0'; at = g_utf8_next_char(at)) {
        const gunichar character = g_utf8_get_char(at);
        if (character == 0xA0 || character == 0x202F)
            text += ' ';
        else if (character != 0xAD)
            text.append(at, static_cast<std::size_t>(g_utf8_next_char(at) - at));
    }
    return text;
}

std::string Formatted(std::string_view language, const std::string& skeleton,
                      std::string_view number) {
    UErrorCode error = U_ZERO_ERROR;
    const std::string locale(language);
    const Utf16 wanted = ToUtf16(skeleton, error);
    const std::unique_ptr<UNumberFormatter, decltype(&unumf_close)> formatter(
        unumf_openForSkeletonAndLocale(wanted.data(), -1, locale.c_str(), &error), unumf_close);
    const std::unique_ptr<UFormattedNumber, decltype(&unumf_closeResult)> result(
        unumf_openResult(&error), unumf_closeResult);
    Utf16 words{};
    unumf_formatDecimal(formatter.get(), number.data(), static_cast<int>(number.size()),
                        result.get(), &error);
    const int length = unumf_resultToString(result.get(), words.data(), kMostLetters, &error);
    return U_FAILURE(error) ? "" : ToUtf8(words, length, error);
}

// What nobody says who means the best known currency of that name.
struct Country {
    std::string_view language;
    std::string_view words;
};
constexpr Country kCountries[] = {{"en", "US "},
                                  {"en", "British "},
                                  {"en", "Japanese "},
                                  {"de", "US-"},
                                  {"de", "Britische "},
                                  {"de", "Japanische "},
                                  {"fr", " des États-Unis"},
                                  {"es", " estadounidenses"},
                                  {"es", " estadounidense"},
                                  {"it", " statunitensi"},
                                  {"it", " statunitense"},
                                  {"it", " britanniche"},
                                  {"it", " britannica"},
                                  {"ru", " США"},
                                  {"ru", "британских "},
                                  {"cs", "českých "},
                                  {"cs", "české "},
                                  {"cs", "česká "},
                                  {"ru", "российских "},
                                  {"ru", "российский "},
                                  {"cs", "amerických "},
                                  {"cs", "americké "},
                                  {"cs", "americký "},
                                  {"cs", "britských "}};

struct RuleSet {
    std::string_view language;
    OrdinalOf of;
    const char* name;
};
constexpr RuleSet kRuleSets[] = {
    {"en", OrdinalOf::kMan, "%spellout-ordinal"},
    {"en", OrdinalOf::kWoman, "%spellout-ordinal"},
    {"de", OrdinalOf::kMan, "%spellout-ordinal"},
    {"de", OrdinalOf::kWoman, "%spellout-ordinal"},
    {"de", OrdinalOf::kDay, "%spellout-ordinal-r"},
    {"de", OrdinalOf::kTheDay, "%spellout-ordinal"},
    {"de", OrdinalOf::kThatDay, "%spellout-ordinal-n"},
    {"es", OrdinalOf::kMan, "%spellout-ordinal-masculine"},
    {"es", OrdinalOf::kWoman, "%spellout-ordinal-feminine"},
    {"it", OrdinalOf::kMan, "%spellout-ordinal-masculine"},
    {"it", OrdinalOf::kWoman, "%spellout-ordinal-feminine"},
    {"ru", OrdinalOf::kMan, "%spellout-ordinal-masculine"},
    {"ru", OrdinalOf::kWoman, "%spellout-ordinal-feminine"},
    {"ru", OrdinalOf::kDay, "%spellout-ordinal-neuter-genitive"},
    {"ru", OrdinalOf::kThatDay, "%spellout-ordinal-neuter"},
    {"ru", OrdinalOf::kTheDay, "%spellout-ordinal-neuter-dative"},
};

struct CloseNumberFormat {
    void operator()(UNumberFormat* format) const { unum_close(format); }
};
using NumberFormat = std::unique_ptr<UNumberFormat, CloseNumberFormat>;

bool IsOf(const UNumberFormat* format, std::string_view language) {
    UErrorCode error = U_ZERO_ERROR;
    const char* const locale =
        format == nullptr ? nullptr : unum_getLocaleByType(format, ULOC_ACTUAL_LOCALE, &error);
    return U_SUCCESS(error) && locale != nullptr && language == locale;
}

// number: plain, with a point. Empty where ICU would say it in the user's own language instead.
std::string SpelledOut(std::string_view language, const char* ruleSet, std::string_view number) {
    // Opening one takes some 10 ms: a chronicle would take minutes. Never destroyed: threads may
    // still use them at the program's end.
    static std::mutex mutex;
    static auto& formats = *new std::map<std::string, NumberFormat, std::less<>>;
    const std::lock_guard lock(mutex);
    UErrorCode error = U_ZERO_ERROR;
    auto known = formats.find(language);
    if (known == formats.end()) {
        const std::string locale(language);
        known = formats
                    .emplace(locale,
                             unum_open(UNUM_SPELLOUT, nullptr, 0, locale.c_str(), nullptr, &error))
                    .first;
    }
    const NumberFormat& format = known->second;
    if (!IsOf(format.get(), language))
        return {};
    error = U_ZERO_ERROR;
    const Utf16 name = ToUtf16(ruleSet, error);
    unum_setTextAttribute(format.get(), UNUM_DEFAULT_RULESET, name.data(), -1, &error);
    Utf16 words{};
    const int length =
        unum_formatDecimal(format.get(), number.data(), static_cast<int>(number.size()),
                           words.data(), kMostLetters, nullptr, &error);
    return U_FAILURE(error) ? "" : ToUtf8(words, length, error);
}

std::string SpelledOut(std::string_view language, const char* ruleSet, int number) {
    return SpelledOut(language, ruleSet, std::to_string(number));
}

// Czech, which ICU has no ordinals for: those of days are in the genitive.
constexpr const char* kCzechUnits[] = {"",      "první", "druhý", "třetí",  "čtvrtý", "pátý",
                                       "šestý", "sedmý", "osmý",  "devátý", "desátý"};
constexpr const char* kCzechTeens[] = {"",         "jedenáctý",  "dvanáctý",  "třináctý",
                                       "čtrnáctý", "patnáctý",   "šestnáctý", "sedmnáctý",
                                       "osmnáctý", "devatenáctý"};
constexpr const char* kCzechTens[] = {"", "desátý", "dvacátý", "třicátý"};

std::string Declined(std::string word, OrdinalOf of) {
    constexpr std::string_view kHard = "ý";
    const bool isHard = word.ends_with(kHard);
    const std::string stem = isHard ? word.substr(0, word.size() - kHard.size()) : word;
    if (of == OrdinalOf::kMan)
        return word;
    if (of == OrdinalOf::kWoman)
        return isHard ? stem + "á" : word;
    return stem + (isHard ? "ého" : "ho");
}

std::string CzechOrdinal(OrdinalOf of, int number) {
    if (number < 1 || number > 39)
        return {};
    const auto units = static_cast<std::size_t>(number % 10);
    const auto tens = static_cast<std::size_t>(number / 10);
    if (number <= 10)
        return Declined(kCzechUnits[number], of);
    if (tens == 1)
        return Declined(kCzechTeens[units], of);
    const std::string word = Declined(kCzechTens[tens], of);
    return units == 0 ? word : word + " " + Declined(kCzechUnits[units], of);
}

// Spaniards and Frenchmen count their later kings as anybody else.
int MostCounted(std::string_view language) {
    return language == "es" ? 10 : language == "fr" ? 1 : kMostOrdinal;
}

}  // namespace

std::string UnitWords(std::string_view language, std::string_view unit, std::string_view number) {
    return Formatted(language, "unit/" + std::string(unit) + " unit-width-full-name .######",
                     number);
}

std::string MoneyWords(std::string_view language, std::string_view currency,
                       std::string_view number) {
    const std::size_t point = number.find('.');
    const std::string_view fraction =
        point == std::string_view::npos ? "" : number.substr(point + 1);
    const bool hasCents = fraction.size() == 2;
    const std::string skeleton = "currency/" + std::string(currency) + " unit-width-full-name " +
                                 (hasCents ? "precision-integer rounding-mode-down" : ".######");
    std::string words = Formatted(language, skeleton, number);
    for (const Country& country : kCountries)
        if (const std::size_t at = words.find(country.words);
            country.language == language && at != std::string::npos)
            words.erase(at, country.words.size());
    if (!words.empty() && hasCents && fraction != "00")
        words += " " + std::string(fraction[0] == '0' ? fraction.substr(1) : fraction);
    return words;
}

std::string ScaledWords(std::string_view language, std::string_view number, int zeros) {
    return Formatted(language, "compact-long .######",
                     std::string(number) + "E" + std::to_string(zeros));
}

std::string CountWords(std::string_view language, std::string_view number) {
    return SpelledOut(language, "%spellout-numbering", number);
}

std::string OrdinalWords(std::string_view language, OrdinalOf of, int number) {
    if (number < 1 || number > MostCounted(language))
        return {};
    if (language == "cs")
        return CzechOrdinal(of, number);
    if (language == "fr")
        return of == OrdinalOf::kMan ? "premier" : of == OrdinalOf::kWoman ? "première" : "";
    for (const RuleSet& rules : kRuleSets)
        if (rules.language == language && rules.of == of)
            return SpelledOut(language, rules.name, number);
    return {};
}

std::string PlaceWords(std::string_view language, OrdinalOf of, int number) {
    constexpr std::string_view kLanguages = " fr es it ru ";
    if (kLanguages.find(" " + std::string(language) + " ") == std::string_view::npos ||
        number < 1 || number > kMostOrdinal)
        return {};
    const char* const rules = of == OrdinalOf::kWoman     ? "%spellout-ordinal-feminine"
                              : of == OrdinalOf::kTheDay  ? "%spellout-ordinal-masculine-genitive"
                              : of == OrdinalOf::kThatDay ? "%spellout-ordinal-masculine-locative"
                                                          : "%spellout-ordinal-masculine";
    return SpelledOut(language, rules, number);
}

std::string RussianPlaceWords(RussianCase wanted, int number) {
    constexpr const char* kRules[] = {
        "%spellout-ordinal-masculine", "%spellout-ordinal-masculine-genitive",
        "%spellout-ordinal-masculine-dative", "%spellout-ordinal-masculine-locative"};
    const std::string words = SpelledOut("ru", kRules[static_cast<int>(wanted)], number);
    // Nobody says the one of its thousand.
    constexpr std::string_view kOne = "одна ";
    return words.starts_with(kOne) ? words.substr(kOne.size()) : words;
}
