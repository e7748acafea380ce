// Money, units, and what is written in letters and signs.
#include <glib.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <array>
#include <cctype>

#include "foundation/owned_text.h"
#include "speech/emoji_names.h"
#include "speech/number_words.h"
#include "speech/sentence_words.h"
#include "speech/spoken_forms.h"

namespace {

constexpr std::size_t kFewestCapitals = 2;
constexpr std::size_t kMostCapitals = 8;
constexpr std::size_t kLongestRoman = 7;
constexpr std::size_t kLongestMail = 100;
constexpr std::string_view kListEnds = " etc. usw. usf. ecc. atd. apod. и т. д. и т.д. ";
constexpr char32_t kFirstPicture = 0x2190;
constexpr gunichar kJoiner = 0x200D;
constexpr int kMostPartsOfPicture = 16;
constexpr gunichar kPictureStyle = 0xFE0F;

const WrittenForm* FormBeginning(std::span<const WrittenForm> forms, std::string_view text) {
    const auto found = std::ranges::find_if(
        forms, [text](const WrittenForm& form) { return text.starts_with(form.written); });
    return found == forms.end() ? nullptr : &*found;
}

// English, as in "$3m" and "$3 million".
constexpr WrittenForm kMoneyScales[] = {{" thousand", " thousand"}, {" million", " million"},
                                        {" billion", " billion"},   {" trillion", " trillion"},
                                        {"k", " thousand"},         {"K", " thousand"},
                                        {"M", " million"},          {"B", " billion"},
                                        {"m", " million"},          {"bn", " billion"}};

// "3 million euros" of "1 euro" and "3 million", whose noun is that of many.
std::string EnglishScaled(std::string_view currency, const std::string& number,
                          std::string_view scale) {
    const std::string many = MoneyWords("en", currency, "2");
    return number + std::string(scale) + many.substr(std::min(many.find(' '), many.size()));
}

// "Tél." of the form "tél."
bool BeginsAsSentence(std::string_view text, std::string_view written) {
    const gunichar first = g_utf8_get_char(written.data());
    const auto size = static_cast<std::size_t>(g_unichar_to_utf8(first, nullptr));
    std::array<char, 6> capital{};
    const auto sizeOfCapital =
        static_cast<std::size_t>(g_unichar_to_utf8(g_unichar_toupper(first), capital.data()));
    return g_unichar_islower(first) != FALSE &&
           text.starts_with(std::string_view(capital.data(), sizeOfCapital)) &&
           text.substr(sizeOfCapital).starts_with(written.substr(size));
}

bool IsModifier(gunichar character) {
    return character == kPictureStyle || (character >= 0x1F3FB && character <= 0x1F3FF);
}

std::string NameOfCharacter(gunichar character) {
    std::array<char, 100> name{};
    UErrorCode error = U_ZERO_ERROR;
    u_charName(static_cast<UChar32>(character), U_UNICODE_CHAR_NAME, name.data(),
               static_cast<int>(name.size()), &error);
    std::string words = U_FAILURE(error) ? "" : name.data();
    std::ranges::transform(words, words.begin(), g_ascii_tolower);
    return words;
}

// The words as those between what stands before and behind. A stop that stood alone behind them
// would be a word of its own.
std::string Apart(const std::string& words, bool isBehindWord, bool isBeforeWord) {
    return (isBehindWord ? " " : "") + words + (isBeforeWord ? " " : "");
}

}  // namespace

std::optional<std::size_t> SpokenForms::MoneyBehindSign(std::size_t at) {
    const WrittenForm* const sign = FormBeginning(CurrencySigns(), text_.substr(at));
    if (sign == nullptr || (byEngine_ & kSaysMoney) != 0)
        return std::nullopt;
    Amount amount;
    if (!ReadAmount(BehindBlank(at + sign->written.size()), amount))
        return std::nullopt;
    if (language_ == "en") {
        const WrittenForm* const scale = FormBeginning(kMoneyScales, text_.substr(amount.end));
        if (scale != nullptr && EndsToken(amount.end + scale->written.size())) {
            said_ = EnglishScaled(sign->said, amount.plain, scale->said);
            return amount.end + scale->written.size();
        }
    }
    said_ = MoneyWords(language_, sign->said, amount.plain);
    // "$5.20" within a text of a language that writes it "$5,20".
    const bool goesOn = amount.end + 1 < text_.size() &&
                        std::string_view(".,").find(text_[amount.end]) != std::string_view::npos &&
                        g_ascii_isdigit(text_[amount.end + 1]);
    return said_.empty() || goesOn || !EndsToken(amount.end) ? std::nullopt
                                                             : std::optional(amount.end);
}

std::optional<std::size_t> SpokenForms::MoneyBefore(const Amount& amount) {
    const std::size_t place = BehindBlank(amount.end);
    const WrittenForm* const sign = FormBeginning(CurrencySigns(), text_.substr(place));
    if (sign == nullptr || (byEngine_ & kSaysMoney) != 0)
        return std::nullopt;
    const std::size_t end = place + sign->written.size();
    said_ = MoneyWords(language_, sign->said, amount.plain);
    return said_.empty() || !EndsToken(end) ? std::nullopt : std::optional(end);
}

// Behind a form "#" asks for a number, and "A" for a capital letter.
std::optional<std::size_t> SpokenForms::Abbreviation(std::size_t at) {
    const std::string_view rest = text_.substr(at);
    const bool mayBegin = g_unichar_isupper(CharacterAt(at)) != FALSE;
    for (const WrittenForm& form : forms_->abbreviations) {
        const bool isConditional = form.written.ends_with(" #") || form.written.ends_with(" A") ||
                                   form.written.ends_with(" I");
        const std::string_view written =
            form.written.substr(0, form.written.size() - (isConditional ? 2 : 0));
        const bool isCapitalised = mayBegin && BeginsAsSentence(rest, written);
        if (!isCapitalised && !rest.starts_with(written))
            continue;
        const std::size_t end = at + written.size();
        if (isCapitalised && !isConditional && !GoesOnBehind(end))
            continue;
        if (isConditional) {
            const std::size_t next = BehindBlank(end);
            const gunichar character = CharacterAt(next);
            const bool isAsked =
                form.written.back() == '#' ? g_unichar_isdigit(character) != FALSE
                : form.written.back() == 'A'
                    ? g_unichar_isupper(character) != FALSE
                    : std::string_view("IVX").find(text_[next]) != std::string_view::npos;
            if (next == end || !isAsked)
                continue;
        } else if (g_ascii_isalnum(written.back()) && !EndsToken(end)) {
            continue;
        }
        said_ = form.said;
        // The stop of what ends lists is the sentence's, too.
        const std::size_t next = BehindBlank(end);
        const bool endsSentence =
            kListEnds.find(" " + std::string(written) + " ") != std::string_view::npos &&
            (next >= text_.size() || text_[next] == '\n' ||
             (next > end && g_unichar_isupper(CharacterAt(next)) != FALSE));
        return endsSentence ? end - 1 : end;
    }
    return std::nullopt;
}

// Whether what stands behind shows that the stop before it ends no sentence.
bool SpokenForms::GoesOnBehind(std::size_t at) const {
    const std::size_t next = BehindBlank(at);
    const gunichar character = CharacterAt(next);
    return text_.substr(at).starts_with(":") || text_.substr(at).starts_with(",") ||
           (next > at &&
            (g_unichar_islower(character) != FALSE || g_unichar_isdigit(character) != FALSE ||
             character == '+' || character == '('));
}

// "joe@example.com".
std::optional<std::size_t> SpokenForms::Mail(std::size_t at) {
    const std::string_view rest = text_.substr(at, kLongestMail);
    const auto isPart = [](char byte) {
        return g_ascii_isalnum(byte) || std::string_view("._-+").find(byte) != std::string::npos;
    };
    std::size_t sign = 0;
    while (sign < rest.size() && isPart(rest[sign]))
        ++sign;
    if (forms_->atSign.empty() || sign == 0 || sign == rest.size() || rest[sign] != '@')
        return std::nullopt;
    std::size_t end = sign + 1;
    while (end < rest.size() && isPart(rest[end]))
        ++end;
    while (!g_ascii_isalnum(rest[end - 1]) && end > sign + 1)
        --end;
    if (rest.substr(sign, end - sign).find('.') == std::string_view::npos || !EndsToken(at + end))
        return std::nullopt;
    for (const char byte : rest.substr(0, end))
        said_ += byte == '@'   ? std::string(forms_->atSign)
                 : byte == '.' ? std::string(forms_->dot)
                               : std::string(1, byte);
    return at + end;
}

// "Henry VIII", "Chapter IV". A single letter is one only behind a ruler's name or a word that
// things are counted by.
std::optional<std::size_t> SpokenForms::RomanNumeral(std::size_t at) {
    std::size_t end = at;
    while (end < text_.size() && end - at < kLongestRoman &&
           std::string_view("IVX").find(text_[end]) != std::string_view::npos)
        ++end;
    const int value = end == at || !EndsToken(end) ? 0 : RomanValue(text_.substr(at, end - at));
    if (value == 0 || (byEngine_ & kSaysRomanNumerals) != 0)
        return std::nullopt;
    const std::string before = WordBefore(at);
    const bool isMan = IsAmong(forms_->men, before);
    const bool isWoman = IsAmong(forms_->women, before);
    // "The IV drip"
    const bool isCapital = before.size() > 2 &&
                           g_unichar_isupper(g_utf8_get_char(before.c_str())) != FALSE &&
                           (!BeginsSentences(before) || text_.substr(at, end - at) != "IV");
    const OwnedText small(g_utf8_strdown(before.c_str(), -1));
    const bool isShort = at > 1 && text_.substr(0, at).ends_with(". ");  // "s. XIX"
    const bool isCounted = IsAmong(forms_->counted, isShort ? WordBefore(at - 2) : small.get());
    if (!isMan && !isWoman && !isCounted && (!isCapital || end - at == 1))
        return std::nullopt;
    if (isMan || isWoman)
        said_ = OrdinalWords(language_, isMan ? OrdinalOf::kMan : OrdinalOf::kWoman, value);
    if (said_.empty())
        said_ = std::to_string(value);
    else
        said_ = std::string(isMan ? forms_->beforeMan : forms_->beforeWoman) + said_;
    // "Heinrich VIII. war": that stop is the ordinal's, and ends no sentence.
    const std::size_t behind = BehindBlank(end + 1);
    if (forms_->hasDottedDays && end < text_.size() && text_[end] == '.' && behind > end + 1 &&
        g_unichar_islower(CharacterAt(behind)) != FALSE)
        ++end;
    return end;
}

// The scheme goes, and "www" with it; engines say the rest.
std::optional<std::size_t> SpokenForms::WebAddress(std::size_t at) {
    std::size_t end = at;
    for (const std::string_view scheme : {"https://", "http://", "www."})
        if (text_.substr(end).starts_with(scheme))
            end += scheme.size();
    return end == at || EndsToken(end) ? std::nullopt : std::optional(end);
}

std::optional<std::size_t> SpokenForms::Capitals(std::size_t at) {
    if (!choices_.spellsCapitals)
        return std::nullopt;
    std::size_t count = 0;
    std::size_t end = at;
    for (; g_unichar_isupper(CharacterAt(end)) != FALSE; ++count) {
        const std::size_t next = end + SizeAt(end);
        said_ += (count == 0 ? "" : " ") + std::string(text_.substr(end, next - end));
        end = next;
    }
    return count < kFewestCapitals || count > kMostCapitals || !EndsToken(end) ? std::nullopt
                                                                               : std::optional(end);
}

// What only changes the picture before, or joins another to it, is a part of it.
std::size_t SpokenForms::EmojiEnd(std::size_t at) const {
    std::size_t end = at + SizeAt(at);
    for (int parts = 0; parts < kMostPartsOfPicture &&
                        (IsModifier(CharacterAt(end)) || CharacterAt(end) == kJoiner);
         ++parts) {
        const bool joins = CharacterAt(end) == kJoiner;
        end += SizeAt(end);
        if (joins)
            end += SizeAt(end);
    }
    return std::min(end, text_.size());
}

// Left out where they are not wanted; said where the engine does not, by voices that speak the
// language of their names.
std::optional<std::size_t> SpokenForms::Emoji(std::size_t at) {
    const gunichar first = CharacterAt(at);
    const bool isBehindWord = at > 0 && g_ascii_isspace(text_[at - 1]) == FALSE;
    if (first < kFirstPicture || u_hasBinaryProperty(static_cast<UChar32>(first), UCHAR_EMOJI) == 0)
        return std::nullopt;
    if (choices_.saysEmoji && (byEngine_ & kSaysEmoji) != 0)
        return std::nullopt;
    std::size_t end = EmojiEnd(at);
    if (!choices_.saysEmoji)
        return end;
    std::string name;
    if (const auto known = FindEmojiName(language_, text_.substr(at))) {
        name = known->name;
        end = at + known->size;
    } else if (language_ == "en") {
        name = NameOfCharacter(first);
    }
    if (name.empty())
        return std::nullopt;
    said_ = Apart(name, isBehindWord, !EndsToken(end) && CharacterAt(end) < kFirstPicture);
    return end;
}

std::optional<std::size_t> SpokenForms::Punctuation(std::size_t at) {
    const WrittenForm* const mark = FormBeginning(forms_->punctuation, text_.substr(at));
    if (mark == nullptr)
        return std::nullopt;
    const std::size_t end = at + mark->written.size();
    const bool isWithinWord = !BeginsToken(at) && !EndsToken(end);
    if (isWithinWord)
        return std::nullopt;
    const bool makesPause =
        std::string_view(".,;:!?").find(mark->written) != std::string_view::npos;
    said_ = Apart(std::string(mark->said) + (makesPause ? std::string(mark->written) : ""),
                  at > 0 && g_ascii_isspace(text_[at - 1]) == FALSE, !EndsToken(end));
    return end;
}
