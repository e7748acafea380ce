#include "speech/character_tables.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace {

struct Entry {
    char32_t character;
    const char* text;
};

template <std::size_t N>
constexpr bool IsSorted(const Entry (&table)[N]) {
    return std::is_sorted(std::begin(table), std::end(table),
                          [](const Entry& a, const Entry& b) { return a.character < b.character; });
}

template <std::size_t N>
const char* Find(const Entry (&table)[N], char32_t character) {
    const Entry* found = std::lower_bound(
        std::begin(table), std::end(table), character,
        [](const Entry& entry, char32_t wanted) { return entry.character < wanted; });
    return found != std::end(table) && found->character == character ? found->text : nullptr;
}

// Zero-width joiners are not here: Indic scripts need them.
constexpr Entry kPlainForms[] = {
    {0x0085, "\n"},   {0x00A0, " "},  {0x00AB, "\""}, {0x00AD, ""},    {0x00B4, "'"},
    {0x00BB, "\""},   {0x02BB, "'"},  {0x02BC, "'"},  {0x02BD, "'"},   {0x02C6, "^"},
    {0x02DC, "~"},    {0x1680, " "},  {0x180E, ""},   {0x2000, " "},   {0x2001, " "},
    {0x2002, " "},    {0x2003, " "},  {0x2004, " "},  {0x2005, " "},   {0x2006, " "},
    {0x2007, " "},    {0x2008, " "},  {0x2009, " "},  {0x200A, " "},   {0x200B, ""},
    {0x200E, ""},     {0x200F, ""},   {0x2010, "-"},  {0x2011, "-"},   {0x2012, "-"},
    {0x2013, "-"},    {0x2014, "--"}, {0x2015, "--"}, {0x2018, "'"},   {0x2019, "'"},
    {0x201A, "'"},    {0x201B, "'"},  {0x201C, "\""}, {0x201D, "\""},  {0x201E, "\""},
    {0x201F, "\""},   {0x2024, "."},  {0x2025, ".."}, {0x2026, "..."}, {0x2028, "\n"},
    {0x2029, "\n\n"}, {0x202A, ""},   {0x202B, ""},   {0x202C, ""},    {0x202D, ""},
    {0x202E, ""},     {0x202F, " "},  {0x2032, "'"},  {0x2033, "\""},  {0x2035, "'"},
    {0x2039, "'"},    {0x203A, "'"},  {0x203C, "!!"}, {0x203D, "?!"},  {0x2044, "/"},
    {0x2047, "??"},   {0x2048, "?!"}, {0x2049, "!?"}, {0x205F, " "},   {0x2060, ""},
    {0x2061, ""},     {0x2062, ""},   {0x2063, ""},   {0x2064, ""},    {0x2066, ""},
    {0x2067, ""},     {0x2068, ""},   {0x2069, ""},   {0x2212, "-"},   {0x2215, "/"},
    {0x22EF, "..."},  {0x2E3A, "--"}, {0x2E3B, "--"}, {0x3000, " "},   {0x3001, ", "},
    {0x3002, ". "},   {0xFB00, "ff"}, {0xFB01, "fi"}, {0xFB02, "fl"},  {0xFB03, "ffi"},
    {0xFB04, "ffl"},  {0xFB05, "st"}, {0xFB06, "st"}, {0xFEFF, ""},
};
static_assert(IsSorted(kPlainForms));

constexpr Entry kSpokenSigns[] = {
    {0x00A6, ""},
    {0x00A7, "section"},
    {0x00A9, "copyright"},
    {0x00AA, ""},
    {0x00AE, "registered"},
    {0x00B0, "degrees"},
    {0x00B1, "plus or minus"},
    {0x00B5, "micro"},
    {0x00B6, "paragraph"},
    {0x00BA, ""},
    {0x00BC, "one quarter"},
    {0x00BD, "one half"},
    {0x00BE, "three quarters"},
    {0x00D7, "times"},
    {0x00F7, "divided by"},
    {0x2030, "per mille"},
    {0x2103, "degrees Celsius"},
    {0x2109, "degrees Fahrenheit"},
    {0x2116, "number"},
    {0x2117, "copyright"},
    {0x2120, ""},
    {0x2122, "trademark"},
    {0x2126, "ohm"},
    {0x2150, "one seventh"},
    {0x2151, "one ninth"},
    {0x2152, "one tenth"},
    {0x2153, "one third"},
    {0x2154, "two thirds"},
    {0x2155, "one fifth"},
    {0x2156, "two fifths"},
    {0x2157, "three fifths"},
    {0x2158, "four fifths"},
    {0x2159, "one sixth"},
    {0x215A, "five sixths"},
    {0x215B, "one eighth"},
    {0x215C, "three eighths"},
    {0x215D, "five eighths"},
    {0x215E, "seven eighths"},
    {0x2190, "from"},
    {0x2192, "to"},
    {0x2194, "to and from"},
    {0x21D2, "implies"},
    {0x2202, "partial"},
    {0x2206, "delta"},
    {0x220F, "product"},
    {0x2211, "sum"},
    {0x2213, "minus or plus"},
    {0x2219, ""},
    {0x221A, "square root of"},
    {0x221E, "infinity"},
    {0x222B, "integral"},
    {0x2248, "about"},
    {0x2260, "not equal to"},
    {0x2261, "identical to"},
    {0x2264, "less than or equal to"},
    {0x2265, "greater than or equal to"},
};
static_assert(IsSorted(kSpokenSigns));

constexpr Entry kPlainLetters[] = {
    {0x00C6, "AE"}, {0x00D0, "D"},  {0x00D8, "O"},  {0x00DE, "Th"}, {0x00DF, "ss"}, {0x00E6, "ae"},
    {0x00F0, "d"},  {0x00F8, "o"},  {0x00FE, "th"}, {0x0110, "D"},  {0x0111, "d"},  {0x0126, "H"},
    {0x0127, "h"},  {0x0131, "i"},  {0x0138, "k"},  {0x0141, "L"},  {0x0142, "l"},  {0x014A, "Ng"},
    {0x014B, "ng"}, {0x0152, "OE"}, {0x0153, "oe"}, {0x0166, "T"},  {0x0167, "t"},  {0x017F, "s"},
    {0x0180, "b"},  {0x0189, "D"},  {0x018E, "E"},  {0x018F, "E"},  {0x0192, "f"},  {0x0197, "I"},
    {0x019A, "l"},  {0x01B5, "Z"},  {0x01B6, "z"},  {0x01E4, "G"},  {0x01E5, "g"},  {0x0259, "e"},
    {0x0268, "i"},  {0x1E9E, "SS"},
};
static_assert(IsSorted(kPlainLetters));

// Small letters from alpha to omega, the final sigma among them.
constexpr const char* kGreekNames[] = {
    "alpha", "beta",   "gamma",   "delta", "epsilon", "zeta",    "eta",  "theta", "iota",
    "kappa", "lambda", "mu",      "nu",    "xi",      "omicron", "pi",   "rho",   "sigma",
    "sigma", "tau",    "upsilon", "phi",   "chi",     "psi",     "omega"};

struct CurrencyEntry {
    char32_t character;
    Currency currency;
};
constexpr CurrencyEntry kCurrencies[] = {
    {0x00A2, {"cent", "cents"}},   {0x00A3, {"pound", "pounds"}},
    {0x00A5, {"yen", "yen"}},      {0x20A6, {"naira", "naira"}},
    {0x20A9, {"won", "won"}},      {0x20AA, {"shekel", "shekels"}},
    {0x20AB, {"dong", "dong"}},    {0x20AC, {"euro", "euros"}},
    {0x20B1, {"peso", "pesos"}},   {0x20B4, {"hryvnia", "hryvnias"}},
    {0x20B9, {"rupee", "rupees"}}, {0x20BA, {"lira", "liras"}},
    {0x20BD, {"ruble", "rubles"}}, {0x20BF, {"bitcoin", "bitcoins"}},
};

// ISO-8859-2 from byte 0xA0 on.
constexpr std::array<char16_t, 96> kLatin2 = {
    0x00A0, 0x0104, 0x02D8, 0x0141, 0x00A4, 0x013D, 0x015A, 0x00A7, 0x00A8, 0x0160, 0x015E, 0x0164,
    0x0179, 0x00AD, 0x017D, 0x017B, 0x00B0, 0x0105, 0x02DB, 0x0142, 0x00B4, 0x013E, 0x015B, 0x02C7,
    0x00B8, 0x0161, 0x015F, 0x0165, 0x017A, 0x02DD, 0x017E, 0x017C, 0x0154, 0x00C1, 0x00C2, 0x0102,
    0x00C4, 0x0139, 0x0106, 0x00C7, 0x010C, 0x00C9, 0x0118, 0x00CB, 0x011A, 0x00CD, 0x00CE, 0x010E,
    0x0110, 0x0143, 0x0147, 0x00D3, 0x00D4, 0x0150, 0x00D6, 0x00D7, 0x0158, 0x016E, 0x00DA, 0x0170,
    0x00DC, 0x00DD, 0x0162, 0x00DF, 0x0155, 0x00E1, 0x00E2, 0x0103, 0x00E4, 0x013A, 0x0107, 0x00E7,
    0x010D, 0x00E9, 0x0119, 0x00EB, 0x011B, 0x00ED, 0x00EE, 0x010F, 0x0111, 0x0144, 0x0148, 0x00F3,
    0x00F4, 0x0151, 0x00F6, 0x00F7, 0x0159, 0x016F, 0x00FA, 0x0171, 0x00FC, 0x00FD, 0x0163, 0x02D9,
};

struct ByteOf {
    unsigned char byte;
    char16_t character;
};
// Where ISO-8859-15 differs from ISO-8859-1.
constexpr ByteOf kLatin9[] = {
    {0xA4, 0x20AC}, {0xA6, 0x0160}, {0xA8, 0x0161}, {0xB4, 0x017D},
    {0xB8, 0x017E}, {0xBC, 0x0152}, {0xBD, 0x0153}, {0xBE, 0x0178},
};

int ByteInLatin2(char32_t character) {
    const auto* found = std::find(kLatin2.begin(), kLatin2.end(), character);
    return found == kLatin2.end() ? -1 : 0xA0 + static_cast<int>(found - kLatin2.begin());
}

int ByteInLatin9(char32_t character) {
    for (const ByteOf& entry : kLatin9) {
        if (entry.character == character)
            return entry.byte;
        if (entry.byte == character)
            return -1;
    }
    return character >= 0xA0 && character <= 0xFF ? static_cast<int>(character) : -1;
}

}  // namespace

const char* PlainForm(char32_t character) {
    return Find(kPlainForms, character);
}

const char* SpokenSign(char32_t character) {
    return Find(kSpokenSigns, character);
}

const char* GreekLetterName(char32_t character) {
    if (character >= 0x0391 && character <= 0x03A9)
        character += 0x20;
    if (character < 0x03B1 || character > 0x03C9)
        return nullptr;
    return kGreekNames[character - 0x03B1];
}

const char* PlainLetters(char32_t character) {
    return Find(kPlainLetters, character);
}

const Currency* FindCurrency(char32_t character) {
    for (const CurrencyEntry& entry : kCurrencies)
        if (entry.character == character)
            return &entry.currency;
    return nullptr;
}

char SuperscriptDigit(char32_t character) {
    switch (character) {
        case 0x00B9:
            return '1';
        case 0x00B2:
            return '2';
        case 0x00B3:
            return '3';
        default:
            break;
    }
    if (character == 0x2070 || (character >= 0x2074 && character <= 0x2079))
        return static_cast<char>('0' + (character - 0x2070));
    return '\0';
}

int ByteInCharset(char32_t character, VoiceCharset charset) {
    if (character < 0x80)
        return static_cast<int>(character);
    switch (charset) {
        case VoiceCharset::kLatin1:
            return character >= 0xA0 && character <= 0xFF ? static_cast<int>(character) : -1;
        case VoiceCharset::kLatin2:
            return ByteInLatin2(character);
        case VoiceCharset::kLatin9:
            return ByteInLatin9(character);
        case VoiceCharset::kAscii:
        case VoiceCharset::kUtf8:
        case VoiceCharset::kUnicode:
            break;
    }
    return -1;
}

char32_t CharacterOfByte(unsigned char byte, VoiceCharset charset) {
    if (byte >= 0xA0 && charset == VoiceCharset::kLatin2)
        return kLatin2[byte - 0xA0U];
    if (charset == VoiceCharset::kLatin9)
        for (const ByteOf& entry : kLatin9)
            if (entry.byte == byte)
                return entry.character;
    return byte;
}
