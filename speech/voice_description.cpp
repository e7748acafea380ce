#include "speech/voice_description.h"

#include <glib.h>
#include <unistd.h>

#include <fcntl.h>
#include <algorithm>
#include <cctype>
#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>

#include "foundation/files/machine_root.h"
#include "foundation/files/unique_fd.h"
#include "speech/voice_title.h"

namespace {

constexpr std::size_t kMaxDescription = 1 << 20;  // voice files are some 10 KB

struct NamedCharset {
    std::string_view name;
    VoiceCharset charset;
};
constexpr NamedCharset kCharsets[] = {
    {"ascii", VoiceCharset::kAscii},        {"us-ascii", VoiceCharset::kAscii},
    {"iso-8859-1", VoiceCharset::kLatin1},  {"latin1", VoiceCharset::kLatin1},
    {"iso-8859-2", VoiceCharset::kLatin2},  {"latin2", VoiceCharset::kLatin2},
    {"iso-8859-15", VoiceCharset::kLatin9}, {"latin9", VoiceCharset::kLatin9},
    {"utf-8", VoiceCharset::kUtf8},         {"utf8", VoiceCharset::kUtf8},
};

// Voices by the beginning of their names, for those whose description is not at hand or states no
// charset although they read one.
constexpr NamedCharset kKnownVoices[] = {
    {"czech_", VoiceCharset::kLatin2},  {"upc_ca_", VoiceCharset::kLatin9},
    {"lp_", VoiceCharset::kLatin1},     {"pc_", VoiceCharset::kLatin1},
    {"el_", VoiceCharset::kLatin1},     {"hy_fi_", VoiceCharset::kLatin1},
    {"suo_fi_", VoiceCharset::kLatin1}, {"hindi_", VoiceCharset::kUtf8},
    {"telugu_", VoiceCharset::kUtf8},   {"marathi_", VoiceCharset::kUtf8},
    {"msu_ru_", VoiceCharset::kUtf8},
};

std::string ReadDescription(const std::string& path) {
    const UniqueFd file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    std::string text;
    char part[8192];
    while (file.IsOpen() && text.size() < kMaxDescription) {
        const ssize_t got = ::read(file.Get(), part, sizeof part);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            break;
        text.append(part, static_cast<std::size_t>(got));
    }
    return text;
}

// Voices lie one folder below their language.
std::string InstalledDescription(std::string_view voiceName) {
    const std::string name(voiceName);
    const std::string tail = "/" + name + "/festvox/" + name + ".scm";
    std::error_code error;
    std::filesystem::directory_iterator languages(MachinePath("/usr/share/festival/voices"), error);
    for (; !error && languages != std::filesystem::directory_iterator(); languages.increment(error))
        if (std::string text = ReadDescription(languages->path().string() + tail); !text.empty())
            return text;
    return {};
}

// What stands behind "(key "; empty when nothing does.
std::string ValueIn(std::string_view voiceFile, const char* key) {
    const std::string opening = "(" + std::string(key) + " ";
    const std::size_t found = voiceFile.find(opening);
    if (found == std::string_view::npos)
        return {};
    voiceFile.remove_prefix(found + opening.size());
    std::string value(
        voiceFile.substr(0, std::min(voiceFile.find_first_of(")\n"), std::size_t{40})));
    std::erase_if(value, [](char character) { return character == ' ' || character == '"'; });
    std::transform(value.begin(), value.end(), value.begin(), g_ascii_tolower);
    return value;
}

std::string TagOf(const std::string& language, const std::string& dialect) {
    constexpr std::pair<std::string_view, const char*> kDialects[] = {
        {"american", "-US"}, {"british", "-GB"}, {"scottish", "-GB"}};
    std::string tag = TagOfEnglishName(language);
    const auto* const known =
        std::ranges::find(kDialects, dialect, &std::pair<std::string_view, const char*>::first);
    return tag == "en" && known != std::end(kDialects) ? tag + known->second : tag;
}

}  // namespace

VoiceDescription ReadVoiceDescription(std::string_view voiceFile, VoiceCharset otherwise) {
    VoiceDescription described{.charset = otherwise};
    const auto* const named =
        std::ranges::find(kCharsets, ValueIn(voiceFile, "coding"), &NamedCharset::name);
    if (named != std::end(kCharsets))
        described.charset = named->charset;
    described.language = TagOf(ValueIn(voiceFile, "language"), ValueIn(voiceFile, "dialect"));
    const std::string gender = ValueIn(voiceFile, "gender");
    described.kind = gender == "male" ? "man" : gender == "female" ? "woman" : "";
    return described;
}

VoiceDescription DescriptionOfVoice(std::string_view voiceName) {
    // A name with a slash is no voice's and would lead out of the voice folder.
    if (voiceName.empty() || voiceName.find('/') != std::string_view::npos)
        return {};
    const auto* const known = std::ranges::find_if(
        kKnownVoices, [voiceName](const auto& voice) { return voiceName.starts_with(voice.name); });
    return ReadVoiceDescription(InstalledDescription(voiceName), known == std::end(kKnownVoices)
                                                                     ? VoiceCharset::kAscii
                                                                     : known->charset);
}
