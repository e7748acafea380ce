#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <chrono>
#include <cstring>
#include <thread>
#include <vector>

#include "foundation/bug_report.h"
#include "foundation/child_process.h"
#include "foundation/hang_detector.h"
#include "tests/foundation/scratch_folder.h"

namespace {

using std::chrono::milliseconds;

// The signal that ended the child; 0 when it was none.
int CrashChild(const char* way, const std::string& box) {
    const ScopedVariable variable("LECTORA_BOX_TEST", "inherited");
    const char* const arguments[] = {LECTORA_FOUNDATION_CHILD, "crash", way, box.c_str(), nullptr};
    const int status = LChildProcess::Start(arguments, {}).Wait();
    return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
}

// A box program that notes its arguments and what it was started with, and takes its time to
// answer. Clean is nothing blocked, and ignored at most the C library's internal signals 32 and 33.
std::string MakeBox(const ScratchFolder& folder) {
    const std::string notes = " >>" + (folder / "boxes") + "\n";
    return folder.WriteProgram(
        "box",
        "clean=$(grep -E -c '^Sig(Blk:.0*|Ign:.0*(1?80000000|100000000)?)$' /proc/self/status)\n"
        "echo \"box $* $clean $LECTORA_BOX_TEST\"" +
            notes + "sleep 0.5\necho answered" + notes);
}

TEST(Crash, EveryWayStartsTheBoxWaitsForItAndEndsWithItsSignal) {
    struct Case {
        const char* way;
        int signal;
    };
    const Case cases[] = {
        {"fault", SIGSEGV},
        {"illegal", SIGILL},
        {"user", SIGUSR1},
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
        {"heap", SIGSEGV},  // a sanitizer brings its own heap and its own idea of a stack's end
        {"stack", SIGSEGV},
#endif
    };
    for (const Case& each : cases) {
        const ScratchFolder folder;
        EXPECT_EQ(CrashChild(each.way, MakeBox(folder)), each.signal) << each.way;
        EXPECT_EQ(folder.Read("boxes"),
                  "box --signal " + std::to_string(each.signal) + " 2 inherited\nanswered\n")
            << each.way;
    }
}

TEST(Crash, ASecondSignalWhileTheBoxIsUpAsksNothingAndEndsTheProcess) {
    const ScratchFolder folder;
    EXPECT_EQ(CrashChild("twice", MakeBox(folder)), SIGILL);
    const auto limit = std::chrono::steady_clock::now() + milliseconds(10000);
    while (!folder.Read("boxes").ends_with("answered\n") &&
           std::chrono::steady_clock::now() < limit)
        std::this_thread::sleep_for(milliseconds(10));  // the orphaned box ends by itself
    EXPECT_EQ(folder.Read("boxes"), "box --signal 11 2 inherited\nanswered\n");
}

TEST(Crash, WithoutABoxTheSignalEndsTheProcessAllTheSame) {
    EXPECT_EQ(CrashChild("fault", "/no/such/box"), SIGSEGV);
}

// Answers in turn as told and keeps what was asked.
class RecordingDesk final : public LBugReportDesk {
public:
    explicit RecordingDesk(std::vector<bool> answers = {}) : answers_(std::move(answers)) {}
    bool AskYesNo(const char* title, const char* text) override {
        asked.push_back(std::string(title) + "|" + text);
        return asked.size() <= answers_.size() && answers_[asked.size() - 1];
    }
    void OpenPage(const std::string& address) override { pages.push_back(address); }
    std::vector<std::string> asked;
    std::vector<std::string> pages;

private:
    std::vector<bool> answers_;
};

TEST(BugReport, EveryQuestionMustBeAnsweredYesBeforeThePageOpens) {
    struct Case {
        bool crash;
        std::vector<bool> answers;
        std::size_t questions;
        const char* page;
    };
    constexpr const char* kCrashPage = "/software/bug.html?software=Lectora&version=1.05GTK";
    constexpr const char* kHangPage =
        "/software/bug.html?software=Lectora&version=1.05&xi=AbTermOrHang-Gtk";
    const Case cases[] = {{true, {false}, 1, nullptr},
                          {true, {true}, 1, kCrashPage},
                          {false, {false}, 1, nullptr},
                          {false, {true, false}, 2, nullptr},
                          {false, {true, true}, 2, kHangPage}};
    for (const Case& each : cases) {
        RecordingDesk desk(each.answers);
        const auto start = std::chrono::steady_clock::now();
        if (each.crash)
            ReportCrash(desk, 11);
        else
            ReportHang(desk);
        EXPECT_EQ(std::chrono::steady_clock::now() - start >= milliseconds(600),
                  each.questions == 2);
        EXPECT_EQ(desk.asked.size(), each.questions);
        ASSERT_EQ(desk.pages.size(), each.page ? 1u : 0u);
        if (each.page) {
            EXPECT_TRUE(desk.pages[0].starts_with("http://")) << desk.pages[0];
            EXPECT_TRUE(desk.pages[0].ends_with(each.page)) << desk.pages[0];
        }
    }
}

constexpr const char* kMark = "_lectora_rl";

TEST(HangDetector, MarksARunAndRemovesTheMarkAtItsEnd) {
    const ScratchFolder folder;
    RecordingDesk desk;
    const std::int32_t seconds = 0x01020304;
    const std::uint32_t tick = 0x0A0B0C0D;
    {
        LHangDetector detector;
        detector.Init(folder.Path().c_str(), seconds, tick, desk);
        std::string record(8, '\0');
        std::memcpy(record.data(), &seconds, 4);
        std::memcpy(record.data() + 4, &tick, 4);
        EXPECT_EQ(folder.Read(kMark), record);
    }
    EXPECT_FALSE(folder.Has(kMark));
}

TEST(HangDetector, AsksAboutAnUnfinishedRunOnceUnlessTheClockWasChanged) {
    struct Case {
        std::int32_t seconds;  // passed since the unfinished run's start
        std::int32_t tickDrift;
        bool asks;
    };
    const Case cases[] = {{0, 0, true},       {3600, -1999, true},  {3600, -2000, false},
                          {3600, 1999, true}, {3600, 2000, false},  {-10, 0, true},
                          {5000000, 0, true}, {10, 86400000, false}};
    constexpr std::int32_t kStart = 1700000000;
    constexpr std::uint32_t kTick = 0xFFF00000u;  // wraps within the hour
    for (const Case& each : cases) {
        const ScratchFolder folder;
        RecordingDesk desk;
        LHangDetector hung;
        hung.Init(folder.Path().c_str(), kStart, kTick, desk);
        const std::uint32_t tick = kTick + static_cast<std::uint32_t>(each.seconds) * 1000u +
                                   static_cast<std::uint32_t>(each.tickDrift);
        LHangDetector next;
        next.Init(folder.Path().c_str(), kStart + each.seconds, tick, desk);
        EXPECT_FALSE(folder.Has(kMark)) << "the run that asks is not guarded itself";
        LHangDetector third;  // must not ask again
        third.Init(folder.Path().c_str(), kStart + each.seconds, tick, desk);
        EXPECT_EQ(desk.asked.size(), each.asks ? 1u : 0u) << each.seconds << " " << each.tickDrift;
        EXPECT_TRUE(folder.Has(kMark));
    }
}

TEST(HangDetector, ForeignThingsInThePlaceOfTheMarkAskNothing) {
    const ScratchFolder folder;
    const std::string mark = folder / kMark;
    RecordingDesk desk;
    LHangDetector detector;
    const auto init = [&] { detector.Init(folder.Path().c_str(), 1, 5000, desk); };
    init();
    const std::string valid = folder.Read(kMark);
    detector.Destroy();

    folder.Write(kMark, "short");
    init();
    EXPECT_FALSE(folder.Has(kMark));
    folder.Write("target", valid);
    ASSERT_EQ(::symlink((folder / "target").c_str(), mark.c_str()), 0);
    init();
    EXPECT_FALSE(folder.Has(kMark));
    EXPECT_TRUE(folder.Has("target"));
    ASSERT_EQ(::mkfifo(mark.c_str(), 0666), 0);
    init();
    ASSERT_EQ(::mkdir(mark.c_str(), 0777), 0);
    init();
    detector.Init((folder / "missing").c_str(), 1, 5000, desk);
    EXPECT_TRUE(desk.asked.empty());
}

}  // namespace
