#include <glib.h>
#include <libxml/HTMLparser.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <string>

#include "documents/html_tokens.h"
#include "documents/text_charset.h"

namespace {

constexpr std::size_t kLongestName = 32;
// Those of the first pages, which were written without a semicolon too, mean Latin-1.
constexpr unsigned int kMostWithoutSemicolon = 0xFF;
constexpr std::size_t kLongestOld = 6;

struct Name {
    std::string_view name;
    char32_t character;
};

// What the library's table, that of HTML 4, lacks and pages use.
constexpr Name kNewer[] = {
    {"NewLine", '\n'}, {"Tab", '\t'},     {"apos", '\''},     {"ast", '*'},      {"bsol", '\\'},
    {"check", 0x2713}, {"colon", ':'},    {"comma", ','},     {"commat", '@'},   {"dash", 0x2010},
    {"dollar", '$'},   {"equals", '='},   {"excl", '!'},      {"grave", '`'},    {"hyphen", 0x2010},
    {"lbrace", '{'},   {"lbrack", '['},   {"lcub", '{'},      {"lowbar", '_'},   {"lpar", '('},
    {"lsqb", '['},     {"num", '#'},      {"percnt", '%'},    {"period", '.'},   {"plus", '+'},
    {"quest", '?'},    {"rbrace", '}'},   {"rbrack", ']'},    {"rcub", '}'},     {"rpar", ')'},
    {"rsqb", ']'},     {"semi", ';'},     {"shy", 0xAD},      {"sol", '/'},      {"verbar", '|'},
    {"vert", '|'},     {"phi", 0x3C6},    {"epsilon", 0x3B5}, {"star", 0x2606},  {"starf", 0x2605},
    {"half", 0xBD},    {"caron", 0x2C7},  {"Ccaron", 0x10C},  {"ccaron", 0x10D}, {"ecaron", 0x11B},
    {"rcaron", 0x159}, {"zcaron", 0x17E}, {"Zcaron", 0x17D},  {"lstrok", 0x142}, {"Lstrok", 0x141},
    {"amacr", 0x101},  {"imacr", 0x12B},  {"umacr", 0x16B},   {"nbsp", 0xA0},    {"half", 0xBD},
};

char32_t NamedCharacter(std::string_view name) {
    const auto* const newer =
        std::find_if(std::begin(kNewer), std::end(kNewer),
                     [name](const Name& known) { return known.name == name; });
    if (newer != std::end(kNewer))
        return newer->character;
    const std::string terminated(name);
    const htmlEntityDesc* const known =
        htmlEntityLookup(reinterpret_cast<const xmlChar*>(terminated.c_str()));
    return known == nullptr ? 0 : known->value;
}

void Append(std::string& text, char32_t character) {
    std::array<char, 6> bytes;
    const int length = g_unichar_to_utf8(character, bytes.data());
    text.append(bytes.data(), static_cast<std::size_t>(length));
}

// "#233;" or "#xE9;" without the "#". How many bytes were taken; 0 when it is none.
std::size_t AppendNumber(std::string_view text, std::string& resolved) {
    const bool isHex = text.starts_with('x') || text.starts_with('X');
    std::size_t at = isHex ? 1 : 0;
    const std::size_t begin = at;
    char32_t number = 0;
    for (; at < text.size(); ++at) {
        const int digit = isHex ? g_ascii_xdigit_value(text[at]) : g_ascii_digit_value(text[at]);
        if (digit < 0)
            break;
        number = std::min<char32_t>(number * (isHex ? 16U : 10U) + static_cast<char32_t>(digit),
                                    0x110000);
    }
    if (at == begin)
        return 0;
    const bool isCharacter = number != 0 && number < 0x110000 && (number & 0xFFFFF800U) != 0xD800;
    if (number >= 0x80 && number < 0xA0)
        AppendWindows1252(resolved, static_cast<unsigned char>(number));
    else
        Append(resolved, isCharacter ? number : U'\uFFFD');
    return at + (at < text.size() && text[at] == ';' ? 1 : 0);
}

// "eacute;" and, where the semicolon is left out, "eacute". How many bytes were taken; 0 when it is
// no name.
std::size_t AppendNamed(std::string_view text, bool isInAttribute, std::string& resolved) {
    std::size_t length = 0;
    while (length < std::min(text.size(), kLongestName) && g_ascii_isalnum(text[length]))
        ++length;
    if (length < text.size() && text[length] == ';') {
        const char32_t character = NamedCharacter(text.substr(0, length));
        if (character != 0)
            Append(resolved, character);
        return character == 0 ? 0 : length + 1;
    }
    if (isInAttribute)
        return 0;
    // The longest name that the letters begin with.
    for (length = std::min(length, kLongestOld); length > 1; --length) {
        const char32_t character = NamedCharacter(text.substr(0, length));
        if (character != 0 && character <= kMostWithoutSemicolon) {
            Append(resolved, character);
            return length;
        }
    }
    return 0;
}

}  // namespace

std::string ResolveReferences(std::string_view text, bool isInAttribute) {
    std::string resolved;
    for (std::size_t at = text.find('&'); at != std::string_view::npos; at = text.find('&')) {
        resolved += text.substr(0, at);
        text.remove_prefix(at + 1);
        const bool isNumber = text.starts_with('#');
        const std::size_t taken = isNumber ? AppendNumber(text.substr(1), resolved)
                                           : AppendNamed(text, isInAttribute, resolved);
        if (taken == 0)
            resolved += '&';
        else
            text.remove_prefix(taken + (isNumber ? 1 : 0));
    }
    return resolved += text;
}
