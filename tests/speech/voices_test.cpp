#include "speech/voices.h"

#include <gmock/gmock.h>

#include <atomic>
#include <tuple>

#include "foundation/files/text_buffer.h"
#include "foundation/settings/setting.h"
#include "speech/chosen_voice.h"
#include "speech/voice_description.h"
#include "speech/voice_finder.h"
#include "speech/voice_list_query.h"
#include "speech/voice_manner.h"
#include "speech/voice_variants.h"
#include "tests/speech/fake_engine.h"

namespace {

using enum VoiceCharset;

using Names = std::vector<std::string>;

TEST(VoiceList, IsReadFromTheEnginesReply) {
    const std::string banner =
        "Festival Speech Synthesis System 2.5.0:release December 2017\n"
        "Copyright (C) University of Edinburgh, 1996-2010. All rights reserved.\n\n"
        "For details type `(festival_warranty)'\nfestival> ";
    const std::string longName(60, 'v');
    const struct {
        const char* what;
        std::string reply;
        Names names;
    } cases[] = {
        {"one voice", banner + "(kal_diphone)\nfestival> ", {"kal_diphone"}},
        {"two voices", "festival>(voice_a voice_b)", {"voice_a", "voice_b"}},
        {"many, one a line", banner + "(a\n b\n c)\nfestival> ", {"a", "b", "c"}},
        {"on a line of its own", "festival>\n\t (a b)\n", {"a", "b"}},
        {"no more than ten",
         banner + "(a b c d e f g h i j k l)\nfestival> ",
         {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j"}},
        {"over-long name", "festival> (" + longName + " b)", {longName.substr(0, 49), "b"}},
        {"empty list", "festival> ()", {""}},
        {"no parenthesis", "festival> (a b", {"a", "b", "", "", "", "", "", "", "", ""}},
        {"no prompt", "(a b)", Names(10)},
        {"prompt only", "festival> ", Names(10)},
        {"nothing", "", Names(10)},
    };
    for (const auto& test : cases)
        EXPECT_EQ(ParseVoiceList(test.reply), test.names) << test.what;
}

void AskUntilThereIsOne() {
    const FakeEngine engine(true);
    char name[kTextBufferSize];
    std::filesystem::remove(engine / "bin/festival");
    EXPECT_EQ(TTSGetNumSpeakers(), 0) << "not installed";
    TTSGetDictSpeakerName(0, name);
    EXPECT_STREQ(name, "No Voices Found");
    engine.Script("festival", "exit 3");
    EXPECT_EQ(TTSGetNumSpeakers(), 0) << "dies at once";
    engine.Script("festival", "echo $$ >$here/pid; exec /bin/sleep 60");
    while (engine.Read("pid").empty())
        EXPECT_EQ(TTSGetNumSpeakers(), 0) << "hangs";
    EXPECT_TRUE(ProcessesEnd(engine / "pid"));
    engine.Script("festival",
                  "read line; echo \"$line\" >$here/asked; printf 'festival> (un deux)\\n'");
    while (TTSGetNumSpeakers() == 0)
        continue;  // on a busy machine it takes longer than one question waits
    EXPECT_EQ(TTSGetNumSpeakers(), 2);
    EXPECT_EQ(engine.Read("asked"), "(voice.list)\n");
    engine.Script("festival", "exit 3");
    EXPECT_EQ(TTSGetNumSpeakers(), 2) << "remembered";
    for (const auto& [index, expected] :
         {std::pair{0, "un"}, {1, "deux"}, {7, "deux"}, {-3, "un"}}) {
        TTSGetDictSpeakerName(index, name);
        EXPECT_STREQ(name, expected) << index;
    }
}

void AskInTheBackground() {
    const FakeEngine engine(true);
    LSilentProgress progress;
    std::atomic<int> told = 0;  // on the query's thread
    VoiceListQuery query([&] { ++told; });
    EXPECT_EQ(query.State(), VoiceListState::kAsking);
    std::filesystem::remove(engine / "bin/festival");
    EXPECT_EQ(Process(progress, query), kProcessFailed);
    EXPECT_EQ(query.State(), VoiceListState::kNoEngine);
    for (const char* voiceless : {"printf 'festival> ()\\n'", "exit 3"}) {
        engine.Script("festival", voiceless);
        EXPECT_EQ(Process(progress, query), kProcessFailed) << voiceless;
        EXPECT_EQ(query.State(), VoiceListState::kNoVoices) << voiceless;
    }
    // Later than the other way of asking would wait, and bit by bit.
    engine.Script("festival",
                  "read line; /bin/sleep 1.5; printf 'festival> (un'; /bin/sleep 0.3;"
                  "printf ' deux)\n'");
    EXPECT_EQ(Process(progress, query), kProcessDone);
    EXPECT_EQ(query.State(), VoiceListState::kKnown);
    EXPECT_TRUE(Eventually([&] { return told == 4; }));
    engine.Script("festival", "exit 3");
    char name[kTextBufferSize];
    TTSGetDictSpeakerName(1, name);
    EXPECT_STREQ(name, "deux");
    // A voice that was installed meanwhile changes nobody's index before the next start.
    engine.Script("festival", "read line; printf 'festival> (trois un)\n'");
    query.AskAnew();
    EXPECT_EQ(Process(progress, query), kProcessDone);
    for (const auto& [index, expected] : {std::pair{0, "un"}, {1, "deux"}, {2, "trois"}}) {
        TTSGetDictSpeakerName(index, name);
        EXPECT_STREQ(name, expected);
    }
}

// As with every package that the README names: the list stands one name a line.
void InstallManyVoices(const FakeEngine& engine, const std::string& longName) {
    engine.Script("festival",
                  "read line; printf 'festival> (suo_fi_lj_diphone\n kal_diphone\n a\n b\n c\n d\n "
                  "e\n f\n g\n pl_ewa\n czech_ph\n " +
                      longName + ")\nfestival> '");
    engine.Script("espeak-ng",
                  "echo 'Pty Language       Age/Gender VoiceName          File'\n"
                  "echo ' 5  de              --/M      German             gmw/de'\n"
                  "echo ' 2  en-us           --/M      English_(America)  gmw/en-US (en 3)'\n"
                  "echo ' 5  piqd            --/M      Klingon            art/piqd'\n"
                  "[ $1 = --voices=variant ] || exit 0\n"
                  "echo ' 5  variant         --/M      Mr_Serious         !v/Mr serious     '\n"
                  "echo ' 5  variant         --/F      Linda              !v/f2          '");
    engine.Script("flite", "echo 'Voices available: kal awb_time slt '");
    engine.Script("neural", "exit 0");
    const std::string voice = engine / "usr/share/festival/voices/polish/pl_ewa/festvox";
    std::filesystem::create_directories(voice);
    std::ofstream(voice + "/pl_ewa.scm") << "((language polish)\n (gender female))";
    const std::string folder = engine / ".quillon/lectora/engines";
    std::filesystem::create_directories(folder);
    const std::string file =
        "[Engine]\nName=Neural\nLanguage=cs\nCommand=neural \"{voice}\" '{text}' {wav} {rate} "
        "{text}\n";
    std::ofstream(folder + "/mine.engine") << file << "RateFrom=150\n"
                                           << "Voices=/v/it's.onnx;two\n";
    std::ofstream(folder + "/theirs.engine") << file;
    std::filesystem::permissions(folder + "/mine.engine", std::filesystem::perms(0600));
    std::filesystem::permissions(folder + "/theirs.engine", std::filesystem::perms(0666));
    std::ofstream(folder + "/no.engine") << "[Engine]\nName=No\nCommand=neural\n";
}

void CheckEachVoice(const std::string& longName) {
    const struct {
        const char* wanted;
        int index;
        const char* title;
        const char* language;
    } cases[] = {{"suo_fi_lj_diphone", 0, "LJ, Finnisch, woman", "fi"},
                 {"festival:kal_diphone", 1, "Kal, Englisch (USA), man", "en-US"},
                 {"pl_ewa", 9, "pl_ewa, Polnisch, woman", "pl"},
                 {"PH, Tschechisch, man", 10, "PH, Tschechisch, man", "cs"},
                 {longName.c_str(), 11, longName.c_str(), ""},
                 {"espeak-ng:de", 12, "Deutsch, eSpeak NG", "de"},
                 {"en-us", 13, "Englisch (USA), eSpeak NG", "en-US"},
                 {"piqd", 14, "Klingon, eSpeak NG", "piqd"},
                 {"flite:slt", 16, "SLT, Englisch (USA), woman, Flite", "en-US"},
                 {"own:mine:/v/it's.onnx", 17, "it's, Tschechisch, Neural", "cs"},
                 {"awb_time", -1, "", ""}};
    for (const auto& [wanted, index, title, tag] : cases) {
        EXPECT_EQ(FindVoice(wanted), index) << wanted;
        EXPECT_TRUE(index < 0 || VoiceAt(index).title == title) << VoiceAt(index).title;
        EXPECT_TRUE(index < 0 || VoiceAt(index).language == tag) << VoiceAt(index).language;
    }
    const auto command = [](int index, int speed = 100) {
        const Voice voice = VoiceAt(index);
        const SpeechEngine row = EngineOf(voice);
        return row.command(row,
                           {voice, "/t x", "/w", SpeedOfEngine(voice, speed), MannerOf(voice)});
    };
    EXPECT_EQ(command(12, 300), "espeak-ng -b 1 -v de -f '/t x' -w /w");
    EXPECT_EQ(command(12, 400), "espeak-ng -b 1 -s 700 -v de -f '/t x' -w /w");
    KeepManner(VoiceAt(12),
               {.pitch = 150, .volume = 80, .variant = VariantsOf("espeak-ng").back().name});
    EXPECT_EQ(command(12), "espeak-ng -b 1 -p 90 -a 80 -v 'de+Mr serious' -f '/t x' -w /w");
    KeepManner(VoiceAt(12), {});
    EXPECT_EQ(MannerOf(VoiceAt(12)), VoiceManner());
    EXPECT_EQ(command(16, 400), "flite -voice slt -f '/t x' -o /w");
    for (const auto& [speed, rate] : {std::pair{100, "1"}, {149, "1"}, {205, "2.05"}, {600, "6"}})
        EXPECT_EQ(
            command(17, speed),
            "lectora_text='/t x'; lectora_voice='/v/it'\\''s.onnx'; neural \"${lectora_voice}\" "
            "''\"${lectora_text}\"'' /w " +
                std::string(rate) + " \"${lectora_text}\"");
}

void CheckTheChosenOne() {
    const UserSetting<const char*> kept{"Settings", "Voice", ""};
    const UserSetting<int> keptNumber{"Settings", "TextToSpeechVoice", 0};
    kept.Delete();
    keptNumber.Delete();
    // Nothing is chosen: a voice of the user's language, whatever the engines list first.
    EXPECT_EQ(ChosenVoice(), 12);
    EXPECT_FALSE(IsChosenVoiceMissing()) << "nobody has chosen";
    KeepChosenVoice(10);
    EXPECT_EQ(ChosenVoice(), 10);
    EXPECT_FALSE(IsChosenVoiceMissing());
    // Another one reads until it is there again, and is not kept in its place.
    kept.Set("festival:removed");
    EXPECT_EQ(ChosenVoice(), 12);
    EXPECT_TRUE(IsChosenVoiceMissing());
    EXPECT_EQ(kept.Get(), "festival:removed");
    // What an earlier version kept is read once.
    kept.Delete();
    keptNumber.Set(1);
    EXPECT_EQ(ChosenVoice(), 1);
    EXPECT_EQ(kept.Get(), "festival:kal_diphone");
    kept.Delete();
    keptNumber.Delete();
}

// "Deutsch: eSpeak NG|...": what the typed words find, in order, each language named once.
std::string Found(const std::string& typed) {
    std::string found;
    std::string language;
    for (ListedVoice& listed : VoicesToChooseFrom()) {
        if (!IsFoundBy(listed, typed))
            continue;
        if (listed.voice.languageTitle != language)
            found += (found.empty() ? "" : "|") + listed.voice.languageTitle + ":";
        language = listed.voice.languageTitle;
        found += " " + listed.voice.shortTitle + ",";
    }
    return found;
}

// The user's language first, then those used last: Kal's after the removal of Czech's PH.
void CheckHowTheyAreFound() {
    EXPECT_TRUE(Found("").starts_with(
        "Deutsch: eSpeak NG,|Englisch (USA): Kal, man, eSpeak NG, Kal, man, SLT, woman,"
        "|Tschechisch: PH, man, it's, two,|Finnisch: LJ, woman,|Klingon: eSpeak NG,|"))
        << Found("");
    EXPECT_TRUE(Found("").ends_with("|Other languages: a, b, c, d, e, f, g, very_" +
                                    std::string(300, 'l') + "ong,"));
    EXPECT_EQ(Found("tsch NEUR"), "Tschechisch: it's, two,");
    EXPECT_EQ(Found("czech man"), "Tschechisch: PH, man,");
    EXPECT_EQ(Found("\u010ce\u0161tina festival"), "Tschechisch: PH, man,");
    EXPECT_EQ(Found("no such \xFF"), "");
}

void FindManyVoicesOfSeveralEngines() {
    const FakeEngine engine(true);
    const ScopedVariable home("HOME", engine.Path().c_str());
    const ScopedVariable root("LECTORA_ROOT", engine.Path().c_str());
    const ScopedVariable language("LANGUAGE", "de");
    const std::string longName = "very_" + std::string(300, 'l') + "ong";
    InstallManyVoices(engine, longName);
    LSilentProgress progress;
    VoiceListQuery query;
    ASSERT_EQ(Process(progress, query), kProcessDone);
    EXPECT_EQ(TTSGetNumSpeakers(), 10);
    ASSERT_EQ(CountVoices(), 19);
    CheckEachVoice(longName);
    CheckTheChosenOne();
    CheckHowTheyAreFound();
}

// What everybody has, and what the user has instead of it, or would have if it could be used.
void HideTheMachinesEngineBehindTheUsers() {
    const FakeEngine engine(true);
    const ScopedVariable home("HOME", engine.Path().c_str());
    const ScopedVariable root("LECTORA_ROOT", engine.Path().c_str());
    std::filesystem::remove(engine / "bin/festival");
    engine.Script("neural", "exit 0");
    const std::string own = engine / ".quillon/lectora/engines/";
    const std::string machines = engine / "opt/quillon/lectora/etc/engines/";
    const auto describe = [](const std::string& path, const std::string& voices,
                             const char* command = "neural {text} {wav}") {
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        std::ofstream(path) << "[Engine]\nName=Neural\nLanguage=cs\nVoices=" << voices
                            << "\nCommand=" << command << "\n";
        std::filesystem::permissions(path, std::filesystem::perms(0600));
    };
    describe(machines + "piper.engine", "amy;joe");
    describe(machines + "other.engine", "amy");
    describe(machines + "broken.engine", "eve");
    describe(own + "piper.engine", "amy;eva", "neural --mine {text} {wav}");
    describe(own + "broken.engine", "eve", "neural");
    LSilentProgress progress;
    VoiceListQuery query;
    ASSERT_EQ(Process(progress, query), kProcessDone);
    std::string known;
    for (const Voice& voice : KnownVoices())
        known += KeyOf(voice) + "|";
    EXPECT_EQ(known, "own:piper:amy|own:piper:eva|own:broken:eve|own:other:amy|");
    EXPECT_THAT(EngineOf(VoiceAt(0)).ownCommand, testing::HasSubstr("--mine"));
    KeepManner(VoiceAt(0), {.pitch = 150});
    EXPECT_EQ(MannerOf(VoiceAt(3)), VoiceManner());
    KeepManner(VoiceAt(0), {});
}

void StopAsking() {
    const FakeEngine engine(true);
    engine.Script("festival", "echo $$ >$here/pid; exec /bin/sleep 60");
    {
        VoiceListQuery query;
        query.Ask();
        EXPECT_TRUE(Eventually([&] { return !engine.Read("pid").empty(); }));
    }
    EXPECT_TRUE(ProcessesEnd(engine / "pid"));
}

TEST(VoiceList, IsAskedAgainUntilThereIsOne) {
    InFreshProcess(AskUntilThereIsOne);
    InFreshProcess(AskInTheBackground);
    InFreshProcess(StopAsking);
    InFreshProcess(FindManyVoicesOfSeveralEngines);
    InFreshProcess(HideTheMachinesEngineBehindTheUsers);
}

TEST(VoiceDescription, IsTheInstalledOneOrAsKnown) {
    const VoiceDescription italian = ReadVoiceDescription(
        "(proclaim_voice 'x '((language italian)\n (gender \"male\")(coding ISO-8859-1)))", kUtf8);
    EXPECT_EQ(std::tie(italian.charset, italian.language, italian.kind),
              std::tuple(kLatin1, "it", "man"));
    const VoiceDescription scottish =
        ReadVoiceDescription("(language english)(dialect scottish)(coding ISO-8859-15)", kUtf8);
    EXPECT_EQ(std::tie(scottish.charset, scottish.language, scottish.kind),
              std::tuple(kLatin9, "en-GB", ""));
    for (const char* none : {"", "(coding", "(coding )", "(coding KOI-7)", "(language elvish)"}) {
        const VoiceDescription described = ReadVoiceDescription(none, kUtf8);
        EXPECT_EQ(described.charset, kUtf8) << none;
        EXPECT_EQ(described.language, "") << none;
    }

    const FakeEngine folder;
    const std::string voice = folder / "usr/share/festival/voices/polish/pl_ewa/festvox";
    std::filesystem::create_directories(voice);
    std::ofstream(voice + "/pl_ewa.scm") << ";; a voice\n(coding ISO-8859-2)";
    const ScopedVariable root("LECTORA_ROOT", folder.Path().c_str());
    const auto charset = [](const char* name) { return DescriptionOfVoice(name).charset; };
    EXPECT_EQ(charset("pl_ewa"), kLatin2) << "installed description";
    EXPECT_EQ(charset("czech_ph"), kLatin2) << "known voice";
    EXPECT_EQ(charset("hindi_NSK_diphone"), kUtf8);
    for (const char* english : {"kal_diphone", "", "No Voices Found", "../polish/pl_ewa"})
        EXPECT_EQ(charset(english), kAscii) << english;
}

}  // namespace
