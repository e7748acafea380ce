#include "speech/text_preparation.h"

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>
#include <ctime>
#include <string>
#include <vector>

namespace {

using enum VoiceCharset;

struct Case {
    const char* what;
    std::string text;
    std::string expected;
};

void Check(const std::vector<Case>& cases, VoiceCharset charset = kAscii,
           const char* language = "") {
    for (const Case& test : cases)
        EXPECT_EQ(PrepareText(test.text, charset, language).text, test.expected) << test.what;
}

TEST(TextPreparation, PlainTextWithSomethingToSayInEachLinePassesUnchanged) {
    for (const std::string text :
         {"Hello world.", "One line,\nand another - with a dash.\n\nA paragraph.\n",
          "\"Quoted!\" she said; (he) didn't...  Two  blanks\tand a tab", "a -- b: c :-) d",
          "$5.00 + 50% = x_y @ http://www.example.com/a?b=c#d", "He left. - She stayed.",
          "Hello! :-) Bye.", "Really? ? (Yes)!", "So. ... and on", "\n\n leading and trailing \n\n",
          "etc. etc., e.g. Mr. Smith"}) {
        const PreparedText prepared = PrepareText(text, kAscii);
        EXPECT_EQ(prepared.text, text);
        EXPECT_TRUE(prepared.hasWords) << text;
    }
}

TEST(TextPreparation, TypographyBecomesPlainForEveryVoice) {
    for (const VoiceCharset charset : {kAscii, kLatin1, kUtf8})
        Check({{"quotes", "“It’s” ‘so’ «there» „low“", "\"It's\" 'so' \"there\" \"low\""},
               {"number range", "pages 3–5, non‑breaking", "pages 3-5, non-breaking"},
               {"dash with a pause", "one – two — three—four", "one -- two -- three -- four"},
               {"ellipsis", "wait…what… now", "wait... what... now"},
               {"ligatures", "oﬃce ﬁre ﬂow", "office fire flow"},
               {"blanks", "a\u00A0b\u2009c\u3000d\u200Be", "a b c de"},
               {"invisible", "\uFEFFso\u00ADft hy\u2060phen", "soft hyphen"},
               {"line ends", "a\r\nb\rc\u2028d\fe", "a\nb\nc\nd\ne"},
               {"control bytes", std::string("a\0b\7c\177d", 7), "abcd"},
               {"invalid bytes", "o\xC3k \xFF\xE2\x82 then\xF0\x9F", "ok  then"}},
              charset);
}

TEST(TextPreparation, EnglishVoicesGetAsciiWithAccentsFoldedAndSignsInWords) {
    Check({{"accents", "café naïve Ångström Dvořák", "cafe naive Angstrom Dvorak"},
           {"combining accents", "cafe\u0301", "cafe"},
           {"letters of their own", "straße, Łódź, smørrebrød, Æsop, þing",
            "strasse, Lodz, smorrebrod, AEsop, thing"},
           {"full width", "ＡＢ１２", "AB12"},
           {"amounts", "€5, 5€ or £1 and £2.50. ¥3 million!",
            "5 euros, 5 euros or 1 pound and 2.50 pounds. 3 million yen!"},
           {"the bare sign", "the € sign", "the euro sign"},
           {"temperatures", "20°C to 68 °F at 90°.",
            "20 degrees Celsius to 68 degrees Fahrenheit at 90 degrees."},
           {"fractions", "½ cup, 2½ cups, ¾", "one half cup, 2 and one half cups, three quarters"},
           {"arithmetic", "5×3 ≤ 16 ± 1", "5 times 3 less than or equal to 16 plus or minus 1"},
           {"powers and footnotes", "10 m², 10⁶, E=mc²; word¹ H₂O",
            "10 m squared, 10 to the 6, E=mc squared; word H2O"},
           {"signed and long powers", "10⁻⁶ m, 9.8 m s⁻², 2¹⁰ (a+b)³ x⁴",
            "10 to the minus 6 m, 9.8 m s to the minus 2, 2 to the 10 (a+b) cubed x to the 4"},
           {"footnotes", "word¹², claim¹⁰ said² ⁵", "word, claim said "},
           {"minus", "5 − 3, x − y, −4 °C; so − he",
            "5 minus 3, x minus y, minus 4 degrees Celsius; so - he"},
           {"amounts in short", "€3bn, £250k; € 5 or ¥1.5m. € 1, 5k, £3by",
            "3 billion euros, 250 thousand pounds; 5 euros or 1.5 million yen. 1 euro, 5k, 3 "
            "pounds by"},
           {"ohms", "5 Ω, 1 Ω, 10kΩ, 2 kΩ; Ω", "5 ohms, 1 ohm, 10k ohms, 2 k ohms; omega"},
           {"Greek symbol, Greek word", "π is 3; Αθήνα is far", "pi is 3;  is far"},
           {"trade", "© 2020 Foo™", "copyright 2020 Foo trademark"},
           {"nothing stands for it", "I❤you 😀. Привет, friend", "I you.,\n\n friend"}});
}

TEST(TextPreparation, OtherVoicesGetTheirCharset) {
    Check({{"Latin 1", "café œuf ő €", "caf\xE9 oeuf o "}}, kLatin1);
    Check({{"Latin 2", "Dvořák ő e\u0301 r\u030C", "Dvo\xF8\xE1k \xF5 \xE9 \xF8"}}, kLatin2);
    Check({{"Latin 9", "œ € ½ Š", "\xBD \xA4 1/2 \xA6"}}, kLatin9);
    Check({{"Italian", "Costa €5, 1 € ≈ poco.", "Costa 5 euro, 1 euro circa poco."}}, kLatin1,
          "it");
    Check({{"Czech", "Stojí £5 ≥ ½", "Stoj\xED 5 liber v\xECt\xB9\xED nebo rovno p\xF9l"}}, kLatin2,
          "cs-CZ");
    Check({{"signs that the engine says", "20°C 😀 ©", "20°C 😀 ©"}}, kUnicode);
    Check({{"letter and mark", "e\u0301 r\u030C", "e\u0301 r\u030C"},
           {"Hindi", "नमस्ते 😀 दुनिया।", "नमस्ते  दुनिया।"}},
          kUtf8);
}

TEST(TextPreparation, LinesAndPunctuationWithNothingToSayGoAndTheirPauseStays) {
    Check({{"line of dashes", "Hello.\n----\nWorld.", "Hello.\n\nWorld."},
           {"line of stars", "Hello\n * * * \nWorld", "Hello\n\nWorld"},
           {"lone quote between paragraphs", "Hi!\n\n\"\n\nBye", "Hi!\n\n\n\nBye"},
           {"after sentence punctuation", "He said \"!!!\" \"???\" and left.",
            "He said \"!!!\" and left."},
           {"between sentences", "Stop! ??? Go. Now? ... Yes", "Stop! Go.\n\n Now? Yes"},
           {"behind a colon or more", "I said: -- no. Really?! ... Yes. Well... -- yes",
            "I said: no. Really?! Yes.\n\n Well... yes"},
           {"dashes in a row", "a -- -- b", "a -- b"},
           {"at the ends", "... so! ***", " so! "},
           {"items of a list", "1. one\n2) two\n- three\n* four",
            "1. one\n\n2) two\n\n- three\n\n* four"},
           {"dropped letters leave punctuation", "One! (Привет!) Two", "One! (!) Two"},
           {"only in another script", "One\nПривет!\nTwo", "One\n\nTwo"}});
}

TEST(TextPreparation, TextWithoutWordsSaysSo) {
    for (const std::string text :
         {"", "   \n\t", "----", "?!", "😀😀", "Привет", "\x01\x02", "\xFF\xFE"})
        EXPECT_FALSE(PrepareText(text, kAscii).hasWords) << text;
    for (const std::string text : {"½ ²", "ª º"})
        EXPECT_FALSE(PrepareText(text, kLatin1).hasWords) << text;
    EXPECT_TRUE(PrepareText("Привет", kUtf8).hasWords);
    EXPECT_TRUE(PrepareText("ő", kLatin2).hasWords);
}

TEST(TextPreparation, WhatTheVoiceCannotSayIsToldByKindAndAmount) {
    const struct {
        const char* text;
        VoiceCharset charset;
        const char* told;
    } cases[] = {
        {"The café is “here” — 5 €.", kAscii, ""},
        {"Он сказал «да» and left 😀😀 for नमस्ते.", kAscii,
         "3 words in Cyrillic, 2 signs and 1 word in Devanagari were left out, because the chosen "
         "voice cannot say them."},
        {"So Привет.", kLatin1,
         "1 word in Cyrillic was left out, because the chosen voice cannot say it."},
        {"Привет नमस्ते 😀", kUtf8, "1 sign was left out, because the chosen voice cannot say it."},
    };
    for (const auto& [text, charset, told] : cases) {
        TextUnits units(text, charset);
        for (TextUnit unit; units.Next(unit);) {
        }
        EXPECT_EQ(units.Unsayable().Message(), told);
    }
    // Of an engine that says no digits: in a language whose numbers have words here, and in none.
    for (const auto& [language, told] :
         {std::pair("he", ""), std::pair("tk",
                                         "2 numbers were left out, because the chosen voice "
                                         "cannot say them.")}) {
        const std::string text = "Bu 25 we 7.";
        TextUnits units(text, kUtf8, language, {}, SpokenForms(text, language, kOmitsNumbers, {}));
        for (TextUnit unit; units.Next(unit);) {
        }
        EXPECT_EQ(units.Unsayable().Message(), told);
    }
}

// Each unit with the stretch of the user's text that it stands for.
std::string UnitsAndSources(const std::string& text) {
    std::string shown;
    TextUnits units(text, kAscii);
    for (TextUnit unit; units.Next(unit);)
        shown += unit.text + "<" +
                 text.substr(unit.sourceBegin, unit.sourceEnd - unit.sourceBegin) + ">|";
    return shown;
}

TEST(TextPreparation, UnitsAreTheEnginesOwnAndKnowTheirPlaceInTheText) {
    const struct {
        std::string text;
        std::string units;
    } cases[] = {
        {"It’s Dr. Smith. He’s in. “Café!”",
         "It's Dr. Smith. <It’s Dr. Smith.>|He's in. <He’s in.>|\"Cafe!\"<“Café!”>|"},
        {"one. two.\nthree etc.\nfour etc.  Five",
         "one. two.\n<one. two.>|"
         "three etc.\nfour etc.  <three etc.\nfour etc.>|"
         "Five<Five>|"},
        {"In the U.S.S.R., it (is)... Well?! 20°C; €5 million: ok",
         "In the U.S.S.R., it (is)... <In the U.S.S.R., it (is)...>|Well?! <Well?!>|"
         "20 degrees Celsius; <20°C;>|5 million euros: <€5 million:>|ok<ok>|"},
        {"\n😀 a — b\n\n***\n\nc ... ... *** \n\nd 😀\n",
         "\n a -- <a —>|b\n\n<b>|\n\nc ... <c ...>| \n\nd \n<d>|"},
        {"Yes! ** no. ** - \n\n😀 ** ! ok",
         "Yes! <Yes!>|** no. ** - \n\n<** no. ** ->| ** ! ok<** ! ok>|"},
    };
    for (const auto& test : cases)
        EXPECT_EQ(UnitsAndSources(test.text), test.units);
}

// Some pages of a text whose later part cannot be touched. Never given back.
std::string_view Guarded(const std::string& text) {
    const std::size_t size = text.size() & ~std::size_t{4095};
    auto* const at = static_cast<char*>(
        ::mmap(nullptr, 2 * size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    std::copy_n(text.data(), size, at);
    ::mprotect(at + size, size, PROT_NONE);
    return {at, 2 * size};
}

TEST(TextPreparation, FirstUnitNeedsNoMoreOfTheTextThanItself) {
    for (const std::string rest : {"More. ", "a", "😀", " ", "-", "- ", "---\n", "\xE2\x80"}) {
        std::string text = "A first sentence. ";
        while (text.size() < 16384)
            text += rest;
        TextUnits units(Guarded(text), kAscii);
        TextUnit unit;
        ASSERT_TRUE(units.Next(unit));
        EXPECT_TRUE(unit.text.starts_with("A first sentence.")) << unit.text;
        EXPECT_LT(unit.sourceEnd, 600U);
    }
}

TEST(TextPreparation, LongRunsAndUnitsAreCut) {
    std::string addresses;
    std::string clauses;
    std::string hindi;
    for (int i = 0; i < 500; ++i) {
        addresses += "http://www.example.com/a/rather/long/path/page.html?x=1\n";
        clauses += "a clause of some thirty letters, ";
        hindi += "नन";
    }
    for (const VoiceCharset charset : {kAscii, kUtf8}) {
        const std::tuple<std::string, std::size_t, std::size_t> cases[] = {
            {std::string(100000, 'a'), 150, 260},
            {addresses, 440, 510},
            {clauses, 300, 340},
            {std::string(100000, '-') + "end", 3, 300}};
        for (const auto& [text, shortest, longest] : cases) {
            TextUnits units(text, charset);
            for (TextUnit unit; units.Next(unit);) {
                EXPECT_LE(unit.text.size(), longest);
                const bool isLast = unit.sourceEnd + 600 > text.size();
                EXPECT_GE(unit.text.size(), isLast ? 1 : shortest);
            }
        }
    }
    std::string cut = PrepareText(hindi, kUtf8).text;
    std::erase(cut, '\n');
    EXPECT_EQ(cut, hindi) << "cut inside a character";
}

TEST(TextPreparation, AMegabyteTakesNoLongerThanLinear) {
    const auto seconds = [](const std::string& unit, std::size_t size) {
        std::string text;
        while (text.size() < size)
            text += unit;
        const std::clock_t start = std::clock();
        EXPECT_LE(PrepareText(text, kAscii).text.size(), 12 * size + 100);
        return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    };
    for (const std::string unit : {"It was the best of times. ", "é", "\n", " ", "!! ", "- ",
                                   "-- \n", "😀 ", "€", "²", "a 😀", "a- ", "\xE2\x80"}) {
        const double half = seconds(unit, 250000);
        const double whole = seconds(unit, 1000000);
        EXPECT_LT(whole, 8 * half + 0.2) << unit;
    }
}

}  // namespace
