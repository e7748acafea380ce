// What is written in digits, signs and short forms and said in words: "25.12.2026", "$5.20",
// "25 km/h", "z. B.", "Henry VIII".
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "speech/language_forms.h"
#include "speech/number_words.h"
#include "speech/pronunciations.h"

constexpr std::string_view kTrueMinus = "\xe2\x88\x92";
constexpr std::string_view kEnDash = "–";

// What an engine says well by itself, joined by "|".
using SaidByEngine = unsigned;
constexpr SaidByEngine kSaysMoney = 1u << 0;
constexpr SaidByEngine kSaysFractions = 1u << 1;
constexpr SaidByEngine kSaysRomanNumerals = 1u << 2;
constexpr SaidByEngine kSaysEmoji = 1u << 3;
constexpr SaidByEngine kOmitsNumbers = 1u << 4;  // nothing is heard of digits

// The user's choices.
struct SpeakingChoices {
    bool spellsCapitals = false;   // "NASA" letter by letter
    bool saysPunctuation = false;  // by name
    bool saysEmoji = true;
};

// Asked from a text's beginning to its end; one thread. Looks at a few words around the place, so
// that it costs the same in a text of any length.
class SpokenForms {
public:
    SpokenForms() = default;  // nothing is said in other words
    // The text (UTF-8) outlives this; language is the voice's tag.
    SpokenForms(std::string_view text, std::string_view language, SaidByEngine byEngine,
                SpeakingChoices choices);

    bool IsEmojiLeftToEngine() const { return isOn_ && (byEngine_ & kSaysEmoji) != 0; }
    // The engine says no digits in this language, and nobody here knows their words.
    bool AreDigitsSilent() const;
    // Of a form that begins here.
    std::optional<SaidDifferently::Stretch> At(std::size_t at);

private:
    struct Amount {
        std::size_t end = 0;
        std::string plain;  // "1234.5"
    };

    std::optional<std::size_t> FormAt(std::size_t at);  // its end; its words are in said_
    std::optional<std::size_t> NumberAt(std::size_t at);
    std::optional<std::size_t> CountedAt(std::size_t at);
    std::optional<std::size_t> WordAt(std::size_t at);
    std::optional<std::size_t> Negative(std::size_t at);
    std::optional<std::size_t> Date(std::size_t at);
    std::optional<std::size_t> DottedDay(std::size_t at);
    std::optional<std::size_t> Year(std::size_t at);
    std::optional<std::size_t> YearSpan(std::size_t at, int year, std::size_t end);
    std::optional<std::size_t> RussianPlace(int number, std::size_t end);
    std::optional<std::size_t> Fraction(std::size_t at);
    std::optional<std::size_t> MixedNumber(std::size_t at);
    std::optional<std::size_t> Score(std::size_t at);
    std::optional<std::size_t> Range(std::size_t at);
    std::optional<std::size_t> DaysOfMonth(std::size_t at);
    std::optional<std::size_t> Place(std::size_t at);
    std::optional<std::size_t> Scaled(const Amount& amount);
    std::optional<std::size_t> Clock(std::size_t at);
    std::optional<std::size_t> Phone(std::size_t at);
    std::optional<std::size_t> MoneyBehindSign(std::size_t at);
    std::optional<std::size_t> MoneyBefore(const Amount& amount);
    std::optional<std::size_t> WithUnit(const Amount& amount);
    std::optional<std::size_t> Abbreviation(std::size_t at);
    std::optional<std::size_t> RomanNumeral(std::size_t at);
    std::optional<std::size_t> Mail(std::size_t at);
    std::optional<std::size_t> WebAddress(std::size_t at);
    std::optional<std::size_t> Capitals(std::size_t at);
    std::optional<std::size_t> Emoji(std::size_t at);
    std::size_t EmojiEnd(std::size_t at) const;
    std::optional<std::size_t> Punctuation(std::size_t at);

    const WrittenForm* UnitAt(std::size_t at, std::size_t& end) const;
    bool IsMonth(const std::string& word) const;
    int MonthAt(std::size_t at, std::size_t& end) const;
    bool ReadAmount(std::size_t at, Amount& amount) const;
    int ReadDigits(std::size_t& at, std::size_t most) const;  // -1: none, or more of them
    std::size_t BehindBlank(std::size_t at) const;            // at itself where none stands
    char32_t CharacterAt(std::size_t at) const;  // 0 at the end, and where there is none
    std::size_t SizeAt(std::size_t at) const;
    std::size_t StartBefore(std::size_t at) const;  // of the character before the place
    bool BeginsToken(std::size_t at) const;
    bool EndsToken(std::size_t at) const;
    std::string WordBefore(std::size_t at) const;
    std::string WordBehind(std::size_t at) const;
    const WrittenForm* FractionAt(std::size_t at, std::size_t& end) const;
    std::string DayWords(int day, std::size_t at) const;
    RussianCase CaseAt(std::size_t at) const;
    using RussianNouns = std::array<std::string_view, 4>;  // by RussianCase
    static constexpr RussianNouns kRussianYears = {"год", "года", "году", "году"};
    static constexpr RussianNouns kRussianCenturies = {"век", "века", "веку", "веке"};
    std::optional<std::size_t> RussianShort(std::size_t at, int number, std::size_t end,
                                            const RussianNouns& nouns);
    std::string SmallWordBefore(std::size_t at) const;
    bool IsOnThatDay(std::size_t at) const;
    bool IsOrdered(std::size_t at, const std::string& noun) const;
    bool GoesOnBehind(std::size_t at) const;

    std::string_view text_;
    std::string language_;  // without region
    const LanguageForms* forms_ = nullptr;
    SaidByEngine byEngine_ = 0;
    SpeakingChoices choices_;
    bool isOn_ = false;
    std::string said_;
};
