#include "foundation/log.h"

#include <fcntl.h>
#include <fnmatch.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <sstream>
#include <thread>
#include <vector>

#include "foundation/child_process.h"
#include "foundation/unique_fd.h"
#include "tests/foundation/scratch_folder.h"

namespace {

std::time_t gNow = 0;
std::time_t TestClock() {
    return gNow;
}

constexpr std::time_t kLastSecondOfLeapDay = 1709251199;  // 2024-02-29 23:59:59 UTC

class LogTest : public ::testing::Test {
protected:
    LogTest() : zone_("TZ", "UTC") {
        ::tzset();
        gNow = kLastSecondOfLeapDay;
    }
    ~LogTest() override { ::tzset(); }

    ScratchFolder folder_;
    ScopedVariable zone_;
};

TEST_F(LogTest, LinesGoToTheFileOfTheLocalDay) {
    LLog log(folder_.Path().c_str(), &TestClock);
    log.Log("first", kLogPlain);
    log.Log("second", kLogError);
    ++gNow;
    log.Log("third", kLogInformation);
    EXPECT_EQ(folder_.Read("2024-02-29 Lectora Log.txt"), "23:59:59 first\r\n23:59:59 second\r\n");
    EXPECT_EQ(folder_.Read("2024-03-01 Lectora Log.txt"), "00:00:00 third\r\n");
}

TEST_F(LogTest, LongTextsAreCutWhereStated) {
    LLog log(folder_.Path().c_str(), &TestClock);
    const std::string name = "2024-02-29 Lectora Log.txt";
    const std::string longest(8191 - 9 - 2, 'x');  // beside the time, the space and the line end
    log.Log(longest.c_str(), kLogPlain);
    EXPECT_EQ(folder_.Read(name), "23:59:59 " + longest + "\r\n");
    log.Log((longest + "yz+").c_str(), kLogPlain);
    EXPECT_EQ(folder_.Read(name).substr(8191), "23:59:59 " + longest + "yz") << "no line end";

    const std::size_t before = folder_.Read(name).size();
    log.Log(std::string(300, 'a').c_str(), -12, kLogPlain);
    log.Log(std::string(255, 'b').c_str(), -12, kLogPlain);
    log.Log(std::string(258, 'c').c_str(), "de", kLogPlain);
    log.LogFileFromPath("Opened ", "/some/folder/file.wav", kLogPlain);
    const std::string time = "23:59:59 ";
    EXPECT_EQ(folder_.Read(name).substr(before),
              time + std::string(259, 'a') + "\r\n" + time + std::string(255, 'b') + "-12\r\n" +
                  time + std::string(258, 'c') + "d\r\n" + time + "Opened file.wav\r\n");
}

TEST_F(LogTest, NamedAndMonthlyFilesTakeTheTextAsItIs) {
    const LLog log(folder_.Path().c_str());
    log.Write("plain.txt", "one");
    log.Write("plain.txt", "two\n");
    log.WriteMonthly(kLastSecondOfLeapDay, "use.txt", "x");
    log.WriteMonthly(kLastSecondOfLeapDay + 1, "use.txt", "y");
    log.WriteMonthly(915148799, "use.txt", "z");  // the last second of 1998
    EXPECT_EQ(folder_.Read("plain.txt"), "onetwo\n");
    EXPECT_EQ(folder_.Read("2024-02 use.txt"), "x");
    EXPECT_EQ(folder_.Read("2024-03 use.txt"), "y");
    EXPECT_EQ(folder_.Read("2098-12 use.txt"), "z");
}

class Mirror final : public LStatusWindowBase {
public:
    void DisplayStatus(const char* timeText, const char* message, std::uint8_t level) override {
        lines.push_back(std::string(timeText) + "|" + message + "|" + std::to_string(level));
    }
    std::vector<std::string> lines;
};

TEST_F(LogTest, TheStatusWindowSeesLinesAlsoWhenNoFileCanBeWritten) {
    LLog log((folder_ / "missing").c_str(), &TestClock);
    Mirror mirror;
    log.SetStatusWindow(&mirror);
    log.Log("told", kLogWarning);
    log.Log("n ", 5, kLogError);
    EXPECT_EQ(mirror.lines, (std::vector<std::string>{"23:59:59|told|2", "23:59:59|n 5|1"}));
    EXPECT_FALSE(folder_.Has("missing"));
}

TEST_F(LogTest, ALockedFileIsWrittenAfterTheTimeLimit) {
    LLog log(folder_.Path().c_str(), &TestClock);
    log.Log("one", kLogPlain);
    const UniqueFd other(::open((folder_ / "2024-02-29 Lectora Log.txt").c_str(), O_RDONLY));
    ASSERT_EQ(::flock(other.Get(), LOCK_EX), 0);
    const auto start = std::chrono::steady_clock::now();
    log.Log("two", kLogPlain);
    const auto passed = std::chrono::steady_clock::now() - start;
    EXPECT_GE(passed, std::chrono::milliseconds(150)) << "it must wait for the lock";
    EXPECT_LE(passed, std::chrono::milliseconds(2000));
    EXPECT_EQ(folder_.Read("2024-02-29 Lectora Log.txt"), "23:59:59 one\r\n23:59:59 two\r\n");
}

TEST_F(LogTest, ProcessesAndThreadsDoNotMixTheirLines) {
    constexpr int kProcesses = 4;
    constexpr int kLines = 200;
    const std::string text(60, '.');
    const auto writeLines = [&](LLog& log, int writer) {
        for (int i = 0; i < kLines; ++i)
            log.Log((text + static_cast<char>('A' + writer)).c_str(), i, kLogPlain);
    };
    for (int process = 0; process < kProcesses; ++process) {
        if (::fork() == 0) {
            LLog log(folder_.Path().c_str(), &TestClock);
            writeLines(log, process);
            ::_exit(0);
        }
    }
    LLog log(folder_.Path().c_str(), &TestClock);
    std::thread beside([&] { writeLines(log, kProcesses); });
    writeLines(log, kProcesses + 1);
    beside.join();
    while (::wait(nullptr) > 0) {
    }
    std::vector<int> next(kProcesses + 2, 0);
    std::istringstream all(folder_.Read("2024-02-29 Lectora Log.txt"));
    const std::string start = "23:59:59 " + text;
    for (std::string line; std::getline(all, line);) {
        ASSERT_TRUE(line.starts_with(start) && line.ends_with('\r')) << line;
        const auto writer = static_cast<std::size_t>(line[start.size()] - 'A');
        ASSERT_LT(writer, next.size()) << line;
        EXPECT_EQ(line.substr(start.size() + 1), std::to_string(next[writer]++) + "\r");
    }
    EXPECT_EQ(std::count(next.begin(), next.end(), kLines), kProcesses + 2);
}

TEST_F(LogTest, TheProgramsLogStandsInTheUsersFolder) {
    const ScopedVariable home("HOME", folder_.Path().c_str());
    const ScopedVariable root("LECTORA_ROOT", folder_.Path().c_str());
    const char* const arguments[] = {LECTORA_FOUNDATION_CHILD, "log", "2", "tick", nullptr};
    ASSERT_EQ(LChildProcess::Start(arguments, {}).Wait(), 0);
    const std::string logs = folder_ / ".quillon/lectora/Logs";
    std::string day;
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(logs)) {
        ++files;
        const std::string name = entry.path().filename();
        if (::fnmatch("2[0-9][0-9][0-9]-[01][0-9]-[0-3][0-9] Lectora Log.txt", name.c_str(), 0))
            continue;
        std::istringstream lines(folder_.Read(".quillon/lectora/Logs/" + name));
        for (std::string line; std::getline(lines, line); day += line.substr(9) + '\n')
            EXPECT_EQ(::fnmatch("[0-2][0-9]:[0-5][0-9]:[0-6][0-9] *", line.c_str(), 0), 0) << line;
    }
    EXPECT_EQ(day,
              "tick\r\ntick0\r\nticktick\r\ntick 0 %\r\n"
              "tick\r\ntick1\r\nticktick\r\ntick 1 %\r\n");
    EXPECT_GE(files, 3);
    EXPECT_EQ(folder_.Read(".quillon/lectora/Logs/named.txt"), "tick");
    EXPECT_EQ(folder_.Read(".quillon/lectora/Logs/2000-02 monthly.txt"), "tick");
}

}  // namespace
