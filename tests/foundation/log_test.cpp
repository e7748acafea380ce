#include "foundation/log/log.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <chrono>
#include <set>
#include <sstream>
#include <thread>
#include <vector>

#include "foundation/processes/child_process.h"
#include "tests/support/forked.h"
#include "tests/support/scratch_folder.h"

namespace {

std::time_t gNow = 0;

constexpr std::time_t kLastSecondOfLeapDay = 1709251199;  // 2024-02-29 23:59:59 UTC
constexpr const char* kDayFile = "2024-02-29 Lectora Log.txt";
const std::string kLogTime = "23:59:59 ";

class LogTest : public ::testing::Test {
protected:
    LogTest() : zone_("TZ", "UTC"), log_(folder_.Path().c_str(), [] { return gNow; }) {
        ::tzset();
        gNow = kLastSecondOfLeapDay;
    }

    ScratchFolder folder_;
    ScopedVariable zone_;
    LLog log_;
};

TEST_F(LogTest, LinesGoToTheFileOfTheLocalDayAndAreCut) {
    log_.Log("first", kLogPlain);
    ++gNow;
    log_.Log("third", kLogInformation);
    EXPECT_EQ(folder_.Read("2024-03-01 Lectora Log.txt"), "00:00:00 third\r\n");
    --gNow;
    const std::string longest(8191 - 9 - 2, 'x');  // beside the time, the space and the line end
    log_.Log((longest + "yz+").c_str(), kLogPlain);
    log_.Log(std::string(255, 'b').c_str(), -12, kLogPlain);
    log_.Log(std::string(258, 'c').c_str(), "de", kLogPlain);
    log_.LogFileFromPath("Opened ", "/some/folder/file.wav", kLogPlain);
    EXPECT_EQ(folder_.Read(kDayFile), kLogTime + "first\r\n" + kLogTime + longest + "yz" +
                                          kLogTime + std::string(255, 'b') + "-12\r\n" + kLogTime +
                                          std::string(258, 'c') + "d\r\n" + kLogTime +
                                          "Opened file.wav\r\n");
    log_.Write("plain.txt", "one");
    log_.Write("plain.txt", "two\n");
    log_.WriteMonthly(kLastSecondOfLeapDay + 1, "use.txt", "y");
    log_.WriteMonthly(915148799, "use.txt", "z");  // the last second of 1998
    EXPECT_EQ(folder_.Read("plain.txt"), "onetwo\n");
    EXPECT_EQ(folder_.Read("2024-03 use.txt"), "y");
    EXPECT_EQ(folder_.Read("2098-12 use.txt"), "z");
}

TEST_F(LogTest, IsShownAndWrittenThoughTheFileIsLockedOrCannotBe) {
    struct Mirror final : LStatusWindowBase {
        void DisplayStatus(const char* timeText, const char* message, std::uint8_t level) override {
            seen = seen + timeText + "|" + message + "|" + std::to_string(level) + "\n";
        }
        std::string seen;
    } mirror;
    LLog log((folder_ / "missing").c_str(), [] { return gNow; });
    log.SetStatusWindow(&mirror);
    log.Log("n ", 5, kLogError);
    EXPECT_EQ(mirror.seen, "23:59:59|n 5|1\n");
    ASSERT_EQ(::mkfifo((folder_ / "pipe").c_str(), 0666), 0);
    log_.Write("pipe", "text");  // returns
    const UniqueFd other(::open((folder_ / kDayFile).c_str(), O_RDONLY | O_CREAT, 0666));
    ASSERT_EQ(::flock(other.Get(), LOCK_EX), 0);
    const auto start = std::chrono::steady_clock::now();
    log_.Log("late", kLogPlain);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(500));
    EXPECT_EQ(folder_.Read(kDayFile), kLogTime + "late\r\n");
}

TEST_F(LogTest, ManyProcessesAndThreadsLoseAndMixNoLine) {
    constexpr int kProcesses = 4;
    constexpr int kThreads = 8;
    constexpr int kLines = 100;
    pid_t processes[kProcesses];
    for (int process = 0; process < kProcesses; ++process) {
        processes[process] = StartForked([&] {
            std::vector<std::jthread> threads;
            threads.reserve(kThreads);
            for (int thread = 0; thread < kThreads; ++thread)
                threads.emplace_back([&, name = std::to_string(process * kThreads + thread) + ":"] {
                    for (int i = 0; i < kLines; ++i)
                        log_.Log(name.c_str(), i, kLogPlain);
                });
            return 0;
        });
    }
    for (const pid_t process : processes)
        WaitForked(process);
    std::multiset<std::string> lines;
    std::istringstream all(folder_.Read(kDayFile));
    for (std::string line; std::getline(all, line);)
        lines.insert(line);
    std::multiset<std::string> expected;
    for (int i = 0; i < kProcesses * kThreads * kLines; ++i)
        expected.insert(kLogTime + std::to_string(i / kLines) + ":" + std::to_string(i % kLines) +
                        "\r");
    EXPECT_TRUE(lines == expected);
}

TEST_F(LogTest, TheProgramsLogStandsInTheUsersFolder) {
    const ScopedVariable home("HOME", folder_.Path().c_str());
    const ScopedVariable root("LECTORA_ROOT", folder_.Path().c_str());
    ASSERT_EQ(RunShellCommand(LECTORA_FOUNDATION_CHILD " log tick"), 0);
    RunShellCommand(
        "cd $HOME/.quillon/lectora/Logs;"
        "(cut -c10- *Log.txt; cat named.txt '2000-02 monthly.txt') >$HOME/all");
    EXPECT_EQ(folder_.Read("all"), "tick\r\ntick-1\r\ntick+\r\ntick 2 %\r\nticktick");
}

}  // namespace
