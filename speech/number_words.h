// Amounts in the words of a language, by what ICU knows of it. Any thread.
#pragma once

#include <string>
#include <string_view>

// "25 kilometers per hour" of "25", "speed-kilometer-per-hour" (CLDR's name of the unit). The
// number is plain, with a point ("1234.5"). Empty where there are no such words.
std::string UnitWords(std::string_view language, std::string_view unit, std::string_view number);

// "5 euros", "5 euros 20" of "5.20", "EUR"; a country's own currency without its name.
std::string MoneyWords(std::string_view language, std::string_view currency,
                       std::string_view number);

// "1,2 Millionen" of "1.2" with six zeros.
std::string ScaledWords(std::string_view language, std::string_view number, int zeros);

// "עשרים וחמש" of "25", as in counting.
std::string CountWords(std::string_view language, std::string_view number);

enum class OrdinalOf {
    kMan,     // "Heinrich der Achte", "Филипп второй"
    kWoman,   // "Elisabeth die Zweite", "Екатерина вторая"
    kDay,     // "dritter Mai", "третье мая"
    kTheDay,  // "der dritte Mai"
    kThatDay  // with an article or a preposition before it: "am dritten Mai"
};
// Empty where the language says plain numbers there, or for a number that nobody counts so.
std::string OrdinalWords(std::string_view language, OrdinalOf of, int number);
// "vingtième", "первая": of what is counted by its place, in French, Spanish, Italian and Russian;
// kTheDay is its genitive, kThatDay its locative there. Empty elsewhere.
std::string PlaceWords(std::string_view language, OrdinalOf of, int number);

enum class RussianCase { kNominative, kGenitive, kDative, kLocative };
// "тысяча девятьсот сорок пятом": of a year or a century.
std::string RussianPlaceWords(RussianCase wanted, int number);
