#include "speech/voice_stretches.h"

#include <gmock/gmock.h>

#include <iterator>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "foundation/settings/setting.h"
#include "speech/language_voices.h"
#include "speech/speech_pieces.h"
#include "speech/speech_reading.h"
#include "tests/speech/fake_engine.h"

namespace {

constexpr const char* kEnglish =
    "The old house at the end of the street had been empty for many years. Nobody knew who owned "
    "it, and the children were told to stay away.";
constexpr const char* kGerman =
    "Das alte Haus am Ende der Straße stand seit vielen Jahren leer. Niemand wusste, wem es "
    "gehörte, und den Kindern sagte man, sie sollten sich fernhalten.";
constexpr const char* kRussian =
    "Старый дом в конце улицы много лет стоял пустым. Никто не знал, кому он принадлежит, и детям "
    "велели держаться подальше.";
constexpr const char* kCzech =
    "Starý dům na konci ulice byl mnoho let prázdný. Nikdo nevěděl, komu patří, a dětem říkali, "
    "aby se k němu nepřibližovaly.";
constexpr const char* kGermanSentence =
    "Der Kapitän rief laut über das Deck, dass niemand das Schiff verlassen dürfe.";

// Its own process and voices, none of them chosen.
template <typename Checks>
void WithVoices(Checks checks, std::vector<const char*> tags = {"en-029", "en-US", "de", "ru", "cs",
                                                                "da", "nb", "es", "hr", "sr"}) {
    InFreshProcess([&checks, &tags] {
        UserSetting<const char*>{"Voices", "de", ""}.Delete();
        std::vector<Voice> voices;
        voices.reserve(tags.size() + 1);
        for (const char* tag : tags)
            voices.push_back({"espeak-ng", tag, tag, tag, VoiceCharset::kUnicode});
        voices.push_back({"own:Piper", "amy", "amy", "de-AT", VoiceCharset::kUnicode});
        AddVoices(voices);
        checks();
    });
}

// "en-US: The ...|de: Das ...", by the first characters of each stretch.
std::string Spoken(const std::string& text, const char* voice = "en-US",
                   std::vector<LanguageMark> marks = {}, bool byLanguage = true) {
    VoiceStretches stretches(text, FindVoice(voice), byLanguage, std::move(marks));
    std::string told;
    std::size_t at = 0;
    for (VoiceStretch stretch{}; stretches.Next(stretch); at = stretch.end) {
        EXPECT_EQ(stretch.begin, at);
        const std::string next = VoiceAt(stretch.voice).name;
        if (told.size() >= next.size() + 1 && told.ends_with("|" + next))
            continue;
        told += "|" + next;
    }
    EXPECT_EQ(at, text.size());
    const std::string message = MissingVoicesMessage(stretches.WithoutVoice());
    return told + (message.empty() ? "" : " " + message.substr(0, message.find(',')));
}

TEST(VoiceStretches, GiveEachLanguageItsVoice) {
    WithVoices([] {
        const std::string english = kEnglish;
        const std::string german = kGerman;
        EXPECT_EQ(Spoken(english + "\n\n" + german + "\n\n" + kRussian + "\n\n" + kCzech + "\n"),
                  "|en-US|de|ru|cs");
        EXPECT_EQ(Spoken(german + "\n\n" + english, "de"), "|de|en-US");
        // A sentence within a paragraph.
        EXPECT_EQ(Spoken(english + " " + kGermanSentence + " " + english), "|en-US|de|en-US");
        EXPECT_EQ(Spoken(german + "\n\n" + english, "en-US", {}, false), "|en-US");
        // Too short to tell: the last language stays.
        EXPECT_EQ(Spoken(german + "\n\nKapitel 2\n\n" + german + "\n\nOK."), "|de");
        EXPECT_EQ(Spoken("Chapter 7. OK? 12 1/2 \xFF\xFE www.example.com"), "|en-US");
        EXPECT_EQ(Spoken("\n \n"), "|en-US");
        // Much alike, and so taken for each other in a short sentence.
        EXPECT_EQ(Spoken("Hun kom hjem sent om aftenen og lagde maden på bordet.", "nb"), "|nb");
        // And told apart by what only one of them has, in all of the paragraph.
        EXPECT_EQ(Spoken("Den forvalgte handling er at beholde den eksisterende version. Kan ikke "
                         "opdatere komprimerede arkiver. Det er ikke meningen at slette dem.\n"),
                  "|da");
        // Nothing in it tells Croatian from Serbian: the last of them stays, of others the
        // likelier.
        const std::string south = "Otvorite prozor i zatvorite vrata.";
        const std::string serbian =
            " Neko je pre nedelju dana posle ručka pitao da li je lepo vreme.";
        EXPECT_EQ(Spoken(south + serbian + "\n\n" + south, "en-US"), "|sr");
        EXPECT_EQ(Spoken(south + "\n\n" + south, "hr"), "|hr");
        // Neither sure by its letters alone nor without its small words.
        EXPECT_EQ(Spoken("Pluggable Authentication Modules (PAM) bestimmen, wie Berechtigung und "
                         "Passwort-Änderung auf dem System gehandhabt werden."),
                  "|de");
        // Of several voices: not a small region's, unless the user says so.
        EXPECT_EQ(Spoken(english, "de"), "|en-US");
        KeepVoiceForLanguage(VoiceAt(FindVoice("amy")));
        EXPECT_EQ(Spoken(english + "\n\n" + german), "|en-US|amy");
        UserSetting<const char*>{"Voices", "de", ""}.Delete();
    });
}

TEST(VoiceStretches, TakeAVoiceThatIsChosenWhileTheyRun) {
    WithVoices([] {
        const std::string two = std::string(kEnglish) + "\n\n" + kGerman + "\n\n";
        const std::string text = two + two + two;
        VoiceStretches stretches(text, FindVoice("en-US"), true, {});
        std::string told;
        for (VoiceStretch stretch{}; stretches.Next(stretch);) {
            told += "|" + VoiceAt(stretch.voice).name;
            if (told == "|en-US|de")
                KeepVoiceForLanguage(VoiceAt(FindVoice("amy")));
            if (told == "|en-US|de|en-US|amy") {
                AddVoices({{"flite", "new", "new", "de", VoiceCharset::kUnicode}});
                UserSetting<const char*>{"Voices", "de", ""}.Set("flite:new");
            }
        }
        EXPECT_EQ(told, "|en-US|de|en-US|amy|en-US|new");
        UserSetting<const char*>{"Voices", "de", ""}.Delete();
    });
}

TEST(VoiceStretches, GiveWhatMightBeSeveralLanguagesToOneThatHasAVoice) {
    const char* const sentence = "Vi kommer til byen i morgen og ser på husene der.";
    WithVoices([&] { EXPECT_EQ(Spoken(sentence), "|nb"); }, {"en-US", "da", "nb"});
    WithVoices([&] { EXPECT_EQ(Spoken(sentence), "|da"); }, {"en-US", "da"});
}

TEST(VoiceStretches, TellShortSentencesOfRelativesFromEnglishAndEachOther) {
    WithVoices(
        [] {
            for (const auto& [tag, text] : {
                     std::pair("es",
                               "No hay bases de datos para revisar. Mover la ventana a la "
                               "esquina inferior izquierda."),
                     std::pair("es",
                               "Mostrar el archivo siendo aplicado o fusionado. Formato de "
                               "máquina para los nuevos."),
                     std::pair("gl",
                               "Mostrar a data da semana no calendario. Mover a xanela á "
                               "esquina inferior esquerda."),
                     std::pair("hr",
                               "Ne dopusti aplikacijama pristup kameri. Savjeti ponašanja "
                               "polja teksta."),
                     std::pair("hr", "Vremenska oznaka je izvan dopuštenoga raspona."),
                     std::pair("nb",
                               "Autentisering kreves for å hente attributter. Volumet var "
                               "tomt eller inneholdt bare tegn."),
                 })
                EXPECT_EQ(Spoken(text), std::string("|") + tag) << text;
            // A heading without small words stays English.
            EXPECT_EQ(Spoken("Automatic Pronunciation Correction Settings"), "|en-US");
        },
        {"en-US", "es", "gl", "pt", "ca", "hr", "sr", "sl", "da", "nb", "sv"});
}

// Of what engines are handed stands each word in "spoken", of each run a byte in "runs".
class WritingEngines : public FakeEngine {
public:
    WritingEngines() : FakeEngine(true) {
        Script("espeak-ng", Writing("\"$6\"", "\"$8\""));
        Script("text2wave", Writing("\"$3\"", "\"$5\""));
    }

private:
    static std::string Writing(const std::string& text, const std::string& sound) {
        return "/bin/cat " + text + " >>$here/spoken; echo >>$here/runs; /bin/cp $here/good.wav " +
               sound;
    }
};

TEST(VoiceStretches, SpeakOrTellEachWordOfATextThatChangesItsLanguageWithEach) {
    const char* const words[] = {"house", "Straße", "дерево", "hlavní", "además", "fenêtre"};
    constexpr std::size_t kWords = 2000;
    constexpr std::size_t kMostRuns = 10;
    std::string text;
    for (std::size_t i = 0; i < kWords; ++i)
        text += words[i % std::size(words)] + std::string(i % 20 == 19 ? ". " : " ");
    WithVoices([&] {
        AddVoices({{"festival", "kal", "kal", "en-US", VoiceCharset::kAscii}});
        for (const auto& [voice, count, told] :
             {std::tuple("en-US", kWords, ""), std::tuple("kal", kWords - 333, "333 words")}) {
            const WritingEngines engines;
            LSilentProgress progress;
            SpeechReading reading(text, FindVoice(voice), engines / "speech.wav",
                                  ReadingUse::kSaving);
            reading.SpeakBy({.byLanguage = true});
            reading.Start();
            EXPECT_EQ(Process(progress, reading), kProcessDone);
            std::istringstream spoken(engines.Read("spoken"));
            EXPECT_EQ(std::distance(std::istream_iterator<std::string>(spoken), {}), count);
            EXPECT_THAT(reading.Message(), testing::HasSubstr(told));
            EXPECT_EQ(reading.Message().empty(), *told == '\0');
            EXPECT_LE(engines.Read("runs").size(), kMostRuns);
        }
    });
}

TEST(VoiceStretches, BelieveTheDocumentWhereTheTextDoesNotTell) {
    WithVoices([] {
        const std::string shortOnes = "Chapter 7.\n\nOK 12.\n\nNr. 5";
        EXPECT_EQ(Spoken(shortOnes, "en-US", {{0, "en"}, {12, "de-AT"}, {20, ""}}), "|en-US|de");
        // Programs write their own language into every document.
        EXPECT_EQ(Spoken(kGerman, "de", {{0, "en-US"}}), "|de");
        const std::vector<LanguageMark> marks = {{5, "de"}, {20, "ru"}};
        const std::vector<LanguageMark> rest = MarksFrom(marks, 12);
        ASSERT_EQ(rest.size(), 2U);
        EXPECT_EQ(std::pair(rest[0].begin, rest[0].tag),
                  std::pair(std::size_t{0}, std::string("de")));
        EXPECT_EQ(rest[1].begin, 8U);
    });
}

TEST(VoiceStretches, TellLanguagesWithoutVoiceAndMakePiecesOfOneVoice) {
    WithVoices([] {
        const std::string hungarian =
            "A ház az utca végén sok éve üresen állt, és senki sem tudta, hogy kié.";
        EXPECT_EQ(Spoken(std::string(kEnglish) + "\n\n" + hungarian + "\n\n" + hungarian),
                  "|en-US The text is partly in Hungarian");
        // What only looks a little like Javanese.
        EXPECT_EQ(Spoken(std::string(kEnglish) +
                         "\n\n#: data/hello.desktop.in:3 msgid \"Hello\"\nmsgstr \"\""),
                  "|en-US");
        const std::string text = std::string(kEnglish) + " " + kGermanSentence + "\n\n" + kEnglish;
        SpeechPieces pieces(text, FindVoice("en-US"), ReadingUse::kSaving, {.byLanguage = true});
        std::string told;
        for (SpeechPiece piece; pieces.Next(piece);)
            told += VoiceAt(piece.voice).name + " " +
                    text.substr(piece.SourceBegin(), piece.SourceEnd() - piece.SourceBegin()) + "|";
        EXPECT_EQ(told, "en-US " + std::string(kEnglish) + "|de " + kGermanSentence + "|en-US " +
                            kEnglish + "|");
    });
}

}  // namespace
