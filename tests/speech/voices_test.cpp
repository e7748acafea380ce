#include "speech/voices.h"

#include <gtest/gtest.h>

#include <atomic>

#include "foundation/text_buffer.h"
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
    for (const auto& [index, expected, later] :
         {std::tuple{0, "un", 1}, {1, "deux", 1}, {2, "trois", 0}}) {
        TTSGetDictSpeakerName(index, name);
        EXPECT_STREQ(name, expected);
        EXPECT_EQ(IndexAtNextStart(index), later);
    }
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
