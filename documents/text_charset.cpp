#include "documents/text_charset.h"

#include <glib.h>
#include <uchardet/uchardet.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <memory>
#include <optional>
#include <utility>

namespace {

constexpr std::string_view kReplacement = "\xef\xbf\xbd";
// A text with fewer valid multi-byte characters for each bad byte has them by chance.
constexpr std::size_t kBadBytesPerCharacter = 10;
// One with fewer is UTF-8 whatever else fits.
constexpr std::size_t kSurelyBadBytesPerCharacter = 2;

// 0x80 to 0x9F of Windows-1252; the others are those of Unicode. 0 where it has none.
constexpr std::array<char16_t, 32> kWindows1252 = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178,
};

void AppendCharacter(std::string& text, char32_t character) {
    std::array<char, 6> bytes;
    const int length = g_unichar_to_utf8(character == 0 ? U' ' : character, bytes.data());
    text.append(bytes.data(), static_cast<std::size_t>(length));
}

// Half a pair of surrogates, and half a unit at the end, become U+FFFD.
std::string FromUtf16(std::string_view bytes, bool isBigEndian) {
    const auto unitAt = [bytes, isBigEndian](std::size_t at) {
        const auto first = static_cast<unsigned char>(bytes[at]);
        const auto second = static_cast<unsigned char>(bytes[at + 1]);
        return static_cast<char32_t>(isBigEndian ? first << 8 | second : second << 8 | first);
    };
    std::string text;
    text.reserve(bytes.size());
    std::size_t at = 0;
    while (at + 1 < bytes.size()) {
        const char32_t unit = unitAt(at);
        at += 2;
        if (unit < 0xD800 || unit > 0xDFFF) {
            AppendCharacter(text, unit);
            continue;
        }
        const char32_t low = unit < 0xDC00 && at + 1 < bytes.size() ? unitAt(at) : 0;
        if (low >= 0xDC00 && low <= 0xDFFF) {
            AppendCharacter(text, 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00));
            at += 2;
        } else {
            text += kReplacement;
        }
    }
    if (at < bytes.size())
        text += kReplacement;
    return text;
}

// Western text in UTF-16 has a NUL in nearly every other byte, on one side.
bool LooksLikeUtf16(std::string_view bytes, bool isBigEndian) {
    const std::size_t units = std::min<std::size_t>(bytes.size(), 4096) / 2;
    std::size_t highNuls = 0;
    std::size_t lowNuls = 0;
    for (std::size_t unit = 0; unit < units; ++unit) {
        const std::size_t high = 2 * unit + (isBigEndian ? 0 : 1);
        highNuls += bytes[high] == '\0' ? 1U : 0U;
        lowNuls += bytes[high ^ 1U] == '\0' ? 1U : 0U;
    }
    return units > 1 && highNuls * 5 > units * 2 && lowNuls * 20 <= units;
}

struct Utf8Step {
    std::size_t length;
    enum class Kind { kCharacter, kBroken, kForeign } kind;
};

// What stands at the beginning of the bytes.
Utf8Step NextStep(std::string_view bytes) {
    const auto first = static_cast<unsigned char>(bytes[0]);
    if (first < 0x80)
        return {1, Utf8Step::Kind::kCharacter};
    const auto left = static_cast<gssize>(std::min<std::size_t>(bytes.size(), 4));
    const gunichar character = g_utf8_get_char_validated(bytes.data(), left);
    if (character < 0x110000)
        return {static_cast<std::size_t>(g_unichar_to_utf8(character, nullptr)),
                Utf8Step::Kind::kCharacter};
    const std::size_t expected = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC2 ? 2 : 1;
    std::size_t length = 1;
    while (length < std::min(expected, bytes.size()) &&
           (static_cast<unsigned char>(bytes[length]) & 0xC0U) == 0x80U)
        ++length;
    const bool isCut = length > 1 || (expected > 1 && bytes.size() == 1);
    return {length, isCut ? Utf8Step::Kind::kBroken : Utf8Step::Kind::kForeign};
}

constexpr std::size_t kGuessedFrom = 1U << 20;  // a beginning tells as much as the whole
constexpr std::size_t kCharsetWithin = 4096;
// Fewer bytes above ASCII would fit many charsets.
constexpr std::size_t kLeastEvidence = 6;
// Of bytes above ASCII: with fewer for each that the charset does not have, it is another one.
constexpr std::size_t kLeastBytesPerBad = 5;

std::size_t CountAboveAscii(std::string_view bytes) {
    return static_cast<std::size_t>(std::count_if(bytes.begin(), bytes.end(), [](char byte) {
        return static_cast<unsigned char>(byte) >= 0x80;
    }));
}

// What texts in these charsets hold is more than their names' standards do.
constexpr std::pair<std::string_view, const char*> kMeant[] = {{"ascii", "WINDOWS-1252"},
                                                               {"big5", "BIG5-HKSCS"},
                                                               {"cp932", "CP932"},
                                                               {"euc-kr", "UHC"},
                                                               {"gb2312", "GB18030"},
                                                               {"gbk", "GB18030"},
                                                               {"iso-8859-1", "WINDOWS-1252"},
                                                               {"iso-8859-9", "WINDOWS-1254"},
                                                               {"ks_c_5601-1987", "UHC"},
                                                               {"latin1", "WINDOWS-1252"},
                                                               {"shift-jis", "CP932"},
                                                               {"shift_jis", "CP932"},
                                                               {"sjis", "CP932"},
                                                               {"tis-620", "CP874"},
                                                               {"us-ascii", "WINDOWS-1252"},
                                                               {"x-gbk", "GB18030"},
                                                               {"x-sjis", "CP932"}};

std::string MeantCharset(std::string_view charset) {
    std::string name(charset);
    std::transform(name.begin(), name.end(), name.begin(), g_ascii_tolower);
    for (const auto& [known, meant] : kMeant)
        if (name == known)
            return meant;
    return name;
}

// The charset that the letters' frequencies speak for; empty when they say nothing.
std::string GuessCharset(std::string_view bytes) {
    bytes = bytes.substr(0, kGuessedFrom);
    if (CountAboveAscii(bytes) < kLeastEvidence)
        return {};
    const std::unique_ptr<uchardet, decltype(&uchardet_delete)> detector(uchardet_new(),
                                                                         &uchardet_delete);
    if (uchardet_handle_data(detector.get(), bytes.data(), bytes.size()) != 0)
        return {};
    uchardet_data_end(detector.get());
    std::string charset = uchardet_get_charset(detector.get());
    // What every text in it would be as well, and holds more.
    if (charset == "ASCII" || charset == "ISO-8859-1" || charset == "ISO-8859-15" ||
        charset.starts_with("UTF"))
        charset.clear();
    return charset;
}

std::string FromUtf8(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size());
    std::size_t characters = 0;
    std::size_t badBytes = 0;
    for (std::size_t at = 0; at < bytes.size();) {
        const Utf8Step step = NextStep(bytes.substr(at, 4));
        if (step.kind == Utf8Step::Kind::kCharacter) {
            text += bytes[at] == '\0' ? std::string_view(" ") : bytes.substr(at, step.length);
            characters += step.length > 1 ? 1U : 0U;
        } else {
            badBytes += step.length;
            if (step.kind == Utf8Step::Kind::kBroken)
                text += kReplacement;
            else
                AppendWindows1252(text, static_cast<unsigned char>(bytes[at]));
        }
        at += step.length;
    }
    if (badBytes <= characters * kSurelyBadBytesPerCharacter)
        return text;
    if (const std::string guess = GuessCharset(bytes); !guess.empty())
        if (std::optional<std::string> guessed = DecodeCharset(bytes, guess); guessed)
            return std::move(*guessed);
    if (badBytes <= characters * kBadBytesPerCharacter)
        return text;
    text.clear();
    for (const char byte : bytes)
        AppendWindows1252(text, static_cast<unsigned char>(byte));
    return text;
}

// In small letters, behind the key, quoted or not; empty when there is none.
std::string NamedBehind(const std::string& head, std::string_view key) {
    const std::size_t found = head.find(key);
    if (found == std::string::npos)
        return {};
    const std::size_t begin = head.find_first_not_of("\"' =", found + key.size());
    if (begin == std::string::npos)
        return {};
    return head.substr(begin, head.find_first_of("\"' />;?", begin) - begin);
}

// What a page says of its charset: the XML declaration, else a "meta" element.
std::string NamedCharset(std::string_view bytes) {
    std::string head(bytes.substr(0, kCharsetWithin));
    std::transform(head.begin(), head.end(), head.begin(), g_ascii_tolower);
    if (head.starts_with("<?xml"))
        if (std::string named = NamedBehind(head.substr(0, head.find("?>")), "encoding");
            !named.empty())
            return named;
    for (std::size_t at = head.find("<meta"); at != std::string::npos;
         at = head.find("<meta", at + 1))
        if (std::string named = NamedBehind(head.substr(at, head.find('>', at) - at), "charset=");
            !named.empty())
            return named;
    return {};
}

bool IsUtf16Marked(std::string_view bytes) {
    return bytes.starts_with("\xff\xfe") || bytes.starts_with("\xfe\xff");
}

bool HoldsUtf8(std::string_view bytes) {
    const bool isAscii = std::all_of(bytes.begin(), bytes.end(), [](char byte) {
        return static_cast<unsigned char>(byte) < 0x80;
    });
    return !isAscii && g_utf8_validate_len(bytes.data(), bytes.size(), nullptr) != 0;
}

}  // namespace

void AppendWindows1252(std::string& text, unsigned char byte) {
    const char32_t character = byte >= 0x80 && byte < 0xA0 ? kWindows1252[byte - 0x80U] : byte;
    if (character == 0 && byte != 0)
        text += kReplacement;
    else
        AppendCharacter(text, character);
}

bool IsByteOrderMarked(std::string_view bytes) {
    return bytes.starts_with("\xef\xbb\xbf") || IsUtf16Marked(bytes);
}

std::optional<std::string> DecodeCharset(std::string_view bytes, std::string_view charset) {
    const auto close = [](void* open) { g_iconv_close(static_cast<GIConv>(open)); };
    GIConv const open = g_iconv_open("UTF-8", MeantCharset(charset).c_str());
    if (open == reinterpret_cast<GIConv>(-1))
        return std::nullopt;
    const std::unique_ptr<void, decltype(close)> converter(open, close);
    std::string in(bytes);
    std::string text;
    std::array<char, 16384> part;
    char* next = in.data();
    std::size_t left = in.size();
    std::size_t bad = 0;
    while (left > 0) {
        char* out = part.data();
        std::size_t room = part.size();
        const bool isDone =
            g_iconv(open, &next, &left, &out, &room) != static_cast<std::size_t>(-1);
        const int error = errno;
        text.append(part.data(), part.size() - room);
        if (isDone || error == E2BIG)
            continue;
        text += kReplacement;
        ++bad;
        if (error != EILSEQ)
            break;  // half a character at the end
        ++next;
        --left;
    }
    // Some charsets hold back a letter that a mark may follow.
    char* out = part.data();
    std::size_t room = part.size();
    g_iconv(open, nullptr, nullptr, &out, &room);
    text.append(part.data(), part.size() - room);
    std::replace(text.begin(), text.end(), '\0', ' ');
    if (bad * kLeastBytesPerBad > CountAboveAscii(bytes))
        return std::nullopt;
    return text;
}

std::string DecodeMarkup(std::string_view bytes) {
    const std::string charset = NamedCharset(bytes);
    if (charset.empty() || charset.starts_with("utf") || IsUtf16Marked(bytes) || HoldsUtf8(bytes))
        return DecodeText(bytes);
    std::optional<std::string> text = DecodeCharset(bytes, charset);
    return text ? std::move(*text) : DecodeText(bytes);
}

std::string DecodeText(std::string_view bytes) {
    if (bytes.starts_with("\xef\xbb\xbf"))
        bytes.remove_prefix(3);
    else if (IsUtf16Marked(bytes))
        return FromUtf16(bytes.substr(2), bytes[0] == '\xfe');
    else if (LooksLikeUtf16(bytes, false) || LooksLikeUtf16(bytes, true))
        return FromUtf16(bytes, LooksLikeUtf16(bytes, true));
    return FromUtf8(bytes);
}
