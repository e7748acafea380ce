// Amounts and what is counted by its place: fractions, ranges, units, "XXe", "1. bis 5.".
#include <glib.h>

#include <algorithm>
#include <array>

#include "speech/number_words.h"
#include "speech/spoken_forms.h"

namespace {

// Verses and times.
constexpr std::string_view kBeforeOtherPairs =
    " verse chapter psalm at vers kapitel psaume um alle a las ";
constexpr std::string_view kHalf = "1/2";
constexpr WrittenForm kVulgarFractions[] = {{"½", "1/2"}, {"¼", "1/4"}, {"¾", "3/4"}, {"⅓", "1/3"},
                                            {"⅔", "2/3"}, {"⅕", "1/5"}, {"⅖", "2/5"}, {"⅗", "3/5"},
                                            {"⅘", "4/5"}, {"⅙", "1/6"}, {"⅚", "5/6"}, {"⅛", "1/8"},
                                            {"⅜", "3/8"}, {"⅝", "5/8"}, {"⅞", "7/8"}};
// "1/5" may as well be the first of five: what is less than a quarter's part asks for a unit.
constexpr char kMostSureParts = '4';
constexpr std::size_t kMostPlaceDigits = 2;
constexpr std::size_t kMostYearDigits = 4;
constexpr std::size_t kMostRomanLetters = 7;

struct PlaceEnding {
    std::string_view language;
    std::string_view written;
    OrdinalOf of;
};
// The longer before its beginning.
constexpr PlaceEnding kPlaceEndings[] = {
    {"fr", "ère", OrdinalOf::kWoman}, {"fr", "ème", OrdinalOf::kMan},
    {"fr", "er", OrdinalOf::kMan},    {"fr", "re", OrdinalOf::kWoman},
    {"fr", "e", OrdinalOf::kMan},     {"fr", "ᵉ", OrdinalOf::kMan},
    {"es", ".º", OrdinalOf::kMan},    {"es", ".ª", OrdinalOf::kWoman},
    {"es", "º", OrdinalOf::kMan},     {"es", "ª", OrdinalOf::kWoman},
    {"it", "º", OrdinalOf::kMan},     {"it", "ª", OrdinalOf::kWoman},
    {"ru", "-й", OrdinalOf::kMan},    {"ru", "-я", OrdinalOf::kWoman},
    {"ru", "-го", OrdinalOf::kTheDay}};
// Behind a Roman numeral that says which of them.
constexpr PlaceEnding kCenturies[] = {{"it", "secolo", OrdinalOf::kMan},
                                      {"it", "sec", OrdinalOf::kMan},
                                      {"ru", "век", OrdinalOf::kMan},
                                      {"ru", "века", OrdinalOf::kTheDay},
                                      {"ru", "веке", OrdinalOf::kThatDay}};

std::string WithoutNumber(const std::string& words) {
    return words.substr(std::min(words.find(' '), words.size() - 1) + 1);
}

}  // namespace

// What stands at the place; its end comes behind the stop of a short form within a sentence.
const WrittenForm* SpokenForms::UnitAt(std::size_t at, std::size_t& end) const {
    for (const auto units : {forms_->units, UnitSigns()})
        for (const WrittenForm& unit : units) {
            end = at + unit.written.size();
            const std::string_view rest = text_.substr(std::min(end, text_.size()));
            // "5 in. wide", not "5 in all".
            const bool isWord = unit.written == "in" && !rest.starts_with(".");
            if (!text_.substr(at).starts_with(unit.written) || !EndsToken(end) || isWord ||
                rest.starts_with("²") || rest.starts_with("³") || rest.starts_with("/"))
                continue;
            const std::size_t next = BehindBlank(end + 1);
            if (rest.starts_with(".") && next > end + 1 &&
                (g_unichar_islower(CharacterAt(next)) != FALSE ||
                 g_unichar_isdigit(CharacterAt(next)) != FALSE))
                ++end;
            return &unit;
        }
    return nullptr;
}

std::optional<std::size_t> SpokenForms::WithUnit(const Amount& amount) {
    const std::size_t place = BehindBlank(amount.end);
    std::size_t end = 0;
    const WrittenForm* const unit = UnitAt(place, end);
    // "the 5 g" may be the letter: what is one letter stands right behind its number.
    if (unit == nullptr || (unit->written.size() == 1 && place > amount.end + 1))
        return std::nullopt;
    if (unit->written == "m" && place == amount.end && language_ == "en")  // "5m people"
        return std::nullopt;
    said_ = UnitWords(language_, unit->said, amount.plain);
    return said_.empty() ? std::nullopt : std::optional(end);
}

// "1/2", "½"; its end comes behind it.
const WrittenForm* SpokenForms::FractionAt(std::size_t at, std::size_t& end) const {
    std::string_view written;
    end = at;
    for (const WrittenForm& vulgar : kVulgarFractions)
        if (text_.substr(at).starts_with(vulgar.written)) {
            written = vulgar.said;
            end = at + vulgar.written.size();
        }
    for (const WrittenForm& form : forms_->fractions) {
        if (written.empty() && text_.substr(at).starts_with(form.written))
            end = at + form.written.size();
        else if (written != form.written)
            continue;
        const bool goesOn = end + 1 < text_.size() && (text_[end] == '/' || text_[end] == '.') &&
                            g_ascii_isdigit(text_[end + 1]);
        std::size_t behind = 0;
        const bool isSure = !written.empty() || form.written.back() <= kMostSureParts ||
                            UnitAt(BehindBlank(end), behind) != nullptr;
        return EndsToken(end) && !goesOn && isSure ? &form : nullptr;
    }
    return nullptr;
}

// "1/2", "½", "1/4 kg".
std::optional<std::size_t> SpokenForms::Fraction(std::size_t at) {
    std::size_t end = 0;
    const WrittenForm* const form = FractionAt(at, end);
    if (form == nullptr || (byEngine_ & kSaysFractions) != 0)
        return std::nullopt;
    said_ = form->said;
    const std::size_t place = BehindBlank(end);
    std::size_t behind = 0;
    const WrittenForm* const unit = place > end ? UnitAt(place, behind) : nullptr;
    // The words of a part are those of 1.5 where nouns have cases.
    const bool hasCases = language_ == "ru" || language_ == "cs";
    const std::string noun =
        unit == nullptr ? WordBehind(place)
                        : WithoutNumber(UnitWords(language_, unit->said, hasCases ? "1.5" : "1"));
    for (const WrittenForm& half : forms_->halves)
        if (form->written == kHalf && IsAmong(half.written, noun.substr(0, noun.find(' '))))
            said_ = half.said;
    if (unit == nullptr || noun.empty())
        return end;
    // But "one eighth teaspoon salt".
    if (form->written != kHalf && language_ == "en" && !noun.ends_with("spoon"))
        said_ += std::string_view("ohi").find(noun[0]) == std::string_view::npos ||
                         noun.starts_with("he")
                     ? " of a"
                     : " of an";
    said_ += std::string(form->written == kHalf ? " " : forms_->ofFraction) + noun;
    return behind;
}

// "1½", "2 1/4 kg", "2½ kg".
std::optional<std::size_t> SpokenForms::MixedNumber(std::size_t at) {
    Amount amount;
    std::size_t end = 0;
    if ((byEngine_ & kSaysFractions) != 0 || !ReadAmount(at, amount) ||
        amount.plain.find('.') != std::string::npos)
        return std::nullopt;
    const WrittenForm* const form = FractionAt(BehindBlank(amount.end), end);
    if (form == nullptr)
        return std::nullopt;
    const bool isHalf = form->written == kHalf;
    const bool isOneAndHalf = isHalf && amount.plain == "1" && !forms_->oneAndHalf.empty();
    const std::string part = isOneAndHalf
                                 ? ""
                                 : std::string(isHalf ? forms_->andHalf : forms_->andFraction) +
                                       std::string(isHalf ? "" : form->said);
    said_ = isOneAndHalf ? std::string(forms_->oneAndHalf)
                         : std::string(text_.substr(at, amount.end - at));
    std::size_t behind = 0;
    const WrittenForm* const unit = UnitAt(BehindBlank(end), behind);
    // "1 chilogrammo e mezzo", "2 kilogrammes et demi"
    const bool isNounFirst = forms_->ofFraction != " ";
    const std::string counted = amount.plain + (isNounFirst ? "" : ".5");
    const std::string noun =
        unit == nullptr ? "" : WithoutNumber(UnitWords(language_, unit->said, counted));
    if (!noun.empty() && isNounFirst)
        said_ += " " + noun;
    said_ += part;
    if (!noun.empty() && !isNounFirst)
        said_ += " " + noun;
    return noun.empty() ? end : behind;
}

// "won 3:2"; behind a name it may be a verse.
std::optional<std::size_t> SpokenForms::Score(std::size_t at) {
    std::size_t end = at;
    if (forms_->score.empty() || ReadDigits(end, 2) < 0 || end >= text_.size() || text_[end] != ':')
        return std::nullopt;
    const std::size_t second = ++end;
    if (ReadDigits(end, 1) < 0 || !EndsToken(end) || text_.substr(end).starts_with(":"))
        return std::nullopt;
    const std::string before = WordBefore(at);
    if (before.empty() || g_unichar_islower(g_utf8_get_char(before.c_str())) == FALSE ||
        IsAmong(kBeforeOtherPairs, before) || WordBehind(BehindBlank(end)) == "Uhr")
        return std::nullopt;
    said_ = std::string(text_.substr(at, second - 1 - at)) + std::string(forms_->score) +
            std::string(text_.substr(second, end - second));
    return end;
}

// "5–10", "5-10 km": a hyphen stands in many other numbers, too.
std::optional<std::size_t> SpokenForms::Range(std::size_t at) {
    Amount first;
    // "2024–10–05" is none.
    const std::string_view before = text_.substr(0, at);
    for (const std::string_view sign : {std::string_view("-"), kEnDash, kTrueMinus})
        if (before.ends_with(sign))
            return std::nullopt;
    if (forms_->range.empty() || !ReadAmount(at, first))
        return std::nullopt;
    const std::string_view rest = text_.substr(first.end);
    const bool isDash = rest.starts_with(kEnDash);
    if (!isDash && !rest.starts_with("-"))
        return std::nullopt;
    const std::size_t second = first.end + (isDash ? kEnDash.size() : 1);
    Amount last;
    if (!ReadAmount(second, last))
        return std::nullopt;
    auto end = MoneyBefore(last);
    end = end ? end : WithUnit(last);
    if (!end) {
        const std::string_view behind = text_.substr(last.end);
        const bool goesOn = behind.starts_with("-") || behind.starts_with(kEnDash) ||
                            (behind.size() > 1 && behind[0] == '.' && g_ascii_isdigit(behind[1]));
        const bool isPhone = first.plain.size() == 3 && last.plain.size() == 4;  // "555–1234"
        if (!isDash || goesOn || isPhone || !EndsToken(last.end))
            return std::nullopt;
        said_ = text_.substr(second, last.end - second);
        end = last.end;
    }
    said_ = std::string(text_.substr(at, first.end - at)) + std::string(forms_->range) + said_;
    return end;
}

// "1er", "XXe", "3.ª", "2-я", "XX secolo".
std::optional<std::size_t> SpokenForms::Place(std::size_t at) {
    std::size_t end = at;
    int number = language_ == "ru" ? ReadDigits(end, kMostYearDigits) : -1;
    if (number > 0)
        if (const auto last = RussianPlace(number, end))
            return last;
    end = at;
    number = ReadDigits(end, kMostPlaceDigits);
    const bool isRoman = end == at;
    if (isRoman) {
        while (end < text_.size() && end - at < kMostRomanLetters &&
               std::string_view("IVX").find(text_[end]) != std::string_view::npos)
            ++end;
        number = end == at ? 0 : RomanValue(text_.substr(at, end - at));
    }
    if (number < 1)
        return std::nullopt;
    const std::size_t place = BehindBlank(end);
    const std::string behind = WordBehind(place);
    if (isRoman && language_ == "ru" && place > end && behind == "в")
        return RussianShort(at, number, place + behind.size(), kRussianCenturies);
    for (const PlaceEnding& century : kCenturies)
        if (isRoman && EndsToken(end) && century.language == language_ &&
            behind == century.written) {
            said_ = PlaceWords(language_, century.of, number);
            return said_.empty() ? std::nullopt : std::optional(end);
        }
    // "Im XX. Jahrhundert"
    if (const std::size_t noun = BehindBlank(end + 1); isRoman && language_ == "de" &&
                                                       CharacterAt(end) == '.' && noun > end + 1 &&
                                                       IsOrdered(at, WordBehind(noun))) {
        said_ = DayWords(number, at);
        return end + 1;
    }
    for (const PlaceEnding& ending : kPlaceEndings) {
        const std::size_t last = end + ending.written.size();
        if (ending.language != language_ || (isRoman && language_ != "fr") ||
            !text_.substr(end).starts_with(ending.written) || !EndsToken(last))
            continue;
        // Many type the sign for degrees.
        if (const std::string noun = WordBehind(BehindBlank(last));
            ending.written == "º" && (noun == "C" || noun == "F" || noun.starts_with("grad")))
            return std::nullopt;
        said_ = PlaceWords(language_, ending.of, number);
        return said_.empty() ? std::nullopt : std::optional(last);
    }
    return std::nullopt;
}

// "90-е годы", "в 1990-х", "5-е место".
std::optional<std::size_t> SpokenForms::RussianPlace(int number, std::size_t end) {
    constexpr std::string_view kMany = "-е";
    constexpr std::string_view kOfMany = "-х";
    const std::string_view rest = text_.substr(end);
    const std::size_t last = end + kMany.size();
    const bool isOfMany = rest.starts_with(kOfMany);
    if ((!isOfMany && !rest.starts_with(kMany)) || !EndsToken(last))
        return std::nullopt;
    const std::string noun = WordBehind(BehindBlank(last));
    if (!isOfMany && (noun.ends_with("о") || noun.ends_with("е"))) {
        said_ = OrdinalWords(language_, OrdinalOf::kThatDay, number);
        return said_.empty() ? std::nullopt : std::optional(last);
    }
    // "3-х" is no ordinal.
    const std::string one = RussianPlaceWords(RussianCase::kNominative, number);
    constexpr std::string_view kEnding = "ый";
    const bool isThird = one.ends_with("ий");
    if (number < 5 || isThird || one.size() <= kEnding.size())
        return std::nullopt;
    said_ = one.substr(0, one.size() - kEnding.size()) + (isOfMany ? "ых" : "ые");
    return last;
}

// "1,2 Mio. €", "10 k€", "5 Mrd. Menschen".
std::optional<std::size_t> SpokenForms::Scaled(const Amount& amount) {
    const std::size_t place = BehindBlank(amount.end);
    for (const ScaleForm& scale : forms_->scales) {
        const std::size_t end = place + scale.written.size();
        if (!text_.substr(place).starts_with(scale.written))
            continue;
        const std::string words = ScaledWords(language_, amount.plain, scale.zeros);
        const std::size_t behind = BehindBlank(end);
        for (const WrittenForm& sign : CurrencySigns()) {
            const std::size_t last = behind + sign.written.size();
            if ((byEngine_ & kSaysMoney) != 0 || !text_.substr(behind).starts_with(sign.written) ||
                !EndsToken(last))
                continue;
            const std::string noun = WithoutNumber(MoneyWords(language_, sign.said, "5"));
            std::string of(scale.zeros > 3 ? forms_->ofScale : " ");
            if (of == " de " && language_ == "fr" && noun.starts_with("e"))
                of = " d'";
            said_ = words + of + noun;
            return last;
        }
        const bool isWhole = scale.written.ends_with('.') || EndsToken(end);
        if (scale.isOfMoney || !isWhole || words.empty())
            continue;
        said_ = words;
        return end;
    }
    return std::nullopt;
}
