#include "speech/synthesis.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "foundation/child_process.h"
#include "speech/text_preparation.h"
#include "speech/tts_sound_source.h"
#include "tests/speech/fake_engine.h"

namespace {

// Gives up early, or as if the user had cancelled.
class ImpatientProgress : public LSilentProgress {
public:
    explicit ImpatientProgress(unsigned int patience, bool cancel = false)
        : patience_(patience), cancel_(cancel) {}
    LProcessResult ProcessWaitSignal(LSignalObjectRef signal, unsigned int milliseconds) {
        EXPECT_EQ(milliseconds, 20000U);
        if (signal.WaitSignal(patience_))
            return kProcessDone;
        return cancel_ ? kProcessStopped : kProcessFailed;
    }

private:
    unsigned int patience_;  // milliseconds
    bool cancel_;
};

struct Request {
    Request(const std::string& text, const std::string& output) : text_(text), output_(output) {
        tts.text = text_.c_str();
        tts.outputPath = output_.c_str();
    }
    SynthesisOutcome Run(ImpatientProgress progress = ImpatientProgress(5000)) {
        const LProcessResult result = Process(progress, tts);
        EXPECT_EQ(result, tts.result);
        EXPECT_TRUE(tts.done.Ref().IsSignaled());
        return tts.outcome;
    }
    LTTS tts;

private:
    std::string text_, output_;
};

std::size_t FilesLike(const std::string& folder, const std::string& beginning) {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        count += entry.path().filename().string().starts_with(beginning);
    return count;
}

template <typename Condition>
bool Eventually(Condition condition) {
    for (int i = 0; i < 500 && !condition(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return condition();
}

std::size_t OpenDescriptors() {
    return FilesLike("/proc/self/fd", "");
}

TEST(Synthesis, HandsThePreparedTextToTheEngineAndDeliversItsFile) {
    const FakeEngine engine;
    engine.Speak("cat \"$3\" >$here/heard; echo \"$2\" >$here/voice; cp $here/good.wav \"$5\"");
    for (const std::string folder : {"plain", "it's a $(folder); \"or\" so", "ünïcode"}) {
        const std::string output = engine.Folder() + "/" + folder;
        std::filesystem::create_directory(output);
        Request request("It’s a café.\n----\nYes", output + "/speech.wav");
        EXPECT_EQ(request.Run(), SynthesisOutcome::Spoken) << folder;
        EXPECT_EQ(ReadFile(output + "/speech.wav"), ReadFile(engine.Folder() + "/good.wav"));
        EXPECT_EQ(ReadFile(engine.Folder() + "/heard"), "It's a cafe.\n\nYes");
        EXPECT_EQ(ReadFile(engine.Folder() + "/voice"), "(voice_one)\n");
        EXPECT_EQ(FilesLike(output, ""), 1U) << "nothing left behind";
    }
    // A path that would not fit into the 260 characters of the command.
    std::string deep = engine.Folder() + "/" + std::string(120, 'd');
    std::filesystem::create_directory(deep);
    Request request("Hello", deep + "/" + std::string(100, 'f') + ".wav");
    EXPECT_EQ(request.Run(), SynthesisOutcome::Spoken);
    EXPECT_EQ(ReadFile(request.tts.outputPath), ReadFile(engine.Folder() + "/good.wav"));
}

TEST(Synthesis, IsJudgedByTheFileAndSaysWhy) {
    const struct {
        const char* what;
        const char* engine;  // null: not installed
        const char* text;
        const char* file;
        SynthesisOutcome outcome;
    } cases[] = {
        {"exits without a file", "rm \"$5\"", "Hi", "s.wav", SynthesisOutcome::NoSound},
        {"writes nothing", "exit 0", "Hi", "s.wav", SynthesisOutcome::NoSound},
        {"dies before its first sample", "head -c 46 $here/good.wav >\"$5\"; kill -SEGV $$", "Hi",
         "s.wav", SynthesisOutcome::Incomplete},
        {"dies with an empty header",
         "head -c 42 $here/good.wav >\"$5\"; printf '\\0\\0\\0\\0abcdef' >>\"$5\"; kill -SEGV $$",
         "Hi", "s.wav", SynthesisOutcome::NoSound},
        {"writes half", "head -c 1000 $here/good.wav >\"$5\"", "Hi", "s.wav",
         SynthesisOutcome::Incomplete},
        {"writes something else", "yes | head -n 5000 >\"$5\"", "Hi", "s.wav",
         SynthesisOutcome::NoSound},
        {"fails after a whole file", "cp $here/good.wav \"$5\"; exit 1", "Hi", "s.wav",
         SynthesisOutcome::Spoken},
        {"is not asked for nothing", "touch $here/started; cp $here/good.wav \"$5\"", "...\n😀",
         "s.wav", SynthesisOutcome::NothingToSay},
        {"no such folder", "touch $here/started", "Hi", "none/s.wav",
         SynthesisOutcome::CannotWrite},
        {"output is a folder", "cp $here/good.wav \"$5\"", "Hi", "bin",
         SynthesisOutcome::CannotWrite},
        {"not installed", nullptr, "Hi", "s.wav", SynthesisOutcome::EngineMissing},
    };
    for (const auto& test : cases) {
        const FakeEngine engine(test.engine == nullptr);
        if (test.engine)
            engine.Speak(test.engine);
        Request request(test.text, engine.Folder() + "/" + test.file);
        EXPECT_EQ(request.Run(), test.outcome) << test.what;
        const bool spoken = test.outcome == SynthesisOutcome::Spoken;
        EXPECT_EQ(request.tts.result, spoken ? kProcessDone : kProcessFailed) << test.what;
        EXPECT_EQ(SynthesisMessage(test.outcome).empty(), spoken) << test.what;
        EXPECT_EQ(FilesLike(engine.Folder(), ".speech"), 0U) << test.what;
        EXPECT_EQ(FilesLike(engine.Folder(), "started"), 0U) << test.what;
        EXPECT_EQ(FilesLike(engine.Folder(), "s.wav"), spoken ? 1U : 0U) << test.what;
    }
}

TEST(Synthesis, AnEngineLeftBehindNeverTouchesALaterRun) {
    const FakeEngine engine;
    const std::string output = engine.Folder() + "/s.wav";
    for (const bool cancel : {true, false}) {
        engine.Speak("sleep 1; yes late | head -n 5000 >\"$5\"; touch $here/late");
        Request first("Hello", output);
        EXPECT_EQ(first.Run(ImpatientProgress(250, cancel)),
                  cancel ? SynthesisOutcome::Stopped : SynthesisOutcome::TimedOut);
        EXPECT_EQ(first.tts.result, cancel ? kProcessStopped : kProcessFailed);
        EXPECT_EQ(SynthesisMessage(first.tts.outcome).empty(), cancel);
        engine.Speak("cp $here/good.wav \"$5\"");
        Request second("Hello", output);
        EXPECT_EQ(second.Run(), SynthesisOutcome::Spoken);
        EXPECT_TRUE(Eventually([&] { return FilesLike(engine.Folder(), "late") == 1; }));
        EXPECT_TRUE(Eventually([&] { return FilesLike(engine.Folder(), ".speech") == 0; }));
        EXPECT_EQ(ReadFile(output), ReadFile(engine.Folder() + "/good.wav"));
        std::filesystem::remove(engine.Folder() + "/late");
    }
}

TEST(Synthesis, AnEngineThatOutlivesTheProgramLeavesNoFileBehind) {
    const FakeEngine engine;
    engine.Speak(
        "for wait in $(seq 200); do test -e $here/go && break; sleep 0.05; done;"
        "yes late | head -n 5000 >\"$5\"; touch $here/late");
    ::signal(SIGCHLD, SIG_DFL);
    GTEST_FLAG_SET(death_test_style, "fast");
    EXPECT_EXIT(
        {
            Request request("Hello", engine.Folder() + "/s.wav");
            const bool timedOut = request.Run(ImpatientProgress(250)) == SynthesisOutcome::TimedOut;
            std::exit(timedOut ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
    EXPECT_EQ(FilesLike(engine.Folder(), ".speech"), 1U) << "the engine is still at work";
    std::ofstream(engine.Folder() + "/go").close();
    EXPECT_TRUE(Eventually([&] { return FilesLike(engine.Folder(), "late") == 1; }));
    EXPECT_TRUE(Eventually([&] { return FilesLike(engine.Folder(), ".speech") == 0; }));
}

TEST(Synthesis, ManyRunsLeaveNoDescriptorAndNoTextFileBehind) {
    const FakeEngine engine;
    engine.Speak(
        "ls /proc/self/fd >$here/fds; echo \"$3\" >>$here/texts; cp $here/good.wav \"$5\"");
    Request warmUp("Hello", engine.Folder() + "/s.wav");
    EXPECT_EQ(warmUp.Run(), SynthesisOutcome::Spoken);
    const std::size_t before = OpenDescriptors();
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(Request("Hello", engine.Folder() + "/s.wav").Run(), SynthesisOutcome::Spoken);
    EXPECT_TRUE(Eventually([&] { return OpenDescriptors() <= before; }));
    std::ifstream texts(engine.Folder() + "/texts");
    int runs = 0;
    for (std::string path; std::getline(texts, path); ++runs)
        EXPECT_FALSE(std::filesystem::exists(path)) << path;
    EXPECT_EQ(runs, 6);
    EXPECT_EQ(ReadFile(engine.Folder() + "/fds"), "0\n1\n2\n3\n") << "3 is the listing's own";
}

TEST(TtsSoundSource, ReadsWhatTheEngineSpokeAndDeletesItsFile) {
    const FakeEngine engine;
    engine.Speak("cp $here/good.wav \"$5\"; echo \"$5\" >$here/out");
    {
        const LSoundSource source = OpenTTSSoundSource("Hello", 1);
        EXPECT_EQ(source->Status(), SoundStatus::kGood);
        EXPECT_EQ(source->SampleRate(), 16000);
        EXPECT_EQ(source->GetEndSample(), 1000);
        EXPECT_EQ(source->PeakMagnitude(), kMaxPcm16Peak);
        int samples[2] = {};
        source->Read(samples, 2);
        EXPECT_EQ(samples[0], 1600);
        EXPECT_EQ(source->GetPositionSample(), 2);
    }
    EXPECT_FALSE(std::filesystem::exists(ReadFile(engine.Folder() + "/out")));
}

TEST(TtsSoundSource, WithoutSpeechIsSilenceThatTellsWhy) {
    const FakeEngine engine;
    engine.Speak("exit 0");
    const struct {
        const char* text;
        SynthesisOutcome outcome;
    } cases[] = {{"", SynthesisOutcome::NothingToSay}, {"Hello", SynthesisOutcome::NoSound}};
    for (const auto& test : cases) {
        LTTSSoundSource* const object = new LTTSSoundSource(test.text, 0);
        const LSoundSource source(object);
        EXPECT_EQ(object->Outcome(), test.outcome);
        EXPECT_EQ(source->GetEndSample(), 0);
        EXPECT_EQ(source->Status(), SoundStatus::kGood);
        int sample = 7;
        source->Read(&sample, 1);
        EXPECT_EQ(sample, 0);
    }
}

// The installed engine dies on each of these when it gets them as they stand.
void SpeakWithRealEngine() {
    const std::string texts[] = {
        "Hello.\n----\nWorld.",
        "He said \"!!!\" \"???\" and left.",
        "Control \x01 bytes.\n\x02\nEnd",
        "Faces 😀.\n😀😀\nEnd",
        "“Curly” — ‘quotes’ …\n…\n“”",
        "a -- -- b ... -- !\n\n\"\n\nEnd! ?",
        std::string(600, 'x') + " = " + std::string(500, '='),
    };
    char folder[] = "/tmp/lectora-real-XXXXXX";
    ASSERT_NE(::mkdtemp(folder), nullptr);
    for (const std::string& text : texts) {
        Request request(text, std::string(folder) + "/s.wav");
        EXPECT_EQ(request.Run(ImpatientProgress(20000)), SynthesisOutcome::Spoken) << text;
    }
    std::filesystem::remove_all(folder);
}

TEST(RealEngine, SpeaksTextsThatKillItUnprepared) {
    ASSERT_TRUE(IsProgramInstalled("text2wave"));
    InFreshProcess(SpeakWithRealEngine);
}

}  // namespace
