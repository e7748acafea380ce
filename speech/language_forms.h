// How people of a language write what is said in other words: tables, a language each.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>

struct WrittenForm {
    std::string_view written;
    std::string_view said;
};

// "Mio." of "1,2 Mio. €".
struct ScaleForm {
    std::string_view written;
    int zeros;
    bool isOfMoney = false;  // a scale only before a currency's sign
};

enum class DateOrder { kDayFirst, kMonthFirst };

struct LanguageForms {
    std::string_view language;  // "en"; with a region where that differs, "en-US"
    char decimalMark;
    char groupMark;  // ' ': a blank, also one that does not break
    DateOrder dateOrder;
    bool hasDottedDays;                       // "3. Mai"
    std::string_view date;                    // "{d} {m} {y}"
    std::array<std::string_view, 12> months;  // as in a date
    std::string_view plus;                    // of a phone number
    std::string_view minus;
    std::string_view beforeMan;  // before an ordinal behind a name: "the ", "der "
    std::string_view beforeWoman;
    std::string_view ofTheDay;   // articles before a date
    std::string_view ofThatDay;  // words before a date that change it, a blank around each
    std::string_view men;        // names of rulers, a blank around each
    std::string_view women;
    std::string_view counted;  // small words before Roman numerals: " chapitre siglo "
    std::span<const WrittenForm> abbreviations;  // the longer before its beginning
    std::span<const WrittenForm> fractions;      // "1/2"
    std::span<const WrittenForm> punctuation;    // for who wants to hear it
    std::string_view range = {};                 // between the numbers of "5–10"
    std::string_view score = {};                 // between those of "3:2"
    std::string_view dayRange = {};      // between days of one month, both said by their place
    std::string_view andHalf = {};       // behind the number of "1½"
    std::string_view andFraction = " ";  // between the number and the fraction of "2 1/4"
    std::string_view oneAndHalf = {};    // "1½", where it is a word of its own
    // Between a fraction and its unit, but for a half; where there is a word, units stand before
    // the fraction of "2½ kg".
    std::string_view ofFraction = " ";
    std::span<const WrittenForm> units = {};  // of this language alone
    std::span<const ScaleForm> scales = {};
    // Of "½" before a noun: the nouns, a blank around each, and their word.
    std::span<const WrittenForm> halves = {};
    std::string_view ofScale = " ";  // between millions and their currency
    std::string_view atSign = {};    // of an e-mail address, with the blanks around it
    std::string_view dot = {};
    std::string_view orderedNouns = {};  // behind "2.", a blank around each: "Weltkrieg"
};

// Null for a language that has no table.
const LanguageForms* FormsOfLanguage(std::string_view tag);

// Units by their signs, for all languages: "km/h" is CLDR's "kilometer-per-hour".
std::span<const WrittenForm> UnitSigns();
// Currencies by their signs: "€" is "EUR".
std::span<const WrittenForm> CurrencySigns();

// Whether the word is one of those that stand with a blank around each.
bool IsAmong(std::string_view words, const std::string& word);
// 0 for what is no Roman numeral as people write it, up to 39.
int RomanValue(std::string_view letters);
