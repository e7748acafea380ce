#include "speech/unsayable_text.h"

#include <glib.h>

#include <algorithm>
#include <iterator>

namespace {

struct ScriptName {
    GUnicodeScript script;
    const char* name;
};
constexpr ScriptName kScripts[] = {
    {G_UNICODE_SCRIPT_CYRILLIC, "Cyrillic"},     {G_UNICODE_SCRIPT_GREEK, "Greek"},
    {G_UNICODE_SCRIPT_ARABIC, "Arabic"},         {G_UNICODE_SCRIPT_HEBREW, "Hebrew"},
    {G_UNICODE_SCRIPT_DEVANAGARI, "Devanagari"}, {G_UNICODE_SCRIPT_HAN, "Chinese"},
    {G_UNICODE_SCRIPT_HIRAGANA, "Japanese"},     {G_UNICODE_SCRIPT_KATAKANA, "Japanese"},
    {G_UNICODE_SCRIPT_HANGUL, "Korean"},         {G_UNICODE_SCRIPT_THAI, "Thai"},
    {G_UNICODE_SCRIPT_ARMENIAN, "Armenian"},     {G_UNICODE_SCRIPT_GEORGIAN, "Georgian"},
    {G_UNICODE_SCRIPT_TELUGU, "Telugu"},         {G_UNICODE_SCRIPT_TAMIL, "Tamil"},
    {G_UNICODE_SCRIPT_BENGALI, "Bengali"},
};

constexpr const char* kNumbers = "numbers";

// Empty for a sign.
std::string ScriptOf(char32_t character) {
    if (g_ascii_isdigit(static_cast<gchar>(character)) && character < 0x80)
        return kNumbers;
    if (g_unichar_isalpha(character) == 0)
        return {};
    const auto* const known =
        std::ranges::find(kScripts, g_unichar_get_script(character), &ScriptName::script);
    return known == std::end(kScripts) ? "other letters" : known->name;
}

std::string Counted(std::size_t amount, const std::string& script) {
    const bool isNumber = script == kNumbers;
    std::string text = std::to_string(amount);
    text += isNumber ? " number" : script.empty() ? " sign" : " word";
    text += amount == 1 ? "" : "s";
    return script.empty() || isNumber ? text : text + " in " + script;
}

}  // namespace

void UnsayableText::Add(char32_t character, std::size_t begin, std::size_t end) {
    const std::string script = ScriptOf(character);
    const bool goesOn = begin == lastEnd_ && script == lastName_ && !script.empty();
    lastEnd_ = end;
    lastName_ = script;
    if (goesOn)
        return;
    const auto kind = std::ranges::find(kinds_, script, &Kind::name);
    if (kind == kinds_.end())
        kinds_.push_back({script, 1});
    else
        ++kind->amount;
}

void UnsayableText::Add(const UnsayableText& other) {
    for (const Kind& kind : other.kinds_) {
        const auto known = std::ranges::find(kinds_, kind.name, &Kind::name);
        if (known == kinds_.end())
            kinds_.push_back(kind);
        else
            known->amount += kind.amount;
    }
}

std::string UnsayableText::Message() const {
    if (kinds_.empty())
        return {};
    std::string text;
    std::size_t amount = 0;
    for (std::size_t i = 0; i < kinds_.size(); ++i) {
        text += i == 0 ? "" : i + 1 == kinds_.size() ? " and " : ", ";
        text += Counted(kinds_[i].amount, kinds_[i].name);
        amount += kinds_[i].amount;
    }
    return text + (amount == 1 ? " was" : " were") +
           " left out, because the chosen voice cannot say " + (amount == 1 ? "it." : "them.");
}
