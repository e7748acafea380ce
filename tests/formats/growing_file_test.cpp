// WAVE files that are read while somebody writes them, or changes them in other ways.
#include <sys/file.h>
#include <sys/stat.h>

#include <chrono>
#include <functional>
#include <thread>

#include "formats/wave_file.h"
#include "foundation/files/file_io.h"
#include "foundation/threads/progress.h"
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
    const auto waitWhile = [&](const std::function<void()>& act, int end, bool isStreaming) {
        std::thread actor([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            act();
        });
        source->WaitForStreamingData(kLongWait);
        actor.join();
        EXPECT_EQ(source->GetEndSample(), end);
        EXPECT_EQ(source->IsStreaming(), isStreaming) << end;
    };
    waitWhile([&] { stop.Signal(); }, 0, true);
    stop.Reset();
    waitWhile([&] { WriteAll(sink_, signal); }, 1000, true);
    std::filesystem::remove(path_);
    Store("g.wav", "another");
    waitWhile([&] { WriteAll(sink_, signal); }, 2000, true);
    waitWhile([&] { sink_->Finish(); }, 2000, false);
    EXPECT_EQ(Next(source, 50), std::vector<int>(signal.begin() + 600, signal.begin() + 700));
    EXPECT_EQ(source->ReadError(), 0);
}

TEST_F(GrowingFile, WritersThatEndInOtherWaysLeaveAnExactEnd) {
    WriteAll(sink_, TestSignal(1000));
    const std::string unfinished = Load(path_);
    const std::string path = Path("other.wav");
    const struct {
        const char* name;
        int cutAt;            // what becomes of the file: its size, and ...
        std::string written;  // ... what is written
        int writtenAt;
        int end;
        int error;
    } cases[] = {{"killed", 2046, "", 0, 500, 0},
                 {"killed in a frame", 2046, "x", 2046, 500, 0},
                 {"cut", 20, "", 0, 0, ESTALE},
                 {"shorter than it says", 446, std::string("\xD0\x07\0\0", 4), 42, 100, ESTALE},
                 {"long gone", 0, "", 0, 500, 0}};
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        Store("other.wav", unfinished);
        const bool isLongGone = test.cutAt == 0;
        UniqueFd writer(::open(path.c_str(), O_RDWR));
        const timespec longAgo[2] = {{1000000, 0}, {1000000, 0}};
        ASSERT_EQ(isLongGone ? ::futimens(writer.Get(), longAgo) : ::flock(writer.Get(), LOCK_SH),
                  0);
        const LSoundSource source = LWaveFile::OpenSource(path.c_str());
        ASSERT_TRUE(source->IsStreaming());
        if (!isLongGone) {
            EXPECT_EQ(source->GetEndSample(), 500);
            EXPECT_EQ(::ftruncate(writer.Get(), test.cutAt), 0);
            EXPECT_EQ(WriteFullyAt(writer.Get(), test.written, test.writtenAt), 0);
        }
        writer.Reset();
        for (int looks = 0; looks < 3 && source->IsStreaming(); ++looks)
            source->WaitForStreamingData(kLongWait);
        EXPECT_FALSE(source->IsStreaming());
        EXPECT_EQ(source->GetEndSample(), test.end);
        EXPECT_EQ(source->ReadError(), test.error);
    }
}

}  // namespace
