#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <thread>

#include "foundation/child_process.h"
#include "foundation/pipes.h"

namespace {

// Restores the disposition of SIGCHLD, which LPipeInOut changes for the whole process.
class ChildSignalGuard {
public:
    ChildSignalGuard() { ::sigaction(SIGCHLD, nullptr, &old_); }
    ChildSignalGuard(const ChildSignalGuard&) = delete;
    ChildSignalGuard& operator=(const ChildSignalGuard&) = delete;
    ~ChildSignalGuard() { ::sigaction(SIGCHLD, &old_, nullptr); }

private:
    struct sigaction old_ {};
};

// Like the GUI thread: everything blocked, some ignored, and a descriptor that a library leaked.
class HostileParent {
public:
    HostileParent() : leak_(::open("/dev/null", O_RDONLY)) {
        sigset_t all;
        sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, &oldMask_);
        for (const int number : {SIGPIPE, SIGINT, SIGTERM, SIGUSR2})
            ::signal(number, SIG_IGN);
    }
    HostileParent(const HostileParent&) = delete;
    HostileParent& operator=(const HostileParent&) = delete;
    ~HostileParent() {
        for (const int number : {SIGPIPE, SIGINT, SIGTERM, SIGUSR2})
            ::signal(number, SIG_DFL);
        ::pthread_sigmask(SIG_SETMASK, &oldMask_, nullptr);
    }

private:
    UniqueFd leak_;
    sigset_t oldMask_{};
};

std::string ReadAll(int fd) {
    std::string text;
    char buffer[4096];
    ssize_t length;
    while ((length = ::read(fd, buffer, sizeof buffer)) > 0)
        text.append(buffer, static_cast<std::size_t>(length));
    return text;
}

int CountDescriptors() {
    DIR* folder = ::opendir("/proc/self/fd");
    int count = -1;  // the folder's own
    while (const dirent* entry = ::readdir(folder))
        count += entry->d_name[0] != '.';
    ::closedir(folder);
    return count;
}

bool HasChildren() {
    return ::waitpid(-1, nullptr, WNOHANG) != -1 || errno != ECHILD;
}

// A program of its own, not the shell, reports: the shell sets up signals and descriptors itself.
constexpr const char* kReport = "exec sh -c 'grep ^Sig /proc/self/status; ls /proc/self/fd'";

void ExpectCleanStart(const std::string& report) {
    EXPECT_NE(report.find("SigBlk:\t0000000000000000"), std::string::npos) << report;
    // The C library keeps its two internal signals, 32 and 33, ignored from the spawn on.
    const std::size_t ignored = report.find("SigIgn:\t");
    ASSERT_NE(ignored, std::string::npos) << report;
    EXPECT_EQ(std::stoull(report.substr(ignored + 8, 16), nullptr, 16) & ~0x180000000ull, 0u)
        << report;
    // ls itself opens the folder as 3.
    EXPECT_NE(report.find("\n0\n1\n2\n3\n"), std::string::npos) << report;
    EXPECT_EQ(report.substr(report.size() - 3), "\n3\n") << report;
}

TEST(ChildProcess, StartsWithDefaultSignalsAndThreeDescriptors) {
    const ChildSignalGuard guard;
    const HostileParent parent;
    LPipeIn in;
    ASSERT_TRUE(in._Open(kReport));
    ExpectCleanStart(ReadAll(in.Fd()));
    EXPECT_EQ(in.Close(), 0);

    LPipeInOut both;
    ASSERT_TRUE(both._Open(kReport));
    ExpectCleanStart(ReadAll(both.ReadFd()));

    char path[] = "/tmp/lectora-process-XXXXXX";
    UniqueFd file(::mkstemp(path));
    const std::string redirect = " >" + std::string(path);
    LPipeOut out;
    ASSERT_TRUE(out._Open((kReport + redirect).c_str()));
    out.Close();
    ExpectCleanStart(ReadAll(file.Get()));
    RunShellCommand((std::string("exec >>") + path + "; " + kReport).c_str());
    ExpectCleanStart(ReadAll(file.Get()));
    ::unlink(path);
}

TEST(ChildProcess, RunShellCommandWaitsAndAnswersTheStatus) {
    EXPECT_EQ(WEXITSTATUS(RunShellCommand("exit 3")), 3);
    const int killed = RunShellCommand("kill -9 $$");
    EXPECT_TRUE(WIFSIGNALED(killed) && WTERMSIG(killed) == SIGKILL);
    EXPECT_EQ(RunShellCommand("if read line; then exit 7; fi"), 0) << "the input must be empty";
    EXPECT_EQ(WEXITSTATUS(RunShellCommand("no-such-program-here 2>/dev/null")), 127);
    const char* const missing[] = {"/no/such/program", nullptr};
    EXPECT_FALSE(LChildProcess::Start(missing, {}).IsStarted());
    EXPECT_FALSE(HasChildren());
}

TEST(ChildProcess, WaitingToleratesIgnoredChildSignals) {
    const ChildSignalGuard guard;
    ::signal(SIGCHLD, SIG_IGN);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(RunShellCommand("sleep 0.3; exit 3"), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(300));
}

TEST(ChildProcess, TwentyCommandsOfEveryKindLeaveNothing) {
    const ChildSignalGuard guard;
    const int before = CountDescriptors();
    for (int i = 0; i < 20; ++i) {
        RunShellCommand("true");
        LPipeIn in;
        ASSERT_TRUE(in._Open("echo x"));
        LPipeOut out;
        ASSERT_TRUE(out._Open("cat >/dev/null"));
        LPipeInOut both;
        ASSERT_TRUE(both._Open("cat"));
    }
    EXPECT_EQ(CountDescriptors(), before);
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (HasChildren() && std::chrono::steady_clock::now() < limit)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_FALSE(HasChildren());
}

TEST(Pipes, ReadACommandsOutput) {
    LPipeIn in;
    EXPECT_EQ(in.Fd(), -1);
    EXPECT_EQ(in.Close(), -1);
    ASSERT_TRUE(in._Open("echo one; echo two; exit 5"));
    char line[16];
    ASSERT_NE(std::fgets(line, sizeof line, in.Stream()), nullptr);
    EXPECT_STREQ(line, "one\n");
    ASSERT_NE(std::fgets(line, sizeof line, in.Stream()), nullptr);
    EXPECT_STREQ(line, "two\n");
    EXPECT_EQ(std::fgets(line, sizeof line, in.Stream()), nullptr);
    EXPECT_EQ(WEXITSTATUS(in.Close()), 5);
    EXPECT_EQ(in.Fd(), -1);
    EXPECT_FALSE(in.IsOpen());
}

TEST(Pipes, CloseOfAWriterWaitsUntilTheCommandHasTakenEverything) {
    char path[] = "/tmp/lectora-process-XXXXXX";
    const UniqueFd file(::mkstemp(path));
    LPipeOut out;
    ASSERT_TRUE(out._Open((std::string("sleep 0.1; cat >") + path).c_str()));
    std::fputs("first ", out.Stream());
    std::fflush(out.Stream());
    ASSERT_EQ(::write(out.Fd(), "second ", 7), 7);
    std::fputs("third", out.Stream());
    EXPECT_EQ(out.Close(), 0);
    EXPECT_EQ(ReadAll(file.Get()), "first second third");
    ::unlink(path);
}

TEST(Pipes, ClosingAReaderEndsACommandThatStillWrites) {
    LPipeIn in;
    ASSERT_TRUE(in._Open("exec cat /dev/zero"));
    const int status = in.Close();
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGPIPE);
}

TEST(Pipes, ConverseAndLeaveTheCommandToItself) {
    const ChildSignalGuard guard;
    LPipeInOut both;
    ASSERT_TRUE(both._Open("while read word; do echo \"<$word>\"; done; echo end"));
    ASSERT_EQ(::write(both.WriteFd(), "hello\n", 6), 6);
    char reply[8] = {};
    ASSERT_EQ(::read(both.ReadFd(), reply, sizeof reply), 8);
    EXPECT_EQ(std::string(reply, 8), "<hello>\n");
    both.CloseWrite();
    EXPECT_EQ(ReadAll(both.ReadFd()), "end\n");

    ASSERT_TRUE(both._Open("exec sleep 60"));
    const pid_t pid = both.Pid();
    const auto start = std::chrono::steady_clock::now();
    both.Close();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    EXPECT_EQ(::kill(pid, SIGTERM), 0);
    while (::kill(pid, 0) == 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
}

TEST(Pipes, NeverTakeAStandardDescriptorOfTheChildForThePipe) {
    const ChildSignalGuard guard;
    UniqueFd savedIn(::fcntl(0, F_DUPFD_CLOEXEC, 100));
    UniqueFd savedOut(::fcntl(1, F_DUPFD_CLOEXEC, 100));
    ::close(0);
    ::close(1);
    LPipeInOut both;
    const bool opened = both._Open("cat");
    ::dup2(savedIn.Get(), 0);
    ::dup2(savedOut.Get(), 1);
    ASSERT_TRUE(opened);
    ASSERT_EQ(::write(both.WriteFd(), "through", 7), 7);
    both.CloseWrite();
    EXPECT_EQ(ReadAll(both.ReadFd()), "through");
}

TEST(Programs, AreLookedForInThePath) {
    EXPECT_TRUE(IsProgramInstalled("sh"));
    EXPECT_FALSE(IsProgramInstalled("lectora-no-such-program"));
    EXPECT_FALSE(IsProgramInstalled("")) << "a folder is no program";
}

}  // namespace
