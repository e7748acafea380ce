#include "speech/text_language.h"

#include <cld2/public/compact_lang_det.h>
#include <cld2/public/encodings.h>
#include <glib.h>

#include <algorithm>

namespace {

// Percent of a text; the rest may be names and numbers.
constexpr int kMostOfIt = 75;
// Letters' bytes. Of texts with fewer, one in ten is another language than it seems; 60 are some
// ten words.
constexpr int kFewestBytes = 30;
constexpr int kEnoughForAlike = 160;

constexpr std::pair<std::string_view, std::string_view> kSameLanguages[] = {
    {"no", "nb"}, {"iw", "he"}, {"in", "id"}, {"zh-Hant", "zh"}, {"cmn", "zh"}, {"jw", "jv"}};

constexpr std::string_view kAlike[][4] = {{"da", "nb", "nn", "sv"},
                                          {"es", "gl", "pt", "ca"},
                                          {"nl", "af"},
                                          {"cs", "sk"},
                                          {"hr", "sr", "bs", "sl"},
                                          {"id", "ms"},
                                          {"ru", "uk", "be", "bg"}};

}  // namespace

std::string_view LanguageOnly(std::string_view tag) {
    const std::string_view language = tag.substr(0, tag.find_first_of("-_.@"));
    const auto* const same = std::ranges::find(
        kSameLanguages, language, &std::pair<std::string_view, std::string_view>::first);
    return same == std::end(kSameLanguages) ? language : same->second;
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
    if (!isReliable || language == CLD2::UNKNOWN_LANGUAGE || bytes < kFewestBytes ||
        percents[0] < kMostOfIt)
        return found;
    found.tag = LanguageOnly(CLD2::LanguageCode(language));
    return found;
}
