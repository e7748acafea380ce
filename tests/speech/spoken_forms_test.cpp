#include "speech/spoken_forms.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <tuple>

#include "speech/speech_engines.h"
#include "speech/text_preparation.h"
#include "tests/support/scratch_folder.h"

namespace {

std::string SaidIn(const std::string& language, const std::string& text, SaidByEngine byEngine = 0,
                   SpeakingChoices choices = {}) {
    SpokenForms forms(text, language, byEngine, choices);
    std::string said;
    for (std::size_t at = 0; at < text.size();) {
        if (const auto form = forms.At(at)) {
            said += form->said;
            at = form->end;
        } else {
            said += text[at++];
        }
    }
    return said;
}

TEST(SpokenForms, AreSaidAsPeopleOfTheLanguageSayThem) {
    const struct {
        const char* language;
        const char* written;
        const char* said;
    } cases[] = {
        {"en-US", "On 12/25/2026, 2026-11-22", "On December 25, 2026, November 22, 2026"},
        {"en-GB", "On 25/12/2026 and 1/2/2026", "On 25 December 2026 and 1 February 2026"},
        {"en", "$5.20, €5, £3m, $3 million, $1,234",
         "5 dollars 20, 5 euros, 3 million pounds, 3 million dollars, 1,234 dollars"},
        {"en", "25 km/h, 70kg, 20 °C, 5 m², 3.5 GB",
         "25 kilometers per hour, 70 kilograms, 20 degrees Celsius, 5 square meters, 3.5 "
         "gigabytes"},
        {"en", "e.g. p. 5 of No. 7, vs. No.", "for example page 5 of number 7, versus No."},
        {"en", "Henry VIII, Elizabeth II, World War II, Chapter IV, part I",
         "Henry the eighth, Elizabeth the second, World War 2, Chapter 4, part 1"},
        {"en", "I am Malcolm X, IV MIX. VI", "I am Malcolm X, IV MIX. VI"},
        {"en", "+1 555 123 4567 or 555-123-4567.",
         "plus 1, 5 5 5, 1 2 3, 4 5 6 7 or 5 5 5, 1 2 3, 4 5 6 7."},
        {"en", "1/2 cup, 1/2/3, 3.14, v1.2.3, 1990s, 12:30",
         "one half cup, 1/2/3, 3.14, v1.2.3, 1990s, 12:30"},
        {"en", "https://www.example.com/a joe@www.org", "example.com/a joe at www dot org"},
        {"de", "Am 25.12.2026, Der 3. Mai, 31.31.2026, Die IV",
         "Am fünfundzwanzigsten Dezember 2026, Der dritte Mai, 31.31.2026, Die IV"},
        {"de", "17:45 Uhr, 1.234,50 €, z. B. S. 5",
         "17 Uhr 45, 1.234 Euro 50, zum Beispiel Seite 5"},
        {"de", "Heinrich VIII. war da. Elisabeth II. Gut",
         "Heinrich der achte war da. Elisabeth die zweite. Gut"},
        {"fr", "1 mai, 17h45, Louis XIV, François I, 1 234,50 €",
         "premier mai, 17 heures 45, Louis 14, François premier, 1 234 euros 50"},
        {"fr", "$5.20", "$5.20"},
        {"es", "25/12/2026, Felipe II, siglo XX, Sr. López",
         "25 de diciembre de 2026, Felipe segundo, siglo 20, señor López"},
        {"it", "Luigi XIV, 70 kg, ad es. 5,20 €",
         "Luigi quattordicesimo, 70 chilogrammi, ad esempio 5 euro 20"},
        {"ru", "25 декабря, К 1 мая, Екатерина II, 60 км/ч, т. е. 5 €",
         "двадцать пятого декабря, К первому мая, Екатерина вторая, 60 километров в час, то есть 5 "
         "евро"},
        {"cs", "1. května, Karel IV. byl, 250 Kč, např. č. 5",
         "prvního května, Karel čtvrtý byl, 250 korun, například číslo 5"},
        {"fr", "Voici nos 3 enfants", "Voici nos 3 enfants"},
        {"it", "un angolo di 1° nel cielo, il 1° maggio",
         "un angolo di 1° nel cielo, il primo maggio"},
        {"de", "in die 1. bis 5. Klasse, auf Platz 3. Mal sehen, Der 2. Weltkrieg, um 9:5 Uhr",
         "in die erste bis fünfte Klasse, auf Platz 3. Mal sehen, Der zweite Weltkrieg, um 9:5 "
         "Uhr"},
        {"en", "Call 555–1234, 10−5–3, verse 3:2", "Call 555–1234, 10−5–3, verse 3:2"},
        {"en", "It was -5 °C, (−5), 3 -5, a-5, and so on, etc.",
         "It was minus 5 degrees Celsius, (minus 5), 3 -5, a-5, and so on, et cetera."},
        {"de", "Am 25. 12. 2026, am 24.12. zu, die 24.12. und, 9:00 bis 17:30 Uhr",
         "Am fünfundzwanzigsten Dezember 2026, am vierundzwanzigsten Dezember zu, die 24.12. und, "
         "9 "
         "Uhr bis 17 Uhr 30"},
        {"it", "alle 17.30, ore 9.00, capitolo 17.30", "alle 17 e 30, ore 9, capitolo 17.30"},
        {"cs", "Např. v 17.30 hod. a ve 3:05 hod., kapitola 17.30",
         "například v 17 hodin 30 a ve 3 hodiny 5, kapitola 17.30"},
        {"en", "$5M, 5–10 km, 1½ cups, about 20 min. later, won 3:2, John 3:5, on Sept. 11",
         "5 million dollars, 5 to 10 kilometers, 1 and a half cups, about 20 minutes later, won 3 "
         "to 2, John 3:5, on September 11"},
        {"de", "Vom 1. bis 5. Mai, 1/4 kg, ½ l, 1,2 Mio. €, im 19. Jahrhundert, Vom 1. bis 5. Da",
         "Vom ersten bis fünften Mai, ein Viertel Kilogramm, ein halber Liter, 1,2 Millionen Euro, "
         "im neunzehnten Jahrhundert, Vom ersten bis fünften. Da"},
        {"de", "8.30 Uhr, 2 EL, Äpfel usw. Er, usw. und",
         "8 Uhr 30, 2 Esslöffel, Äpfel und so "
         "weiter. Er, und so weiter und"},
        {"fr", "le XXe siècle, François Ier, la 1re, Tél. N° 5, 10 k€, 1/4 l, ½ l, Vie, 24h/24",
         "le vingtième siècle, François premier, la première, téléphone numéro 5, 10 mille euros, "
         "un quart de litre, un demi litre, Vie, 24 heures sur 24"},
        {"en", "on 2024–10–05, 2½ kg, 2 1/4 tsp. salt, EUR5@a.b",
         "on 2024–10–05, 2 and a half kilograms, 2 and one quarter teaspoons salt, EUR5 at a dot "
         "b"},
        {"de", "1½ TL, 2½ kg, vom 2.–3. Mai, 1 Mio. Menschen",
         "eineinhalb Teelöffel, 2 ein halb Kilogramm, vom zweiten bis dritten Mai, 1 Million "
         "Menschen"},
        {"fr", "2½ kg, 1,2 M€", "2 kilogrammes et demi, 1,2 million d'euros"},
        {"en", "⅛ cup, 3/8 lb, step 1/5, 3/4 ft, 1/4 hr, ⅛ tsp, 1⅛ kg",
         "one eighth cup, three eighths of a pound, step 1/5, three quarters of a foot, one "
         "quarter of an hour, one eighth teaspoon, 1 and one eighth kilograms"},
        {"de", "½ Stunde, 1/2 TL, ½", "eine halbe Stunde, ein halber Teelöffel, ein halb"},
        {"fr", "½ c. à s., ½ verre", "une demi cuillère à soupe, un demi verre"},
        {"en", "US$5 million on Mar. 5", "5 million dollars on March 5"},
        {"de", "5 Mio €", "5 Millionen Euro"},
        {"es", "el 1er premio", "el primer premio"},
        {"ru", "1/2 л, 90 л. с. и 5 сек. до", "половина литра, 90 лошадиных сил и 5 секунд до"},
        {"it", "nel XIX sec. e", "nel diciannovesimo secolo e"},
        {"ru", "в 1945 г. была, к 1945 г. и, мая 1945 г. и, 05.09.1945, с 1941 по 1945 год",
         "в тысяча девятьсот сорок пятом году была, к тысяча девятьсот сорок пятому году и, мая "
         "тысяча девятьсот сорок пятого года и, пятого сентября тысяча девятьсот сорок пятого "
         "года, с тысяча девятьсот сорок первого по тысяча девятьсот сорок пятый год"},
        {"ru", "в XIX в. был, начало XIX в., 1,2 млн руб. и, 2 тыс. человек, в 1945",
         "в девятнадцатом веке был, начало девятнадцатого века, 1,2 миллиона рублей и, 2 тысячи "
         "человек, в 1945"},
        {"cs", "1,2 mil. Kč", "1,2 milionu korun"},
        {"ru", "5 янв. 2024 г. и, в 1941–1945 гг. и, 2020-2021 годы, в 90-е годы, 5-е место, в 3-х",
         "пятого января две тысячи двадцать четвертого года и, в тысяча девятьсот сорок первом – "
         "тысяча девятьсот сорок пятом годах и, две тысячи двадцатый – две тысячи двадцать первый "
         "годы, в девяностые годы, пятое место, в трёх"},
        {"ru", "в 1990-х. Был. 1945 г. был",
         "в тысяча девятьсот девяностых. Был. тысяча девятьсот сорок пятый год был"},
        {"de", "Am 5. Jan. kam, am 2./3. Mai, im XX. Jahrhundert, der 9. Dez. Er",
         "Am fünften Januar kam, am zweiten und dritten Mai, im zwanzigsten Jahrhundert, der "
         "neunte "
         "Dezember. Er"},
        {"fr", "le 14 juil. 2020, le 3 jui. x, les 1ers",
         "le 14 juillet 2020, le 3 jui. x, les premiers"},
        {"es", "el s. XIX, 5 ene. 2024, s. Pedro", "el siglo 19, 5 enero 2024, s. Pedro"},
        {"en", "8,849 m high, 5m people, 5/8 in. wide, 5 in all, 5 in. Then",
         "8,849 meters high, 5m people, five eighths of an inch wide, 5 in all, 5 inches. Then"},
        {"ru", "21 м и 10 м/с", "21 метр и 10 метров в секунду"},
        {"it", "1½ kg, 2½ kg, 5 gen. 2024, in 3 set. Poi",
         "1 chilogrammo e mezzo, 2 chilogrammi e mezzo, 5 gennaio 2024, in 3 set. Poi"},
        {"it", "20º C, 2º piano", "20º C, secondo piano"},
        {"es", "la 5ª, 1.er, 1,2 M€, 1/4 kg",
         "la quinta, primer, 1,2 millones de euros, un cuarto "
         "de kilogramo"},
        {"it", "il XX secolo, il 2º, 01/05/2024, 5 mld €",
         "il ventesimo secolo, il secondo, primo maggio 2024, 5 miliardi di euro"},
        {"ru", "с 1 по 5 мая, на 5 мая, сегодня 5 мая, в XX веке, 1-й, 2-я, 1/4 кг, 5 мая",
         "с первого по пятое мая, на пятое мая, сегодня пятое мая, в двадцатом веке, первый, "
         "вторая, одна четверть килограмма, пятого мая"},
        {"cs", "od 1. do 5. května, 5–10 km, 5 mld. Kč, 2 hod. a",
         "od prvního do pátého května, 5 až 10 kilometrů, 5 miliard korun, 2 hodiny a"},
        {"fi", "25.12.2026 70 kg", "25.12.2026 70 kg"},
    };
    for (const auto& [language, written, said] : cases)
        EXPECT_EQ(SaidIn(language, written), said) << language;
}

TEST(SpokenForms, AreLeftToTheEngineOrSaidByChoice) {
    const SaidByEngine all = kSaysMoney | kSaysFractions | kSaysRomanNumerals | kSaysEmoji;
    const std::string text = "Henry VIII had 1/2 of $5 and 70 kg 😀";
    EXPECT_EQ(SaidIn("en", text, all), "Henry VIII had 1/2 of $5 and 70 kilograms 😀");
    EXPECT_EQ(SaidIn("en", "Yes 👍🏽!"), "Yes thumbs up sign!");
    EXPECT_EQ(SaidIn("de", "Ja 👍🏽!"), "Ja 👍🏽!") << "its name is English";
    EXPECT_EQ(SaidIn("de", "Ja 👩‍🚀!", all, {.saysEmoji = false}), "Ja !");
    EXPECT_EQ(SaidIn("en", "NASA is NOT A-OK", 0, {.spellsCapitals = true}),
              "N A S A is N O T A-OK");
    EXPECT_EQ(SaidIn("en", "(Yes), it's 3.5.", 0, {.saysPunctuation = true}),
              "left parenthesis Yes right parenthesis comma, it's 3.5 period.");
    EXPECT_EQ(SaidIn("en", "\xFF\xC3 70 kg\xE2\x80", 0), "\xFF\xC3 70 kilograms\xE2\x80");
}

// What is highlighted is the text as it is written.
TEST(SpokenForms, NumbersThatAnEngineOmitsAreWords) {
    const Voice hebrew{"espeak-ng", "he", "", "he", VoiceCharset::kUnicode};
    const SaidByEngine omits = SaidByEngineOf(hebrew);
    for (const auto& [written, said] :
         {std::pair("יש לי 25 ספרים ו-3 עטים.", "יש לי עשרים וחמש ספרים ו-שלוש עטים."),
          std::pair("1,984 3.5 12:30", "אלף תשע מאות שמונים וארבע שלוש נקודה חמש שתים עשרה:שלושים"),
          std::pair("25.12.2026", "עשרים וחמש.שתים עשרה.אלפיים עשרים ושש"),
          std::pair("A4x", "A ארבע x"), std::pair("07", "אפס שבע")})
        EXPECT_EQ(SaidIn("he", written, omits), said) << written;
    // Nobody is to hear the user's own language there.
    EXPECT_EQ(SaidIn("tk", "3", omits), "3");
    EXPECT_EQ(SaidIn("he", "3"), "3");
}

TEST(SpokenForms, PicturesAreCalledByTheirNameInTheVoicesLanguage) {
    const ScratchFolder root;
    const ScopedVariable machine("LECTORA_ROOT", root.Path().c_str());
    std::filesystem::create_directories(root / "opt/quillon/lectora/share");
    std::filesystem::copy(LECTORA_EMOJI, root / "opt/quillon/lectora/share/emoji");
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"en", "Nice 👍🏽!", "Nice thumbs up!"},
        {"en", "I ❤️ it", "I red heart it"},
        {"de", "Sie ist 👩‍🚀.", "Sie ist Astronautin."},
        {"de", "In 🇩🇪🇫🇷", "In Flagge, Deutschland Flagge, Frankreich"},
        {"fr", "Oui 😀", "Oui visage rieur"},
        {"es", "Sí👍", "Sí pulgar hacia arriba"},
        {"it", "Ok 👍", "Ok pollice in su"},
        {"ru", "Да 👍", "Да большой палец вверх"},
        {"cs", "Ano 👍", "Ano palec nahoru"},
        {"nl", "Ja 👍", "Ja 👍"},
    };
    for (const auto& [language, text, said] : cases)
        EXPECT_EQ(SaidIn(language, text), said);
    // A file that is damaged, or is none.
    for (const std::string content : {"\xff\t\xff\n", "\t\n\n👍\n"}) {
        const ScratchFolder other;
        const ScopedVariable there("LECTORA_ROOT", other.Path().c_str());
        std::filesystem::create_directories(other / "opt/quillon/lectora/share/emoji");
        other.Write("opt/quillon/lectora/share/emoji/en.txt", content);
        EXPECT_EQ(SaidIn("en", "Nice 👍"), "Nice thumbs up sign");
    }
}

TEST(SpokenForms, EmojiAloneAreHandedToTheEngineThatSaysThem) {
    for (const auto& [says, told] :
         {std::pair{kSaysEmoji, "Great.\n\n👍\n\nBye."}, {SaidByEngine{0}, "Great.\n\n\n\nBye."}}) {
        const std::string text = "Great.\n\n👍\n\nBye.";
        EXPECT_EQ(
            PrepareText(text, VoiceCharset::kUnicode, "de", {}, SpokenForms(text, "de", says, {}))
                .text,
            told);
    }
}

TEST(SpokenForms, KeepTheirPlacesInTheText) {
    const std::string text = "He ran 25 km/h. She had $5.20 left.";
    TextUnits units(text, VoiceCharset::kUnicode, "en-US", {}, SpokenForms(text, "en-US", 0, {}));
    std::string told;
    for (TextUnit unit; units.Next(unit);)
        told += unit.text + "|" + text.substr(unit.sourceBegin, unit.sourceEnd - unit.sourceBegin) +
                "|";
    EXPECT_EQ(told,
              "He ran 25 kilometers per hour. |He ran 25 km/h.|She had 5 dollars 20 left.|She had "
              "$5.20 left.|");
}

}  // namespace
