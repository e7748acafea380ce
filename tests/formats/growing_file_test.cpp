// WAVE files that are read while somebody writes them, or changes them in other ways.
#include <sys/file.h>
#include <sys/stat.h>

#include <chrono>
#include <functional>
#include <thread>

#include "formats/wave_file.h"
#include "foundation/progress.h"
#include "sound/source_to_sink.h"
#include "tests/formats/format_files.h"
#include "tests/support/memory_sound.h"

namespace {

constexpr int kLongWait = 60000;  // milliseconds; every wait below is to end long before

class GrowingFile : public FormatTest {
protected:
    GrowingFile()
        : path_(Path("g.wav")), sink_(LWaveFile::OpenSinkPCM(path_.c_str(), 8000, 2, 16, 0)) {}

    std::string path_;
    LSoundSink sink_;
};

TEST_F(GrowingFile, AReaderFollowsTheWritingThreadToTheLastFrame) {
    const std::vector<int> signal = TestSignal(2 * 60001);
    const LSoundSource source = LWaveFile::OpenSource(path_.c_str());
    ASSERT_TRUE(source->IsStreaming());
    std::thread writer([&] {
        for (int at = 0, step = 1; at < 60001; at += step, step = (step * 7 + 3) % 5000 + 1) {
            step = std::min(step, 60001 - at);
            sink_->Write(&signal[static_cast<std::size_t>(at) * 2], step);
            std::this_thread::yield();
        }
        EXPECT_EQ(sink_->Finish(), 0);
    });
    auto* copy = new RecordingSink(8000, 2);
    LPRSourceToSink request{"", source, LSoundSink(copy)};
    LSilentProgress progress;
    EXPECT_EQ(Process(progress, request), kProcessDone);
    writer.join();
    EXPECT_EQ(copy->samples, signal);
    EXPECT_FALSE(source->IsStreaming());
    EXPECT_EQ(source->GetEndSample(), 60001);
}

TEST_F(GrowingFile, WaitsEndByDataByTheEndAndByAnInterrupt) {
    LSignalObject stop;
    const LSoundSource source = LWaveFile::OpenFollowingSource(path_.c_str(), stop.Ref());
    EXPECT_EQ(source->GetEndSample(), 0);
    source->WaitForStreamingData(1);
    source->Seek(300);  // where there is nothing yet
    const std::vector<int> signal = TestSignal(2000);
    struct {
        const char* name;
        std::function<void()> act;
        int end;
        bool isStreaming;
    } const cases[] = {{"interrupt", [&] { stop.Signal(); }, 0, true},
                       {"data",
                        [&] {
                            stop.Reset();
                            WriteAll(sink_, signal);
                        },
                        1000, true},
                       {"replaced",
                        [&] {
                            std::filesystem::remove(path_);
                            Store("g.wav", "another");
                            WriteAll(sink_, signal);
                        },
                        2000, true},
                       {"end", [&] { sink_->Finish(); }, 2000, false}};
    for (const auto& test : cases) {
        std::thread actor([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            test.act();
        });
        source->WaitForStreamingData(kLongWait);
        actor.join();
        EXPECT_EQ(source->GetEndSample(), test.end) << test.name;
        EXPECT_EQ(source->IsStreaming(), test.isStreaming) << test.name;
    }
    EXPECT_EQ(Next(source, 50), std::vector<int>(signal.begin() + 600, signal.begin() + 700));
    EXPECT_EQ(source->ReadError(), 0);
}

TEST_F(GrowingFile, WritersThatEndInOtherWaysLeaveAnExactEnd) {
    WriteAll(sink_, TestSignal(1000));
    const std::string unfinished = Load(path_);
    const std::string path = Path("other.wav");
    struct {
        const char* name;
        bool isLocked;
        void (*act)(int file, const char* path);
        int end;
        int error;
    } const cases[] = {
        {"killed", true, [](int, const char*) {}, 500, 0},
        {"killed in a frame", true,
         [](int file, const char*) { EXPECT_EQ(::pwrite(file, "x", 1, 2046), 1); }, 500, 0},
        {"long gone", false,
         [](int, const char* name) {
             const timespec times[2] = {{1000000, 0}, {1000000, 0}};
             EXPECT_EQ(::utimensat(AT_FDCWD, name, times, 0), 0);
         },
         500, 0},
        {"cut", true, [](int file, const char*) { EXPECT_EQ(::ftruncate(file, 20), 0); }, 0,
         ESTALE},
        {"shorter than it says", true,
         [](int file, const char*) {
             EXPECT_EQ(::ftruncate(file, 46 + 400), 0);
             EXPECT_EQ(::pwrite(file, "\xD0\x07\0\0", 4, 42), 4);
         },
         100, ESTALE},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        Store("other.wav", unfinished);
        UniqueFd writer(::open(path.c_str(), O_RDWR));
        if (test.isLocked)
            ASSERT_EQ(::flock(writer.Get(), LOCK_SH), 0);
        else
            test.act(writer.Get(), path.c_str());
        const LSoundSource source = LWaveFile::OpenSource(path.c_str());
        ASSERT_TRUE(source->IsStreaming());
        if (test.isLocked) {
            EXPECT_EQ(source->GetEndSample(), 500);
            test.act(writer.Get(), path.c_str());
            writer.Reset();
        }
        for (int looks = 0; looks < 3 && source->IsStreaming(); ++looks)
            source->WaitForStreamingData(kLongWait);
        EXPECT_FALSE(source->IsStreaming());
        EXPECT_EQ(source->GetEndSample(), test.end);
        EXPECT_EQ(source->ReadError(), test.error);
    }
}

}  // namespace
