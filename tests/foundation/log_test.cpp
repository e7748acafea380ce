#include "foundation/log.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <sstream>
#include <thread>
#include <vector>

#include "foundation/child_process.h"
#include "tests/foundation/scratch_folder.h"

namespace {

std::time_t gNow = 0;

constexpr std::time_t kLastSecondOfLeapDay = 1709251199;  // 2024-02-29 23:59:59 UTC
constexpr const char* kDayFile = "2024-02-29 Lectora Log.txt";
const std::string kTime = "23:59:59 ";

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

TEST_F(LogTest, LinesGoToTheFileOfTheLocalDay) {
    log_.Log("first", kLogPlain);
    log_.Log("second", kLogError);
    ++gNow;
    log_.Log("third", kLogInformation);
    EXPECT_EQ(folder_.Read(kDayFile), kTime + "first\r\n" + kTime + "second\r\n");
    EXPECT_EQ(folder_.Read("2024-03-01 Lectora Log.txt"), "00:00:00 third\r\n");
}

TEST_F(LogTest, LongTextsAreCutWhereStated) {
    const std::string longest(8191 - 9 - 2, 'x');  // beside the time, the space and the line end
    log_.Log(longest.c_str(), kLogPlain);
    EXPECT_EQ(folder_.Read(kDayFile), kTime + longest + "\r\n");
    log_.Log((longest + "yz+").c_str(), kLogPlain);
    EXPECT_EQ(folder_.Read(kDayFile).substr(8191), kTime + longest + "yz") << "no line end";

    log_.Log(std::string(255, 'b').c_str(), -12, kLogPlain);
    log_.Log(std::string(258, 'c').c_str(), "de", kLogPlain);
    log_.LogFileFromPath("Opened ", "/some/folder/file.wav", kLogPlain);
    EXPECT_EQ(folder_.Read(kDayFile).substr(2 * 8191), kTime + std::string(255, 'b') + "-12\r\n" +
                                                           kTime + std::string(258, 'c') + "d\r\n" +
                                                           kTime + "Opened file.wav\r\n");
}

TEST_F(LogTest, NamedAndMonthlyFilesTakeTheTextAsItIs) {
    log_.Write("plain.txt", "one");
    log_.Write("plain.txt", "two\n");
    log_.WriteMonthly(kLastSecondOfLeapDay, "use.txt", "x");
    log_.WriteMonthly(kLastSecondOfLeapDay + 1, "use.txt", "y");
    log_.WriteMonthly(915148799, "use.txt", "z");  // the last second of 1998
    EXPECT_EQ(folder_.Read("plain.txt"), "onetwo\n");
    EXPECT_EQ(folder_.Read("2024-02 use.txt"), "x");
    EXPECT_EQ(folder_.Read("2024-03 use.txt"), "y");
    EXPECT_EQ(folder_.Read("2098-12 use.txt"), "z");
}

TEST_F(LogTest, TheStatusWindowSeesLinesAlsoWhenNoFileCanBeWritten) {
    struct Mirror final : LStatusWindowBase {
        void DisplayStatus(const char* timeText, const char* message, std::uint8_t level) override {
            seen = seen + timeText + "|" + message + "|" + std::to_string(level) + "\n";
        }
        std::string seen;
    } mirror;
    LLog log((folder_ / "missing").c_str(), [] { return gNow; });
    log.SetStatusWindow(&mirror);
    log.Log("told", kLogWarning);
    log.Log("n ", 5, kLogError);
    EXPECT_EQ(mirror.seen, "23:59:59|told|2\n23:59:59|n 5|1\n");
    EXPECT_FALSE(folder_.Has("missing"));
}

TEST_F(LogTest, ALockedFileIsWrittenAfterTheTimeLimitAndAPipeNotAtAll) {
    ASSERT_EQ(::mkfifo((folder_ / "pipe").c_str(), 0666), 0);
    log_.Write("pipe", "text");  // returns
    const UniqueFd other(::open((folder_ / kDayFile).c_str(), O_RDONLY | O_CREAT, 0666));
    ASSERT_EQ(::flock(other.Get(), LOCK_EX), 0);
    const auto start = std::chrono::steady_clock::now();
    log_.Log("late", kLogPlain);
    const auto passed = std::chrono::steady_clock::now() - start;
    EXPECT_GE(passed, std::chrono::milliseconds(150)) << "it must wait for the lock";
    EXPECT_LE(passed, std::chrono::milliseconds(2000));
    EXPECT_EQ(folder_.Read(kDayFile), kTime + "late\r\n");
}

TEST_F(LogTest, ProcessesAndThreadsDoNotMixTheirLines) {
    constexpr int kWriters = 6;
    constexpr int kLines = 200;
    const std::string text(60, '.');
    const auto write = [&](int writer) {
        for (int i = 0; i < kLines; ++i)
            log_.Log((text + static_cast<char>('A' + writer)).c_str(), i, kLogPlain);
    };
    for (int process = 2; process < kWriters; ++process) {
        if (::fork() == 0) {
            write(process);
            ::_exit(0);
        }
    }
    std::thread beside(write, 1);
    write(0);
    beside.join();
    while (::wait(nullptr) > 0) {
    }
    std::vector<int> next(kWriters, 0);
    std::istringstream all(folder_.Read(kDayFile));
    const std::string start = kTime + text;
    for (std::string line; std::getline(all, line);) {
        ASSERT_TRUE(line.starts_with(start)) << line;
        const auto writer = static_cast<std::size_t>(line[start.size()] - 'A');
        ASSERT_LT(writer, next.size()) << line;
        EXPECT_EQ(line.substr(start.size() + 1), std::to_string(next[writer]++) + "\r");
    }
    EXPECT_EQ(std::count(next.begin(), next.end(), kLines), kWriters);
}

TEST_F(LogTest, TheProgramsLogStandsInTheUsersFolder) {
    const ScopedVariable home("HOME", folder_.Path().c_str());
    const ScopedVariable root("LECTORA_ROOT", folder_.Path().c_str());
    const char* const arguments[] = {LECTORA_FOUNDATION_CHILD, "log", "tick", nullptr};
    ASSERT_EQ(LChildProcess::Start(arguments, {}).Wait(), 0);
    const std::string logs = ".quillon/lectora/Logs/";
    std::string day;
    for (const auto& entry : std::filesystem::directory_iterator(folder_ / logs)) {
        std::istringstream lines(folder_.Read(logs + entry.path().filename().string()));
        if (entry.path().string().ends_with("Lectora Log.txt"))  // two, around midnight
            for (std::string line; std::getline(lines, line); day += line.substr(9) + '\n') {
            }
    }
    EXPECT_EQ(day, "tick\r\ntick-1\r\ntick+\r\ntick 2 %\r\n");
    EXPECT_EQ(folder_.Read(logs + "named.txt"), "tick");
    EXPECT_EQ(folder_.Read(logs + "2000-02 monthly.txt"), "tick");
}

}  // namespace
