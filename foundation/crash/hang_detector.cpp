#include "foundation/crash/hang_detector.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <string_view>

#include "foundation/crash/crash_box_program.h"
#include "foundation/files/file.h"
#include "foundation/processes/browser.h"
#include "foundation/processes/child_process.h"
#include "foundation/threads/ticks.h"

namespace {

// The mark's content, in this machine's byte order.
struct RunRecord {
    std::int32_t seconds;
    std::uint32_t tick;
};
static_assert(sizeof(RunRecord) == 8);

constexpr std::uint32_t kClockTolerance = 2000;  // milliseconds

// Asks through the helper program, so that this process needs no GUI yet; without it the answer is
// no.
class HelperDesk final : public LBugReportDesk {
public:
    bool AskYesNo(const char* title, const char* text) override {
        return Run("--question", title, text);
    }
    void OpenPage(const std::string& address) override { OpenInBrowser(address); }
    void Tell(const char* title, const char* text) override { Run("--message", title, text); }

private:
    static bool Run(const char* option, const char* title, const char* text) {
        LPipePair pipe = LPipePair::Make();
        if (!pipe.IsOpen())
            return false;
        const char* const arguments[] = {CrashBoxProgram(), option, title, text, nullptr};
        LChildStreams streams;
        streams.output = pipe.writeEnd.Get();
        const LChildProcess box = LChildProcess::Start(arguments, streams);
        pipe.writeEnd.Reset();
        // The answer comes as text because statuses may be lost to an ignored SIGCHLD.
        char answer[3] = {};
        ssize_t length;
        do {
            length = ::read(pipe.readEnd.Get(), answer, sizeof answer);
        } while (length < 0 && errno == EINTR);
        return length == 3 && std::string_view(answer, 3) == "yes";
    }
};

// True when the record tells of a run under the same clock. All in wrapping 32-bit arithmetic.
bool IsClockUnchanged(const RunRecord& record, std::int32_t now, std::uint32_t tick) {
    const std::uint32_t passed =
        (static_cast<std::uint32_t>(now) - static_cast<std::uint32_t>(record.seconds)) * 1000;
    const std::uint32_t expected = passed + record.tick;
    return tick > expected - kClockTolerance && tick < expected + kClockTolerance;
}

// The record of an unfinished run; removes its mark.
bool TakeRecord(const char* path, RunRecord& record) {
    // "/tmp" is everybody's: neither follow a link nor wait at a FIFO.
    const UniqueFd file(::open(path, O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    ::flock(file.Get(), LOCK_SH | LOCK_NB);
    const bool whole = ::read(file.Get(), &record, sizeof record) == sizeof record;
    ::unlink(path);
    return whole;
}

}  // namespace

LHangDetector gLHangDetector;

void LHangDetector::Init(const char* folder, std::int32_t now, std::uint32_t tick,
                         LBugReportDesk& desk) {
    CopyText(path_, folder);
    LFile::_FilePathCat(path_, "_lectora_rl");
    fd_.Reset(::open(path_, O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    RunRecord record{now, tick};
    if (fd_.IsOpen()) {
        ::flock(fd_.Get(), LOCK_EX | LOCK_NB);
        if (::ftruncate(fd_.Get(), 0) == 0 &&
            ::write(fd_.Get(), &record, sizeof record) == sizeof record)
            return;
        Destroy();  // a mark without its record would tell the next start nothing
        return;
    }
    // No new mark now: this run is not guarded.
    if (errno == EEXIST && TakeRecord(path_, record) && IsClockUnchanged(record, now, tick))
        ReportHang(desk);
}

void LHangDetector::Destroy() {
    fd_.Reset();
    if (path_[0])
        ::unlink(path_);
}

void LDebugHangDetectorInit() {
    HelperDesk desk;
    const std::uint32_t tick = GetTickCount();
    gLHangDetector.Init("/tmp", static_cast<std::int32_t>(std::time(nullptr)), tick, desk);
}

void LDebugHangDetectorDestroy() {
    gLHangDetector.Destroy();
}
