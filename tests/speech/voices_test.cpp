#include "speech/voices.h"

#include <gtest/gtest.h>

#include <atomic>

#include "foundation/files/text_buffer.h"
#include "foundation/settings/setting.h"
#include "speech/voice_charset.h"
#include "speech/voice_list_query.h"
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
void FindManyVoicesOfSeveralEngines() {
    const FakeEngine engine(true);
    const ScopedVariable home("HOME", engine.Path().c_str());
    const ScopedVariable language("LANGUAGE", "de");
    const std::string longName = "very_" + std::string(300, 'l') + "ong";
    engine.Script("festival",
                  "read line; printf 'festival> (suo_fi_lj_diphone\n kal_diphone\n a\n b\n c\n d\n "
                  "e\n f\n g\n h\n czech_ph\n " +
                      longName + ")\nfestival> '");
    engine.Script("espeak-ng",
                  "echo 'Pty Language       Age/Gender VoiceName          File'\n"
                  "echo ' 5  de              --/M      German             gmw/de'\n"
                  "echo ' 2  en-us           --/M      English_(America)  gmw/en-US (en 3)'");
    engine.Script("flite", "echo 'Voices available: kal awb_time slt '");
    engine.Script("neural", "exit 0");
    const std::string folder = engine / ".quillon/lectora/engines";
    std::filesystem::create_directories(folder);
    const std::string file =
        "[Engine]\nName=Neural\nLanguage=cs\nCommand=neural {voice} {text} {wav}\n";
    std::ofstream(folder + "/mine.engine") << file << "Voices=/v/it's.onnx;two\n";
    std::ofstream(folder + "/theirs.engine") << file;
    std::filesystem::permissions(folder + "/mine.engine", std::filesystem::perms(0600));
    std::filesystem::permissions(folder + "/theirs.engine", std::filesystem::perms(0666));
    std::ofstream(folder + "/no.engine") << "[Engine]\nName=No\nCommand=neural\n";
    LSilentProgress progress;
    VoiceListQuery query;
    ASSERT_EQ(Process(progress, query), kProcessDone);
    EXPECT_EQ(TTSGetNumSpeakers(), 10);
    ASSERT_EQ(CountVoices(), 18);
    const struct {
        const char* wanted;
        int index;
        const char* title;
        const char* language;
    } cases[] = {{"suo_fi_lj_diphone", 0, "LJ, Finnish, woman", "fi"},
                 {"festival:kal_diphone", 1, "Kal, English (US), man", "en-US"},
                 {"PH, Czech, man", 10, "PH, Czech, man", "cs"},
                 {longName.c_str(), 11, longName.c_str(), ""},
                 {"espeak-ng:de", 12, "German, eSpeak NG", "de"},
                 {"en-us", 13, "English (America), eSpeak NG", "en-US"},
                 {"flite:slt", 15, "SLT, English (US), woman, Flite", "en-US"},
                 {"own:mine:/v/it's.onnx", 16, "it's, Neural", "cs"},
                 {"awb_time", -1, "", ""}};
    for (const auto& [wanted, index, title, tag] : cases) {
        EXPECT_EQ(FindVoice(wanted), index) << wanted;
        EXPECT_TRUE(index < 0 || VoiceAt(index).title == title) << VoiceAt(index).title;
        EXPECT_TRUE(index < 0 || VoiceAt(index).language == tag) << VoiceAt(index).language;
    }
    const auto command = [](int index) {
        const SpeechEngine row = EngineOf(VoiceAt(index));
        return row.command(row, VoiceAt(index), "/t x", "/w");
    };
    EXPECT_EQ(command(12), "espeak-ng -b 1 -v de -f '/t x' -w /w");
    EXPECT_EQ(command(15), "flite -voice slt -f '/t x' -o /w");
    EXPECT_EQ(command(16), "neural '/v/it'\\''s.onnx' '/t x' /w");
    const UserSetting<const char*> kept{"Settings", "Voice", ""};
    const UserSetting<int> keptNumber{"Settings", "TextToSpeechVoice", 0};
    kept.Delete();
    keptNumber.Delete();
    // Nothing is chosen: a voice of the user's language, whatever the engines list first.
    EXPECT_EQ(ChosenVoice(), 12);
    KeepChosenVoice(10);
    EXPECT_EQ(ChosenVoice(), 10);
    kept.Set("festival:removed");
    EXPECT_EQ(ChosenVoice(), 12);
    // What an earlier version kept is read once.
    kept.Delete();
    keptNumber.Set(1);
    EXPECT_EQ(ChosenVoice(), 1);
    EXPECT_EQ(kept.Get(), "festival:kal_diphone");
    kept.Delete();
    keptNumber.Delete();
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
}

TEST(VoiceCharset, IsTheNamedOneOrAsKnown) {
    EXPECT_EQ(
        CharsetInDescription("(proclaim_voice 'x '((language italian)\n (coding ISO-8859-1)))"),
        kLatin1);
    EXPECT_EQ(CharsetInDescription("   (coding utf-8)"), kUtf8);
    EXPECT_EQ(CharsetInDescription("(coding ISO-8859-15)"), kLatin9);
    for (const char* none : {"", "(coding", "(coding )", "(coding KOI-7)", "(language english)"})
        EXPECT_EQ(CharsetInDescription(none), std::nullopt) << none;

    const FakeEngine folder;
    const std::string voice = folder / "usr/share/festival/voices/polish/pl_ewa/festvox";
    std::filesystem::create_directories(voice);
    std::ofstream(voice + "/pl_ewa.scm") << ";; a voice\n(coding ISO-8859-2)";
    const ScopedVariable root("LECTORA_ROOT", folder.Path().c_str());
    EXPECT_EQ(CharsetOfVoice("pl_ewa"), kLatin2) << "installed description";
    EXPECT_EQ(CharsetOfVoice("czech_ph"), kLatin2) << "known voice";
    EXPECT_EQ(CharsetOfVoice("hindi_NSK_diphone"), kUtf8);
    for (const char* english : {"kal_diphone", "", "No Voices Found", "../polish/pl_ewa"})
        EXPECT_EQ(CharsetOfVoice(english), kAscii) << english;
}

}  // namespace
