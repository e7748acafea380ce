#include "speech/synthesis.h"

#include <gtest/gtest.h>

#include <functional>

#include "speech/run_files.h"
#include "speech/tts_sound_source.h"
#include "tests/speech/fake_engine.h"

namespace {

// Gives up once the engine is at work, or cancels as the user would; without a condition it waits
// for the engine.
class ImpatientProgress : public LSilentProgress {
public:
    explicit ImpatientProgress(std::function<bool()> isEnough = {}, bool cancel = false)
        : isEnough_(std::move(isEnough)), cancel_(cancel) {}
    LProcessResult ProcessWaitSignal(LSignalObjectRef signal, unsigned int milliseconds) {
        EXPECT_EQ(milliseconds, 20000U);
        if (!isEnough_)
            return LSilentProgress::ProcessWaitSignal(signal, milliseconds);
        EXPECT_TRUE(Eventually(isEnough_));
        return cancel_ ? kProcessStopped : kProcessFailed;
    }

private:
    std::function<bool()> isEnough_;
    bool cancel_;
};

struct Request {
    Request(const std::string& text, const std::string& output) : text_(text), output_(output) {
        tts.text = text_.c_str();
        tts.outputPath = output_.c_str();
    }
    SynthesisOutcome Run(ImpatientProgress progress = ImpatientProgress()) {
        const LProcessResult result = Process(progress, tts);
        EXPECT_EQ(result, tts.result);
        EXPECT_TRUE(tts.done.Ref().IsSignaled());
        return tts.outcome;
    }
    LTTS tts;

private:
    std::string text_, output_;
};

TEST(Synthesis, HandsThePreparedTextToTheEngineAndDeliversItsFile) {
    const FakeEngine engine;
    engine.Speak("cat \"$3\" >$here/heard; echo \"$2\" >$here/voice; cp $here/good.wav \"$5\"");
    for (const std::string folder : {"plain", "it's a $(folder); \"or\" so", "ünïcode"}) {
        const std::string output = engine.Folder() + "/" + folder;
        std::filesystem::create_directory(output);
        Request request("It’s a café.\n----\nYes", output + "/speech.wav");
        EXPECT_EQ(request.Run(), SynthesisOutcome::kSpoken) << folder;
        EXPECT_EQ(ReadFile(output + "/speech.wav"), ReadFile(engine.Folder() + "/good.wav"));
        EXPECT_EQ(ReadFile(engine.Folder() + "/heard"), "It's a cafe.\n\nYes");
        EXPECT_EQ(ReadFile(engine.Folder() + "/voice"), "(voice_one)\n");
        EXPECT_EQ(CountFiles(output, ""), 1U) << "nothing left behind";
    }
    // A path that would not fit into the 260 characters of the command.
    std::string deep = engine.Folder() + "/" + std::string(120, 'd');
    std::filesystem::create_directory(deep);
    Request request("Hello", deep + "/" + std::string(100, 'f') + ".wav");
    EXPECT_EQ(request.Run(), SynthesisOutcome::kSpoken);
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
        {"exits without a file", "rm \"$5\"", "Hi", "s.wav", SynthesisOutcome::kNoSound},
        {"writes nothing", "exit 0", "Hi", "s.wav", SynthesisOutcome::kNoSound},
        {"dies before its first sample", "head -c 46 $here/good.wav >\"$5\"; kill -SEGV $$", "Hi",
         "s.wav", SynthesisOutcome::kIncomplete},
        {"dies with an empty header",
         "head -c 42 $here/good.wav >\"$5\"; printf '\\0\\0\\0\\0abcdef' >>\"$5\"; kill -SEGV $$",
         "Hi", "s.wav", SynthesisOutcome::kNoSound},
        {"writes half", "head -c 1000 $here/good.wav >\"$5\"", "Hi", "s.wav",
         SynthesisOutcome::kIncomplete},
        {"writes something else", "yes | head -n 5000 >\"$5\"", "Hi", "s.wav",
         SynthesisOutcome::kNoSound},
        {"fails after a whole file", "cp $here/good.wav \"$5\"; exit 1", "Hi", "s.wav",
         SynthesisOutcome::kSpoken},
        {"is not asked for nothing", "touch $here/started; cp $here/good.wav \"$5\"", "...\n😀",
         "s.wav", SynthesisOutcome::kNothingToSay},
        {"no such folder", "touch $here/started", "Hi", "none/s.wav",
         SynthesisOutcome::kCannotWrite},
        {"output is a folder", "cp $here/good.wav \"$5\"", "Hi", "bin",
         SynthesisOutcome::kCannotWrite},
        {"not installed", nullptr, "Hi", "s.wav", SynthesisOutcome::kEngineMissing},
    };
    for (const auto& test : cases) {
        const FakeEngine engine(test.engine == nullptr);
        if (test.engine)
            engine.Speak(test.engine);
        Request request(test.text, engine.Folder() + "/" + test.file);
        EXPECT_EQ(request.Run(), test.outcome) << test.what;
        const bool spoken = test.outcome == SynthesisOutcome::kSpoken;
        EXPECT_EQ(request.tts.result, spoken ? kProcessDone : kProcessFailed) << test.what;
        EXPECT_EQ(SynthesisMessage(test.outcome).empty(), spoken) << test.what;
        EXPECT_EQ(CountFiles(engine.Folder(), ".speech"), 0U) << test.what;
        EXPECT_EQ(CountFiles(engine.Folder(), "started"), 0U) << test.what;
        EXPECT_EQ(CountFiles(engine.Folder(), "s.wav"), spoken ? 1U : 0U) << test.what;
    }
}

TEST(Synthesis, ARunThatIsGivenUpEndsItsEngineWithAllThatItStarted) {
    const FakeEngine engine;
    const std::string output = engine.Folder() + "/s.wav";
    for (const bool cancel : {true, false}) {
        engine.Speak("sleep 100 & echo $$ >$here/engine; echo $! >$here/child; wait");
        const auto isAtWork = [&] { return !ReadFile(engine.Folder() + "/child").empty(); };
        Request first("Hello", output);
        EXPECT_EQ(first.Run(ImpatientProgress(isAtWork, cancel)),
                  cancel ? SynthesisOutcome::kStopped : SynthesisOutcome::kTimedOut);
        EXPECT_EQ(first.tts.result, cancel ? kProcessStopped : kProcessFailed);
        EXPECT_EQ(SynthesisMessage(first.tts.outcome).empty(), cancel);
        for (const char* process : {"/engine", "/child"}) {
            std::string id;
            std::ifstream(engine.Folder() + process) >> id;
            EXPECT_TRUE(Eventually([&] { return IsGone(id); })) << process;
        }
        EXPECT_EQ(CountFiles(engine.Folder(), ".speech"), 0U);
        EXPECT_FALSE(std::filesystem::exists(output));
        std::filesystem::remove(engine.Folder() + "/child");
    }
}

TEST(Synthesis, AnEngineDiesWithTheProgram) {
    const FakeEngine engine;
    engine.Speak("echo $$ >$here/engine; exec sleep 100");
    const auto isAtWork = [&] { return !ReadFile(engine.Folder() + "/engine").empty(); };
    const auto isKilled = [&] { return isAtWork() && ::kill(::getpid(), SIGKILL) != 0; };
    ::signal(SIGCHLD, SIG_DFL);  // a voice query had it ignored, which hides the child's end
    GTEST_FLAG_SET(death_test_style, "fast");
    EXPECT_EXIT(Request("Hello", engine.Folder() + "/s.wav").Run(ImpatientProgress(isKilled)),
                testing::KilledBySignal(SIGKILL), "");
    std::string id;
    std::ifstream(engine.Folder() + "/engine") >> id;
    EXPECT_TRUE(Eventually([&] { return IsGone(id); })) << id;
}

TEST(Synthesis, FilesOfDeadRunsAreRemovedByAgeAndOnlyThose) {
    const FakeEngine engine;
    const auto old = std::filesystem::file_time_type::clock::now() - std::chrono::hours(1);
    const auto make = [&](const std::string& path, bool isOld) {
        std::ofstream(path) << "x";
        if (isOld)
            std::filesystem::last_write_time(path, old);
        return path;
    };
    const std::string textOfDead = MakeRunTextFile();
    const std::string textOfLiving = MakeRunTextFile();
    const std::string stranger = MakeRunTextFile();
    const std::string folder = engine.Folder() + "/";
    const std::string dead = make(MakeRunSoundFile(folder, textOfDead), true);
    const std::string living = make(MakeRunSoundFile(folder, textOfLiving), false);
    for (const std::string& text : {textOfDead, stranger})
        make(text, true);
    const std::string others[] = {folder + ".speech.wav", folder + ".speeches-of-2026-a.wav",
                                  folder + "speech.wav"};
    for (const std::string& path : others)
        make(path, true);
    RemoveFilesOfDeadRuns(folder);
    for (const std::string& path : {dead, textOfDead})
        EXPECT_FALSE(std::filesystem::exists(path)) << path;
    for (const std::string& path :
         {living, textOfLiving, stranger, others[0], others[1], others[2]})
        EXPECT_TRUE(std::filesystem::remove(path)) << path;
}

TEST(Synthesis, ManyRunsLeaveNoDescriptorAndNoTextFileBehind) {
    const FakeEngine engine;
    engine.Speak(
        "ls /proc/self/fd >$here/fds; echo \"$3\" >>$here/texts; cp $here/good.wav \"$5\"");
    Request warmUp("Hello", engine.Folder() + "/s.wav");
    EXPECT_EQ(warmUp.Run(), SynthesisOutcome::kSpoken);
    const std::size_t before = CountFiles("/proc/self/fd");
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(Request("Hello", engine.Folder() + "/s.wav").Run(), SynthesisOutcome::kSpoken);
    EXPECT_TRUE(Eventually([&] { return CountFiles("/proc/self/fd") <= before; }));
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
    } cases[] = {{"", SynthesisOutcome::kNothingToSay}, {"Hello", SynthesisOutcome::kNoSound}};
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

}  // namespace
