#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>

#include <chrono>
#include <vector>

#include "foundation/crash/bug_report.h"
#include "foundation/crash/hang_detector.h"
#include "foundation/processes/child_process.h"
#include "foundation/settings/hosts.h"
#include "foundation/settings/settings_keys.h"
#include "tests/support/scratch_folder.h"

namespace {

using std::chrono::milliseconds;

// The signal that ended the child; 0 when it was none.
int CrashChild(const char* way, const std::string& box) {
    const ScopedVariable variable("LECTORA_BOX_TEST", "inherited");
    const char* const arguments[] = {LECTORA_FOUNDATION_CHILD, "crash", way, box.c_str(), nullptr};
    const int status = LChildProcess::Start(arguments, {}).Wait();
    return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
}

// A box program that notes its arguments and what it was started with (nothing blocked or ignored),
// and takes its time to answer.
std::string MakeBox(const ScratchFolder& folder) {
    const std::string notes = " >>" + (folder / "boxes") + "\n";
    return folder.WriteProgram(
        "box",
        "clean=$(grep -E -c '^Sig(Blk:.0*|Ign:.0*(1?80000000|100000000)?)$' /proc/self/status)\n"
        "echo \"box $* $clean $LECTORA_BOX_TEST\"" +
            notes + "sleep 0.3\necho answered" + notes);
}

TEST(Crash, EveryWayStartsOneBoxWaitsForItAndEndsWithItsSignal) {
    // clang-format off: its versions differ on what a condition cuts in two
    const std::pair<const char*, int> cases[] = {
        {"fault", SIGSEGV},
        {"illegal", SIGILL},
        {"user", SIGUSR1},
        {"later", SIGSEGV},  // another thread's signal while the box is up
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
        {"heap", SIGSEGV},  // a sanitizer brings its own heap and its own idea of a stack's end
        {"stack", SIGSEGV},
        {"together", SIGSEGV},
        {"together", SIGSEGV},
        {"together", SIGSEGV},
        {"together", SIGSEGV},
#endif
    };
    // clang-format on
    for (const auto& [way, signal] : cases) {
        const ScratchFolder folder;
        EXPECT_EQ(CrashChild(way, MakeBox(folder)), signal) << way;
        EXPECT_EQ(folder.Read("boxes"),
                  "box --signal " + std::to_string(signal) + " 2 inherited\nanswered\n")
            << way;
    }
    EXPECT_EQ(CrashChild("fault", "/no/such/box"), SIGSEGV);
}

// Answers in turn as told and keeps what was asked.
class RecordingDesk final : public LBugReportDesk {
public:
    explicit RecordingDesk(std::vector<bool> answers = {}) : answers_(std::move(answers)) {}
    bool AskYesNo(const char*, const char*) override {
        ++asked;
        return asked <= answers_.size() && answers_[asked - 1];
    }
    void OpenPage(const std::string& address) override { page = address; }
    void Tell(const char*, const char* text) override { told = text; }
    std::size_t asked = 0;
    std::string told;
    std::string page;

private:
    std::vector<bool> answers_;
};

TEST(BugReport, EveryQuestionMustBeAnsweredYesBeforeThePageOpens) {
    const std::string page = "/software/bug.html?software=Lectora&version=1.05";
    const std::tuple<void (*)(LBugReportDesk&), std::vector<bool>, std::size_t, std::string>
        cases[] = {{[](LBugReportDesk& desk) { ReportCrash(desk, 11); }, {false}, 1, ""},
                   {[](LBugReportDesk& desk) { ReportCrash(desk, 11); }, {true}, 1, page + "GTK"},
                   {ReportHang, {false}, 1, ""},
                   {ReportHang, {true, false}, 2, ""},
                   {ReportHang, {true, true}, 2, page + "&xi=AbTermOrHang-Gtk"}};
    for (const char* const host : {"127.0.0.1:1", "any.example:80"}) {
        kWebHostSetting.Set(host);
        const bool hasPage = HasWebSite();
        for (const auto& [report, answers, questions, address] : cases) {
            RecordingDesk desk(answers);
            report(desk);
            EXPECT_EQ(desk.asked, questions);
            EXPECT_EQ(desk.page, hasPage && !address.empty() ? WebAddress(address) : "");
            EXPECT_EQ(desk.told.empty(), hasPage || address.empty())
                << "whoever said yes hears that there is no page";
        }
    }
    kWebHostSetting.Delete();
}

constexpr const char* kMark = "_lectora_rl";

TEST(HangDetector, AsksAboutAnUnfinishedRunOnceUnlessTheClockWasChanged) {
    constexpr std::int32_t kStart = 0x01020304;
    constexpr std::uint32_t kTick = 0xFFF0E0D0;  // wraps within the hour
    // Seconds passed since the unfinished run's start, and what the tick counter is off by then.
    const std::tuple<std::int32_t, std::int32_t, bool> cases[] = {
        {0, 0, true},        {3600, -1999, true}, {3600, -2000, false}, {3600, 1999, true},
        {3600, 2000, false}, {-10, 0, true},      {10, 86400000, false}};
    for (const auto& [seconds, drift, asks] : cases) {
        const ScratchFolder folder;
        RecordingDesk desk;
        LHangDetector hung;
        hung.Init(folder.Path().c_str(), kStart, kTick, desk);
        EXPECT_EQ(folder.Read(kMark), "\x04\x03\x02\x01\xD0\xE0\xF0\xFF");
        const std::uint32_t tick = kTick + static_cast<std::uint32_t>(seconds * 1000 + drift);
        for (const bool guarded : {false, true}) {  // the run that asks is not guarded itself
            LHangDetector next;
            next.Init(folder.Path().c_str(), kStart + seconds, tick, desk);
            EXPECT_EQ(folder.Has(kMark), guarded);
        }
        EXPECT_EQ(desk.asked, asks ? 1u : 0u) << seconds << " " << drift;
        // A link in the mark's place goes, and what it leads to stays.
        folder.Write("target", "12345678");
        std::filesystem::create_symlink(folder / "target", folder / kMark);
        LHangDetector().Init(folder.Path().c_str(), kStart, tick, desk);
        EXPECT_TRUE(folder.Has("target") && !folder.Has(kMark));
    }
}

}  // namespace
