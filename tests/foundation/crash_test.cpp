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

struct Ending {
    int signal = 0;  // 0: it did not end by one
    std::string boxes;
};

// Runs the child with a box program that notes its arguments and what it was started with, and
// takes its time.
Ending CrashChild(const char* way, const ScratchFolder& folder) {
    const std::string box = folder.WriteProgram(
        "box",
        // Clean is nothing blocked, and ignored at most the C library's internal signals 32 and 33.
        "clean=$(grep -E -c '^Sig(Blk:.0*|Ign:.0*(1?80000000|100000000)?)$' /proc/self/status)\n"
        "echo \"box $* $clean $LECTORA_BOX_TEST\" >>" +
            (folder / "boxes") + "\nsleep 0.5\necho answered >>" + (folder / "boxes") + "\n");
    const ScopedVariable variable("LECTORA_BOX_TEST", "inherited");
    const char* const arguments[] = {LECTORA_FOUNDATION_CHILD, "crash", way, box.c_str(), nullptr};
    const int status = LChildProcess::Start(arguments, {}).Wait();
    return {WIFSIGNALED(status) ? WTERMSIG(status) : 0, folder.Read("boxes")};
}

bool IsSanitized() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return true;
#else
    return false;
#endif
}

TEST(Crash, EveryWayStartsTheBoxWaitsForItAndEndsWithItsSignal) {
    struct Case {
        const char* way;
        int signal;
    };
    const Case cases[] = {{"fault", SIGSEGV},
                          {"illegal", SIGILL},
                          {"user", SIGUSR1},
                          {"heap", SIGSEGV},
                          {"stack", SIGSEGV}};
    for (const Case& each : cases) {
        // A sanitizer brings its own heap and its own idea of a stack's end.
        if (IsSanitized() && (!std::strcmp(each.way, "heap") || !std::strcmp(each.way, "stack")))
            continue;
        const ScratchFolder folder;
        const Ending ending = CrashChild(each.way, folder);
        EXPECT_EQ(ending.signal, each.signal) << each.way;
        EXPECT_EQ(ending.boxes,
                  "box --signal " + std::to_string(each.signal) + " 2 inherited\nanswered\n")
            << each.way;
    }
}

TEST(Crash, ASecondSignalWhileTheBoxIsUpAsksNothingAndEndsTheProcess) {
    const ScratchFolder folder;
    EXPECT_EQ(CrashChild("thread", folder).signal, SIGILL);
    std::this_thread::sleep_for(std::chrono::milliseconds(400));  // the orphaned box ends by itself
    EXPECT_EQ(folder.Read("boxes"), "box --signal 11 2 inherited\nanswered\n");
}

TEST(Crash, WithoutABoxTheSignalEndsTheProcessAllTheSame) {
    const char* const arguments[] = {LECTORA_FOUNDATION_CHILD, "crash", "fault", "/no/such/box",
                                     nullptr};
    const int status = LChildProcess::Start(arguments, {}).Wait();
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGSEGV) << status;
}

TEST(BugReport, CrashAsksOnceAndOpensItsPageOnYes) {
    const ScratchFolder root;
    const ScopedVariable variable("LECTORA_ROOT", root.Path().c_str());
    RecordingDesk no;
    ReportCrash(no, 11);
    EXPECT_TRUE(no.pages.empty());
    RecordingDesk yes({true});
    ReportCrash(yes, 11);
    ASSERT_EQ(yes.asked.size(), 1u);
    EXPECT_EQ(yes.asked[0],
              "Abnormal Signal Crash|Lectora has crashed with an abnormal signal.\r\n\r\nWould you "
              "be willing to complete a Quillon Software Bug Report so our programmers can try to "
              "fix this? If so, please click Yes and then enter the field to tell us exactly what "
              "you were doing and that you received a \"SIGNAL11\" code.");
    ASSERT_EQ(yes.pages.size(), 1u);
    EXPECT_TRUE(yes.pages[0].ends_with("/software/bug.html?software=Lectora&version=1.05GTK"));
    EXPECT_TRUE(yes.pages[0].starts_with("http://"));
}

TEST(BugReport, HangAsksTwiceWithAPauseAndStopsAtTheFirstNo) {
    for (const auto& [answers, questions, pages] :
         {std::tuple<std::vector<bool>, std::size_t, std::size_t>{{false}, 1, 0},
          {{true, false}, 2, 0},
          {{true, true}, 2, 1}}) {
        RecordingDesk desk(answers);
        const auto start = std::chrono::steady_clock::now();
        ReportHang(desk);
        EXPECT_EQ(std::chrono::steady_clock::now() - start >= std::chrono::milliseconds(600),
                  questions == 2);
        EXPECT_EQ(desk.asked.size(), questions);
        ASSERT_EQ(desk.pages.size(), pages);
        for (const std::string& page : desk.pages)
            EXPECT_TRUE(page.ends_with(
                "/software/bug.html?software=Lectora&version=1.05&xi=AbTermOrHang-Gtk"))
                << page;
    }
}

constexpr const char* kMark = "_lectora_rl";

TEST(HangDetector, MarksARunAndRemovesTheMarkAtItsEnd) {
    const ScratchFolder folder;
    RecordingDesk desk;
    {
        LHangDetector detector;
        detector.Init(folder.Path().c_str(), 0x01020304, 0x0A0B0C0D, desk);
        const std::int32_t seconds = 0x01020304;
        const std::uint32_t tick = 0x0A0B0C0D;
        std::string record(8, '\0');
        std::memcpy(record.data(), &seconds, 4);
        std::memcpy(record.data() + 4, &tick, 4);
        EXPECT_EQ(folder.Read(kMark), record);
    }
    EXPECT_FALSE(folder.Has(kMark));
    LHangDetector detector;
    detector.Init(folder.Path().c_str(), 1, 1, desk);
    detector.Destroy();
    EXPECT_FALSE(folder.Has(kMark));
    EXPECT_TRUE(desk.asked.empty());
}

TEST(HangDetector, AsksAboutAnUnfinishedRunOnceUnlessTheClockWasChanged) {
    struct Case {
        std::int32_t seconds;  // passed since the unfinished run's start
        std::int32_t tickDrift;
        bool asks;
    };
    const Case cases[] = {{0, 0, true},         {3600, 0, true},    {3600, -1999, true},
                          {3600, -2000, false}, {3600, 1999, true}, {3600, 2000, false},
                          {-10, 0, true},       {5000000, 0, true}, {10, 86400000, false}};
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
        EXPECT_EQ(desk.asked.size(), each.asks ? 1u : 0u) << each.seconds << " " << each.tickDrift;
        EXPECT_FALSE(folder.Has(kMark)) << "the run that asks is not guarded itself";
        LHangDetector third;
        third.Init(folder.Path().c_str(), kStart + each.seconds, tick, desk);
        EXPECT_EQ(desk.asked.size(), each.asks ? 1u : 0u) << "the next start must not ask again";
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
    EXPECT_FALSE(folder.Has(kMark));
    ASSERT_EQ(::mkdir(mark.c_str(), 0777), 0);
    init();
    detector.Init((folder / "missing").c_str(), 1, 5000, desk);
    EXPECT_TRUE(desk.asked.empty());
}

}  // namespace
