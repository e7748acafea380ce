#include "speech/synthesis.h"

#include <gtest/gtest.h>

#include "speech/run_files.h"
#include "speech/tts_sound_source.h"
#include "speech/voice_table.h"
#include "tests/speech/fake_engine.h"

namespace {

struct Request {
    Request(const std::string& text, const std::string& output) : text_(text), output_(output) {
        tts.text = text_.c_str();
        tts.outputPath = output_.c_str();
    }
    SynthesisOutcome Run(ImpatientProgress progress = ImpatientProgress()) {
        const LProcessResult result = Process(progress, tts);
        EXPECT_TRUE(progress.limit == 20000 || !progress.limit) << *progress.limit;
        EXPECT_EQ(result, tts.result);
        EXPECT_TRUE(tts.done.Ref().IsSignaled());
        return tts.outcome;
    }
    LTTS tts;

private:
    std::string text_, output_;
};

TEST(Synthesis, HandsThePreparedTextToTheEngineAndDeliversItsFileAndNothingElse) {
    const FakeEngine engine;
    engine.Speak(
        "ls /proc/self/fd >$here/fds; printf %s \"$3\" >$here/path; cat \"$3\" >$here/heard;"
        "echo \"$2\" >$here/voice; cp $here/good.wav \"$5\"");
    std::size_t descriptors = 0;
    for (const std::string folder : {"plain", "it's a $(folder); \"or\" so", "ünïcode"}) {
        const std::string output = engine.Path() + "/" + folder;
        std::filesystem::create_directory(output);
        Request request("It’s a café.\n----\nYes", output + "/speech.wav");
        request.tts.voice = 1;
        EXPECT_EQ(request.Run(), SynthesisOutcome::kSpoken) << folder;
        EXPECT_EQ(ScratchFolder::ReadFile(output + "/speech.wav"), engine.Read("good.wav"));
        EXPECT_EQ(engine.Read("heard"), "It's a caf\xE9.\n\nYes");
        EXPECT_EQ(engine.Read("voice"), "(voice_czech_ph)\n");
        EXPECT_EQ(engine.Read("fds"), "0\n1\n2\n3\n") << "3 is the listing's own";
        EXPECT_EQ(CountFiles(output), 1U) << "nothing left behind";
        EXPECT_FALSE(std::filesystem::exists(engine.Read("path")));
        if (descriptors == 0)
            descriptors = CountFiles("/proc/self/fd");
    }
    // A path that would not fit into the 260 characters of the command.
    std::string deep = engine.Path() + "/" + std::string(120, 'd');
    std::filesystem::create_directory(deep);
    Request request("Hello", deep + "/" + std::string(100, 'f') + ".wav");
    EXPECT_EQ(request.Run(), SynthesisOutcome::kSpoken);
    EXPECT_EQ(ScratchFolder::ReadFile(request.tts.outputPath), engine.Read("good.wav"));
    EXPECT_TRUE(Eventually([&] { return CountFiles("/proc/self/fd") <= descriptors; }));
}

// Which leaves out a last sentence of one word with no line end behind it.
TEST(Synthesis, GivesFliteALineEnd) {
    const FakeEngine engine;
    engine.Script("flite", "cat \"$4\" >$here/heard; cp $here/good.wav \"$6\"");
    AddVoices({{.engine = "flite", .name = "slt", .title = "SLT", .language = "en-US"}});
    Request request("Hello there. Home.", engine / "speech.wav");
    request.tts.voice = FindVoice("flite:slt");
    EXPECT_EQ(request.Run(), SynthesisOutcome::kSpoken);
    EXPECT_EQ(engine.Read("heard"), "Hello there. Home.\n");
}

TEST(Synthesis, IsJudgedByTheFileAndSaysWhy) {
    using enum SynthesisOutcome;
    const struct {
        const char* what;
        const char* engine;  // null: not installed
        SynthesisOutcome outcome;
        const char* text = "Hi";
        const char* file = "s.wav";
    } cases[] = {
        {"exits without a file", "rm \"$5\"", kNoSound},
        {"writes nothing", "exit 0", kNoSound},
        {"dies before its first sample", "head -c 46 $here/good.wav >\"$5\"; kill -SEGV $$",
         kIncomplete},
        {"dies with an empty header",
         "head -c 42 $here/good.wav >\"$5\"; printf '\\0\\0\\0\\0abcdef' >>\"$5\"; kill -SEGV $$",
         kNoSound},
        {"writes half", "head -c 1000 $here/good.wav >\"$5\"", kIncomplete},
        {"writes something else", "yes | head -n 5000 >\"$5\"", kNoSound},
        {"fails after a whole file", "cp $here/good.wav \"$5\"; exit 1", kSpoken},
        {"is not asked for nothing", "touch $here/started; cp $here/good.wav \"$5\"", kNothingToSay,
         "...\n😀"},
        {"no such folder", "touch $here/started", kCannotWrite, "Hi", "none/s.wav"},
        {"output is a folder", "cp $here/good.wav \"$5\"", kCannotWrite, "Hi", "bin"},
        {"not installed", nullptr, kEngineMissing},
    };
    for (const auto& test : cases) {
        const FakeEngine engine(test.engine == nullptr);
        if (test.engine)
            engine.Speak(test.engine);
        Request request(test.text, engine.Path() + "/" + test.file);
        EXPECT_EQ(request.Run(), test.outcome) << test.what;
        const bool spoken = test.outcome == kSpoken;
        EXPECT_EQ(request.tts.result, spoken ? kProcessDone : kProcessFailed) << test.what;
        EXPECT_EQ(SynthesisMessage(test.outcome).empty(), spoken) << test.what;
        EXPECT_EQ(CountFiles(engine.Path(), ".speech"), 0U) << test.what;
        EXPECT_EQ(CountFiles(engine.Path(), "started"), 0U) << test.what;
        EXPECT_EQ(CountFiles(engine.Path(), "s.wav"), spoken ? 1U : 0U) << test.what;
    }
}

TEST(Synthesis, ARunThatIsGivenUpEndsItsEngineWithAllThatItStarted) {
    const FakeEngine engine;
    const std::string output = engine / "s.wav";
    for (const bool cancel : {true, false}) {
        engine.Speak("sleep 100 & printf '%s\\n' $$ $! >$here/ids; wait");
        const auto isAtWork = [&] { return !engine.Read("ids").empty(); };
        Request first("Hello", output);
        EXPECT_EQ(first.Run(ImpatientProgress(isAtWork, cancel)),
                  cancel ? SynthesisOutcome::kStopped : SynthesisOutcome::kTimedOut);
        EXPECT_EQ(first.tts.result, cancel ? kProcessStopped : kProcessFailed);
        EXPECT_EQ(SynthesisMessage(first.tts.outcome).empty(), cancel);
        EXPECT_TRUE(ProcessesEnd(engine / "ids"));
        EXPECT_EQ(CountFiles(engine.Path(), ".speech"), 0U);
        EXPECT_FALSE(std::filesystem::exists(output));
        std::filesystem::remove(engine / "ids");
    }
}

TEST(Synthesis, WhatAnEngineLeavesBehindEndsWithItAndItsFileHasABound) {
    const FakeEngine engine;
    engine.Speak(
        "sleep 100 & echo $! >$here/ids; ulimit -f >$here/blocks; cp $here/good.wav \"$5\"");
    Request request("Hello", engine / "s.wav");
    EXPECT_EQ(request.Run(), SynthesisOutcome::kSpoken);
    EXPECT_TRUE(ProcessesEnd(engine / "ids"));
    EXPECT_EQ(engine.Read("blocks"), "2097152\n");
}

TEST(Synthesis, AnEngineDiesWithTheProgram) {
    const FakeEngine engine;
    engine.Speak("echo $$ >$here/engine; exec sleep 100");
    const auto isAtWork = [&] { return !engine.Read("engine").empty(); };
    const auto isKilled = [&] { return isAtWork() && ::kill(::getpid(), SIGKILL) != 0; };
    ::signal(SIGCHLD, SIG_DFL);  // a voice query had it ignored, which hides the child's end
    GTEST_FLAG_SET(death_test_style, "fast");
    EXPECT_EXIT(Request("Hello", engine / "s.wav").Run(ImpatientProgress(isKilled)),
                testing::KilledBySignal(SIGKILL), "");
    EXPECT_TRUE(ProcessesEnd(engine / "engine"));
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
    const std::string folder = engine.Path() + "/";
    const std::string dead = make(MakeRunSoundFile(folder, textOfDead), true);
    const std::string living = make(MakeRunSoundFile(folder, textOfLiving), false);
    std::vector<std::string> kept = {living, textOfLiving, make(stranger, true)};
    for (const char* other : {".speech.wav", ".speeches-of-2026-a.wav", "speech.wav"})
        kept.push_back(make(folder + other, true));
    make(textOfDead, true);
    RemoveFilesOfDeadRuns(folder);
    for (const std::string& path : {dead, textOfDead})
        EXPECT_FALSE(std::filesystem::exists(path)) << path;
    for (const std::string& path : kept)
        EXPECT_TRUE(std::filesystem::remove(path)) << path;
}

std::string OpenWaveFile() {
    std::string path;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code closed;
        const std::string target = std::filesystem::read_symlink(entry.path(), closed);
        path = target.ends_with(".wav") ? target : path;
    }
    return path;
}

TEST(TtsSoundSource, ReadsWhatTheEngineSpokeOrIsSilenceThatTellsWhyAndDeletesItsFile) {
    const FakeEngine engine;
    const struct {
        const char* text;
        const char* engine;
        SynthesisOutcome outcome;
        int frames, rate, sample;
    } cases[] = {
        {"Hello", "cp $here/good.wav \"$5\"", SynthesisOutcome::kSpoken, 1000, 16000, 1600},
        {"Hello", "exit 0", SynthesisOutcome::kNoSound, 0, 11025, 0},
        {"", "exit 0", SynthesisOutcome::kNothingToSay, 0, 11025, 0}};
    for (const auto& test : cases) {
        engine.Speak(test.engine);
        std::string path;
        {
            LTTSSoundSource* const object = new LTTSSoundSource(test.text, 1);
            const LSoundSource source(object);
            EXPECT_EQ(object->Outcome(), test.outcome);
            EXPECT_EQ(source->Status(), SoundStatus::kGood);
            EXPECT_EQ(source->SampleRate(), test.rate);
            EXPECT_EQ(source->GetEndSample(), test.frames);
            int samples[2] = {7, 7};
            source->Read(samples, 2);
            EXPECT_EQ(samples[0], test.sample);
            path = OpenWaveFile();
            EXPECT_EQ(std::filesystem::exists(path), test.frames > 0);
        }
        EXPECT_FALSE(std::filesystem::exists(path)) << path;
    }
}

}  // namespace
