#include "speech/pronunciation_pattern.h"

#include <algorithm>

namespace {

// Steps back and forth in one search: some tenths of a millisecond. A pattern that needs more for a
// sentence, as "(a+)+b" does, would need for ever for the next.
constexpr const char* kBound = "(*LIMIT_MATCH=5000)(*LIMIT_DEPTH=500)";
constexpr int kMostMatches = 200;        // in a sentence
constexpr std::size_t kMostSaid = 2000;  // bytes in place of one match

std::string TakeSaid(char* expanded) {
    std::string said = expanded == nullptr ? "" : expanded;
    g_free(expanded);
    if (said.size() > kMostSaid)
        said.resize(static_cast<std::size_t>(
            g_utf8_find_prev_char(said.c_str(), said.c_str() + kMostSaid) - said.c_str()));
    return said;
}

}  // namespace

PronunciationPattern::PronunciationPattern(const Pronunciation& entry) : said_(entry.said) {
    GError* error = nullptr;
    const auto flags = entry.heedsCase ? GRegexCompileFlags{} : G_REGEX_CASELESS;
    GRegex* const pattern =
        g_regex_new((kBound + entry.text).c_str(), flags, GRegexMatchFlags{}, &error);
    if (error == nullptr)
        g_regex_check_replacement(said_.c_str(), nullptr, &error);
    if (error != nullptr)
        problem_ = std::string("This is no pattern that can be used: ") + error->message;
    g_clear_error(&error);
    if (pattern != nullptr)
        pattern_ = std::shared_ptr<GRegex>(pattern, g_regex_unref);
}

bool PronunciationPattern::FindIn(std::string_view sentence, std::vector<Match>& matches) const {
    if (!problem_.empty())
        return true;
    GMatchInfo* info = nullptr;
    GError* error = nullptr;
    g_regex_match_full(pattern_.get(), sentence.data(), static_cast<gssize>(sentence.size()), 0,
                       GRegexMatchFlags{}, &info, &error);
    for (int i = 0; i < kMostMatches && error == nullptr && g_match_info_matches(info); ++i) {
        int begin = 0;
        int end = 0;
        g_match_info_fetch_pos(info, 0, &begin, &end);
        if (end > begin) {
            char* const said = g_match_info_expand_references(info, said_.c_str(), nullptr);
            matches.push_back(
                {static_cast<std::size_t>(begin), static_cast<std::size_t>(end), TakeSaid(said)});
        }
        g_match_info_next(info, &error);
    }
    const bool isWhole = error == nullptr;
    g_clear_error(&error);
    g_match_info_free(info);
    return isWhole;
}
