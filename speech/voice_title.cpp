#include "speech/voice_title.h"

#include <glib.h>
#include <unicode/uldnames.h>
#include <unicode/uloc.h>
#include <unicode/ustring.h>

#include <array>
#include <initializer_list>
#include <memory>

#include "speech/text_language.h"

namespace {

using DisplayNames = std::unique_ptr<ULocaleDisplayNames, decltype(&uldn_close)>;

constexpr int kMostUnits = 200;  // of UTF-16, three bytes of UTF-8 each at most
constexpr const char* kEnglishOnly = "en";

// As `locale` calls it; empty where it only repeats the tag or a part of it.
std::string NameIn(const std::string& locale, const std::string& tag) {
    UDisplayContext contexts[] = {UDISPCTX_STANDARD_NAMES, UDISPCTX_LENGTH_SHORT,
                                  UDISPCTX_CAPITALIZATION_FOR_UI_LIST_OR_MENU,
                                  UDISPCTX_NO_SUBSTITUTE};
    UErrorCode error = U_ZERO_ERROR;
    const DisplayNames names(uldn_openForContext(locale.c_str(), contexts,
                                                 static_cast<int>(std::size(contexts)), &error),
                             uldn_close);
    if (U_FAILURE(error) || tag.empty() || tag.find("-x-") != std::string::npos)
        return {};
    std::array<UChar, kMostUnits> name{};
    std::array<char, std::size_t{3} * kMostUnits> utf8{};
    const int length =
        uldn_localeDisplayName(names.get(), tag.c_str(), name.data(), kMostUnits, &error);
    u_strToUTF8(utf8.data(), static_cast<int>(utf8.size()), nullptr, name.data(), length, &error);
    return U_FAILURE(error) || g_ascii_strcasecmp(utf8.data(), tag.c_str()) == 0 ? "" : utf8.data();
}

std::string LanguageNameIn(const std::string& locale, const std::string& tag) {
    const std::string language(LanguageOnly(tag));
    std::string name = NameIn(locale, language);
    return name.empty() ? language : name;
}

std::string JoinedParts(std::initializer_list<std::string_view> parts) {
    std::string text;
    for (const std::string_view part : parts) {
        text += text.empty() || part.empty() ? "" : ", ";
        text += part;
    }
    return text;
}

}  // namespace

std::string LanguageTitle(const std::string& tag, const std::string& otherwise) {
    std::string name = NameIn(g_get_language_names()[0], tag);
    return name.empty() ? otherwise : name;
}

std::string EnglishNameOfLanguage(const std::string& tag) {
    return LanguageNameIn(kEnglishOnly, tag);
}

std::string OwnNameOfLanguage(const std::string& tag) {
    return LanguageNameIn(std::string(LanguageOnly(tag)), tag);
}

std::string TagOfEnglishName(std::string_view name) {
    if (name.empty())
        return {};
    const std::string wanted(name);
    for (const char* const* tag = uloc_getISOLanguages(); *tag != nullptr; ++tag)
        if (g_ascii_strcasecmp(NameIn(kEnglishOnly, *tag).c_str(), wanted.c_str()) == 0)
            return *tag;
    return {};
}

void NameVoice(Voice& voice, const VoiceCalled& called) {
    voice.languageTitle = LanguageTitle(voice.language, called.language);
    voice.title = JoinedParts({called.given, voice.languageTitle, called.kind, called.engine});
    voice.shortTitle = JoinedParts({called.given, called.kind});
    if (voice.shortTitle.empty())
        voice.shortTitle = called.engine;
}
