#include "speech/language_forms.h"

#include <algorithm>
#include <iterator>

#include "speech/language_tables.h"
#include "speech/text_language.h"

namespace {

constexpr WrittenForm kUnits[] = {{"km/h", "kilometer-per-hour"},
                                  {"km/s", "kilometer-per-second"},
                                  {"m/s", "meter-per-second"},
                                  {"км/ч", "kilometer-per-hour"},
                                  {"м/с", "meter-per-second"},
                                  {"mph", "mile-per-hour"},
                                  {"km²", "square-kilometer"},
                                  {"km", "kilometer"},
                                  {"км", "kilometer"},
                                  {"m²", "square-meter"},
                                  {"m³", "cubic-meter"},
                                  {"м²", "square-meter"},
                                  {"cm", "centimeter"},
                                  {"см", "centimeter"},
                                  {"mm", "millimeter"},
                                  {"мм", "millimeter"},
                                  {"kg", "kilogram"},
                                  {"кг", "kilogram"},
                                  {"mg", "milligram"},
                                  {"мг", "milligram"},
                                  {"ml", "milliliter"},
                                  {"мл", "milliliter"},
                                  {"°C", "celsius"},
                                  {"°F", "fahrenheit"},
                                  {"kWh", "kilowatt-hour"},
                                  {"kW", "kilowatt"},
                                  {"кВт", "kilowatt"},
                                  {"MW", "megawatt"},
                                  {"kHz", "kilohertz"},
                                  {"MHz", "megahertz"},
                                  {"GHz", "gigahertz"},
                                  {"Hz", "hertz"},
                                  {"kB", "kilobyte"},
                                  {"MB", "megabyte"},
                                  {"GB", "gigabyte"},
                                  {"TB", "terabyte"},
                                  {"hPa", "hectopascal"},
                                  {"kcal", "kilocalorie"},
                                  {"kJ", "kilojoule"},
                                  {"ms", "millisecond"},
                                  {"ha", "hectare"},
                                  {"min", "minute"},
                                  {"sec", "second"},
                                  {"hrs", "hour"},
                                  {"hr", "hour"},
                                  {"h", "hour"},
                                  {"tsp", "teaspoon"},
                                  {"tbsp", "tablespoon"},
                                  {"га", "hectare"},
                                  {"lbs", "pound"},
                                  {"lb", "pound"},
                                  {"oz", "ounce"},
                                  {"ft", "foot"},
                                  {"in", "inch"},
                                  {"m", "meter"},
                                  {"м", "meter"},
                                  {"g", "gram"},
                                  {"l", "liter"},
                                  {"L", "liter"},
                                  {"V", "volt"},
                                  {"W", "watt"}};

constexpr WrittenForm kMoneySigns[] = {
    {"US$", "USD"},  {"$", "USD"},  {"€", "EUR"},   {"£", "GBP"},   {"¥", "JPY"},  {"₽", "RUB"},
    {"руб.", "RUB"}, {"Kč", "CZK"}, {"EUR", "EUR"}, {"USD", "USD"}, {"GBP", "GBP"}};

}  // namespace

const LanguageForms* FormsOfLanguage(std::string_view tag) {
    const std::string_view language = LanguageOnly(tag);
    const LanguageForms* const all[] = {&kBritishForms, &kEnglishForms, &kGermanForms,
                                        &kFrenchForms,  &kSpanishForms, &kItalianForms,
                                        &kRussianForms, &kCzechForms};
    const auto named = [&](std::string_view name) {
        const auto* const found = std::ranges::find(all, name, &LanguageForms::language);
        return found == std::end(all) ? nullptr : *found;
    };
    const LanguageForms* const ofRegion = named(tag.substr(0, 5));
    return ofRegion != nullptr ? ofRegion : named(language);
}

std::span<const WrittenForm> UnitSigns() {
    return kUnits;
}

std::span<const WrittenForm> CurrencySigns() {
    return kMoneySigns;
}

bool IsAmong(std::string_view words, const std::string& word) {
    return !word.empty() && words.find(" " + word + " ") != std::string_view::npos;
}

int RomanValue(std::string_view letters) {
    constexpr std::string_view kOnes[] = {"",  "I",  "II",  "III",  "IV",
                                          "V", "VI", "VII", "VIII", "IX"};
    constexpr std::size_t kMostTens = 3;
    const std::size_t tens = std::min(letters.find_first_not_of('X'), letters.size());
    const auto* const ones = std::ranges::find(kOnes, letters.substr(tens));
    return tens > kMostTens || ones == std::end(kOnes)
               ? 0
               : static_cast<int>(tens) * 10 + static_cast<int>(ones - std::begin(kOnes));
}
