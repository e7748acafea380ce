#include "speech/text_language.h"

#include <cld2/public/compact_lang_det.h>
#include <cld2/public/encodings.h>
#include <glib.h>

#include <algorithm>
#include <array>

#include "foundation/owned_text.h"

namespace {

// Percent of a text; the rest may be names and numbers.
constexpr int kMostOfIt = 75;
// Letters' bytes. Of texts with fewer, one in ten is another language than it seems; 60 are some
// ten words.
constexpr int kFewestBytes = 30;
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

// What shows one of languages that are much alike, in small letters, with blanks for the ends of
// words.
struct Tellers {
    std::string_view language;
    std::array<std::string_view, 28> parts;
};
constexpr Tellers kTellers[] = {
    {"da", {" af ",  "tion",  "hed ",  "heden", "ede ",  "efter",  " ud",    " op ",   "øj",
            "ej",    " at ",  "æs",    "igt ",  "uden",  "brug",   "sprog",  "mellem", "hvad ",
            "nogen", "noget", "meget", " mig ", " dig ", " blev ", " blive", " have ", "erne "}},
    {"nb", {" av ",  "sjon",  "het ",  "heten", "etter", " ut",  " opp",  "øy",     "ei",
            " å ",   "les ",  "noe",   "lig ",  "uten",  "bruk", "språk", "mellom", " hva ",
            " mye ", " meg ", " deg ", " ble ", " bli ", " ha ", " fra ", "ene ",   "tilgj"}},
    {"sv", {"ä", "ö", " och ", " att ", " inte ", " är ", "ning"}},
    {"bg", {"ъ", " се ", "ият "}},
    {"ru", {"ы", "э", "ё"}},
    {"uk", {"і", "ї", "є", "ґ"}},
    {"sr", {"ј", "љ", "њ", "ђ", "ћ", "џ", " šta ", "fajl", " gde ", "vreme", " reč", "mesto"}},
    {"hr",
     {" što ", "gdje", "uvjet", "vrijed", "đ", "ć", "tijek", "smije", " nije ", "prije", "ovdje"}},
    {"sl", {" ki ", "lahko", " ni ", "mogoče", " ter ", " bo ", "ljen", " ob ", " kot "}},
};
constexpr std::size_t kTellingMore = 1;

std::size_t CountTellers(std::string_view text, std::string_view language) {
    const auto* const found = std::ranges::find(kTellers, language, &Tellers::language);
    std::size_t count = 0;
    if (found == std::end(kTellers))
        return count;
    for (const std::string_view part : found->parts)
        for (std::size_t at = text.find(part); !part.empty() && at != std::string_view::npos;
             at = text.find(part, at + part.size()))
            ++count;
    return count;
}

// The one of those much alike that the text shows.
std::string ToldApart(std::string_view text, std::string language) {
    for (const auto& group : kAlike) {
        if (std::ranges::find(group, language) == std::end(group))
            continue;
        const OwnedText small(g_utf8_strdown(text.data(), static_cast<gssize>(text.size())));
        const std::string padded = " " + std::string(small.get()) + " ";
        std::size_t most = CountTellers(padded, language) + kTellingMore - 1;
        for (const std::string_view other : group) {
            const std::size_t count = CountTellers(padded, other);
            if (count > most) {
                most = count;
                language = other;
            }
        }
        return language;
    }
    return language;
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
    return std::ranges::any_of(kAlike, [&](const auto& group) {
        return std::ranges::find(group, one) != std::end(group) &&
               std::ranges::find(group, other) != std::end(group);
    });
}

TextLanguage LanguageOf(std::string_view text) {
    // What is no UTF-8 would be read beyond its end.
    if (g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr) == FALSE)
        return {};
    const CLD2::CLDHints hints{nullptr, nullptr, CLD2::UNKNOWN_ENCODING, CLD2::UNKNOWN_LANGUAGE};
    CLD2::Language languages[3];
    int percents[3];
    double scores[3];
    int bytes = 0;
    bool isReliable = false;
    const CLD2::Language language =
        CLD2::ExtDetectLanguageSummary(text.data(), static_cast<int>(text.size()), true, &hints, 0,
                                       languages, percents, scores, nullptr, &bytes, &isReliable);
    TextLanguage found;
    found.isLong = bytes >= kEnoughForAlike;
    const std::string tag(LanguageOnly(CLD2::LanguageCode(language)));
    // What is much alike is shared out among several.
    int percent = percents[0];
    for (const int i : {1, 2})
        if (AreMuchAlike(tag, LanguageOnly(CLD2::LanguageCode(languages[i]))))
            percent += percents[i];
    const bool isSure = isReliable || percent > percents[0];
    if (!isSure || language == CLD2::UNKNOWN_LANGUAGE || bytes < kFewestBytes ||
        percent < kMostOfIt)
        return found;
    found.tag = ToldApart(text, tag);
    return found;
}
