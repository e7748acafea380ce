#include "speech/sentences.h"

#include <gtest/gtest.h>

#include <iterator>

namespace {

std::string Marked(const std::string& text, const std::string& language) {
    std::string marked;
    std::size_t at = 0;
    for (const Sentence& sentence : SentencesOf(text, language)) {
        marked += text.substr(at, sentence.begin - at) + (sentence.begin == 0 ? "" : "|");
        marked += text.substr(sentence.begin, sentence.end - sentence.begin);
        at = sentence.end;
    }
    return marked + text.substr(at);
}

// "|" stands where a reader sees another sentence begin.
TEST(Sentences, AreThoseOfTheLanguageAndOfListsQuotationsAndHeadings) {
    const struct {
        const char* language;
        const char* marked;
    } cases[] = {
        {"en", "My name is Anna E. Miller."},
        {"en", "Hello World. |My name is Anna."},
        {"en", "Please turn to p. 55."},
        {"en", "Were Jane and co. at the party?"},
        {"en", "They closed the deal with Pitt, Briggs & Co. at noon."},
        {"en", "Let's ask Jane and co. |They should know."},
        {"en", "They closed the deal with Pitt, Briggs & Co. |It closed yesterday."},
        {"en", "I can see Mt. Fuji from here."},
        {"en", "St. Michael's Church is on 5th st. near the light."},
        {"en", "That is JFK Jr.'s book."},
        {"en", "I live in the U.S. |How about you?"},
        {"en", "I work for the U.S. Government in Virginia."},
        {"en", "I have lived in the U.S. for 20 years."},
        {"en",
         "At 5 a.m. Mr. Smith went to the bank. |He left the bank at 6 P.M. |Mr. Smith then went "
         "to the store."},
        {"en", "She has $100.00 in her bag."},
        {"en", "She has $100.00. |It is in her bag."},
        {"en",
         "He teaches science (He previously worked for 5 years as an engineer.) at the local "
         "University."},
        {"en", "Her email is Jane.Doe@example.com. |I sent her an email."},
        {"en",
         "The site is: https://www.example.50.com/new-site/awesome_content.html. |Please check it "
         "out."},
        {"en", "She turned to him, \"This is great.\" she said."},
        {"en", "She turned to him, \"This is great.\" |She held the book out to show him."},
        {"en", "Hello!! |Long time no see."},
        {"en", "Hello!? |Is that you?"},
        {"en", "1.) The first item. |2.) The second item."},
        {"en", "1) The first item |2) The second item"},
        {"en", "1. The first item |2. The second item"},
        {"en", "1. The first item. |2. The second item."},
        {"en", "• 9. The first item |• 10. The second item"},
        {"en", "⁃9. The first item |⁃10. The second item"},
        {"en", "a. The first item |b. The second item |c. The third list item"},
        {"en", "This is a sentence\ncut off in the middle because pdf."},
        {"en", "It was a cold \nnight in the city."},
        {"en", "features\n|contact manager\n|events, activities\n"},
        {"en", "You can find it at N°. 1026.253.553. |That is where the treasure is."},
        {"en", "She works at Yahoo! in the accounting department."},
        {"en", "We make a good team, you and I. |Did you see Albert I. Jones yesterday?"},
        {"en",
         "Thoreau argues that by simplifying one’s life, “the laws of the universe will appear "
         "less complex. . . .”"},
        {"en", "\"Bohr [...] used the analogy of parallel stairways [...]\" (Smith 55)."},
        {"en",
         "If words are left off at the end, then indicate the end of the sentence with a period . "
         ". . . |Next sentence."},
        {"en", "I never meant that.... |She left the store."},
        {"en",
         "I wasn’t really ... well, what I mean...see . . . what I'm saying, the thing is . . . I "
         "didn’t mean it."},
        {"en",
         "One habit which was somewhat weakened . . . was that of combining words into "
         "self-interpreting compounds. . . . |The practice was not abandoned. . . ."},
        {"en",
         "Hello world.|Today is Tuesday.|Mr. Smith went to the store and bought 1,000.|That is a "
         "lot."},
        {"en", "Introduction\n|The ferries were late. |So were we."},
        {"en", "He bought milk, eggs, etc. |The shop then closed."},
        {"en", "\"Stop!\" he said. |\"Why?\" asked Bob."},
        {"en", "See Fig. 3 and Sec. 4 for e.g. Smith et al. 2004."},
        {"en", "First\n|- milk\n|- eggs\n|Second"},
        {"de", "Das Haus stand leer. |Niemand wusste, wem es gehörte."},
        {"de",
         "„Ich habe heute keine Zeit“, sagte die Frau und flüsterte leise: „Und auch keine Lust.“ "
         "|Wir haben 1.000.000 Euro."},
        {"de",
         "Es gibt jedoch einige Vorsichtsmaßnahmen, die Du ergreifen kannst, z. B. ist es sehr "
         "empfehlenswert, dass Du Dein Zuhause von allem Junkfood befreist."},
        {"de", "Was sind die Konsequenzen der Abstimmung vom 12. Juni?"},
        {"de", "Das ist z.B. der Fall. |Am 3. Mai kam Dr. Meier um 8 Uhr."},
        {"de", "Er kaufte Äpfel, Birnen usw. |Die Rechnung zahlte Fr. Schulz."},
        {"de", "Die Fa. Müller in der Bahnhofstr. 5 hat Nr. 17. |Das weiß jeder."},
        {"de", "Thomas sagte: „Wann kommst du?“ und ging."},
        {"de", "Wir schreiben das Jahr 1999. |Alles war anders."},
        {"fr", "Après avoir été l'un des acteurs du projet, M. Dupont est venu. |Il a parlé."},
        {"fr", "« Vous partez ? » demanda-t-elle. |Oui, dit-il."},
        {"fr", "Voir p. 12 et art. 5. |La suite est à lire av. J.-C. et après."},
        {"fr", "Quoi ? |Non ! |Si… |On verra."},
        {"es", "¿Cómo está hoy? |Espero que muy bien."},
        {"es", "¡Hola señorita! |Espero que muy bien."},
        {"es",
         "Hola Srta. Ledesma. |Buenos días, soy el Lic. Naser Pastoriza, y él es mi padre, el Dr. "
         "Naser."},
        {"es",
         "¡La casa cuesta $170.500.000,00! |¡Muy costosa! |Se prevé una disminución del 12.5% para "
         "el próximo año."},
        {"es",
         "«Ninguna mente extraordinaria está exenta de un toque de demencia.», dijo Aristóteles."},
        {"es", "Vive en EE.UU. desde 1990. |Trabaja con la Sra. Gómez."},
        {"it", "Salve Sig.ra Mengoni! |Come sta oggi?"},
        {"it", "Buongiorno! |Sono l'Ing. Mario Rossi. |È venerdì 6 novembre."},
        {"it", "Una lettera si può iniziare in questo modo «Il/la sottoscritto/a.»."},
        {"it", "La società Rossi S.p.A. è a Roma. |Il prezzo è 12.5 euro."},
        {"ru", "Маленькая девочка бежала и кричала: «Не видали маму?»."},
        {"ru", "Сегодня 27.10.14"},
        {"ru", "Маленькая девочка бежала и кричала: «Не видали маму?». |Сегодня 27.10.14"},
        {"ru", "«Я приду поздно», — сказал Андрей. |Он ушёл."},
        {"ru",
         "Объем составляет 5 куб. м. |Это много. |Он родился в 1799 г. в Москве, т.е. давно."},
        {"ru", "А. С. Пушкин жил на ул. Мойка, д. 12. |Там музей."},
        {"ru", "Сумма — 5 тыс. руб. |Далее смотри на стр. 5 и т.д. |Конец."},
        {"cs", "Bydlí v Praze od r. 1990. |Narodil se 5. května. |Pan Dr. Novák přišel."},
        {"cs", "Koupil jablka, hrušky atd. |Pak odešel. |Viz např. str. 12."},
        {"pl",
         "To słowo bałt. jest skrótem. |Prof. Kowalski ma 5 lat, tj. dużo. |Idź na ul. Długą."},
        {"nl",
         "Hij schoot op de JP8-brandstof toen de Surface-to-Air (sam)-missiles op hem af kwamen. "
         "|81 procent van de schoten was raak."},
        {"nl", "81 procent van de schoten was raak. |...en toen barste de hel los."},
        {"nl", "Afkorting aanw. vnw. en dhr. Jansen kwam. |Hij is er o.a. voor ons."},
        {"zh",
         "安永已聯繫周怡安親屬,協助辦理簽證相關事宜,周怡安家屬1月1日晚間搭乘東方航空班機抵達上海,"
         "他們步入入境大廳時神情落寞、不發一語。|周怡安來自台中。"},
        {"zh", "我们明天一起去看电影吧！|好啊。|你有空吗？|“没有。”他说。"},
        {"ja", "これはペンです。|それはマーカーです。"},
        {"ja", "それは何ですか？|ペンですか？|良かったね！|すごい！"},
        {"ja",
         "自民党の幹部は、「引き下げ幅は3."
         "29％以上。目指す」と指摘していて、協議が続く見通しです。"},
        {"ja", "これは父の\n家です。"},
        {"hi",
         "सच्चाई यह है कि इसे कोई नहीं जानता। |हो सकता है यह फ़्रेन्को के खिलाफ़ कोई विद्रोह रहा हो, या फिर "
         "बेकाबू हो गया कोई आनंदोत्सव।"},
        {"hi", "क्या हुआ? |कुछ नहीं। |ठीक है!"},
        {"hy", "Ի՞նչ ես մտածում: |Ոչինչ:"},
        {"hy", "Ես գնում եմ: |Դու մնա։ |Նա եկավ:"},
        {"fa", "خوشبختم، آقای رضا. |شما کجایی هستید؟ |من از تهران هستم."},
        {"ur", "کیا حال ہے؟ |میرا نام آئی ایم ہے۔ |میں حارث ہوں۔"},
        {"am", "እንደምን አለህ፧|መልካም ቀን ይሁንልህ።|እባክሽ ያልሽዉን ድገሚልኝ።"},
        {"my", "ခင္ဗ်ားနာမည္ဘယ္လိုေခၚလဲ။ |ဆယ္ျပည္နယ္ခြဲမ်ား။"},
    };
    for (const auto& [language, marked] : cases) {
        std::string text = marked;
        std::erase(text, '|');
        EXPECT_EQ(Marked(text, language), marked);
    }
}

// However a text is cut into what is looked at together, each word is in one sentence.
TEST(Sentences, HoldEveryWordOnceInTextsOfAnyKind) {
    const char* const parts[] = {"word ",        "Word. ",        "\n",   "\n\n",  "\xc3\xa9",
                                 "\xe3\x80\x82", "\xff",          "\"",   "(",     ") ",
                                 "1. ",          "\xe2\x80\xa2 ", "... ", "U.S. ", ": "};
    unsigned int random = 1;
    for (int round = 0; round < 200; ++round) {
        std::string text(round % 7 == 0 ? 9000 : 0, 'x');
        for (int i = 0; i < 2000; ++i) {
            random = random * 1103515245 + 12345;
            text += parts[random / 65536 % std::size(parts)];
        }
        std::size_t at = 0;
        Sentences sentences(text);
        for (Sentence sentence{}; sentences.Next(sentence); at = sentence.end) {
            ASSERT_LE(at, sentence.begin);
            ASSERT_LT(sentence.begin, sentence.end);
            ASSERT_LE(sentence.end - sentence.begin, 4096U);
            const std::string_view gap = std::string_view(text).substr(at, sentence.begin - at);
            ASSERT_EQ(gap.find_first_not_of(" \t\n"), std::string_view::npos);
        }
        ASSERT_EQ(text.find_first_not_of(" \t\n", at), std::string::npos);
    }
}

}  // namespace
