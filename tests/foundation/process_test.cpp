#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <thread>

#include "foundation/child_process.h"
#include "foundation/pipes.h"
#include "tests/support/scratch_folder.h"

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

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

// Like the GUI thread: everything blocked, some ignored, and a descriptor that a library leaked.
// Puts back what it changed, and what LPipeInOut changes for the whole process.
class ProcessTest : public ::testing::Test {
protected:
    ProcessTest() : leak_(::open("/dev/null", O_RDONLY)) {
        sigset_t all;
        sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, &oldMask_);
        for (const int number : kIgnored)
            ::signal(number, SIG_IGN);
    }
    ~ProcessTest() override {
        for (const int number : kIgnored)
            ::signal(number, SIG_DFL);
        ::signal(SIGCHLD, SIG_DFL);
        ::pthread_sigmask(SIG_SETMASK, &oldMask_, nullptr);
    }

private:
    static constexpr int kIgnored[] = {SIGPIPE, SIGINT, SIGTERM, SIGUSR2};
    UniqueFd leak_;
    sigset_t oldMask_{};
};

constexpr const char* kReport = "grep ^Sig /proc/self/status; ls /proc/self/fd";

void ExpectCleanStart(const std::string& report) {
    EXPECT_NE(report.find("SigBlk:\t0000000000000000"), std::string::npos) << report;
    const std::size_t ignored = report.find("SigIgn:\t");
    ASSERT_NE(ignored, std::string::npos) << report;
    EXPECT_EQ(std::stoull(report.substr(ignored + 8, 16), nullptr, 16), 0u) << report;
    EXPECT_TRUE(report.ends_with("\n0\n1\n2\n3\n")) << report;  // ls itself opens the folder as 3
}

TEST_F(ProcessTest, ChildrenStartWithDefaultSignalsAndThreeDescriptors) {
    LPipeIn in;
    ASSERT_TRUE(in._Open(kReport));
    ExpectCleanStart(ReadAll(in.Fd()));
    EXPECT_EQ(in.Close(), 0);
    LPipeInOut both;
    ASSERT_TRUE(both._Open(kReport));
    ExpectCleanStart(ReadAll(both.ReadFd()));
    const ScratchFolder folder;
    LPipeOut out;
    ASSERT_TRUE(out._Open(("exec >" + (folder / "out") + ";" + kReport).c_str()));
    out.Close();
    ExpectCleanStart(folder.Read("out"));
    RunShellCommand(("exec >" + (folder / "run") + ";" + kReport).c_str());
    ExpectCleanStart(folder.Read("run"));
}

TEST_F(ProcessTest, RunShellCommandWaitsAndAnswersTheStatus) {
    EXPECT_EQ(WEXITSTATUS(RunShellCommand("exit 3")), 3);
    const int killed = RunShellCommand("kill -9 $$");
    EXPECT_TRUE(WIFSIGNALED(killed) && WTERMSIG(killed) == SIGKILL);
    EXPECT_EQ(RunShellCommand("if read line; then exit 7; fi"), 0) << "the input must be empty";
    const char* const missing[] = {"/no/such/program", nullptr};
    EXPECT_FALSE(LChildProcess::Start(missing, {}).IsStarted());
    errno = 0;
    EXPECT_TRUE(::wait(nullptr) == -1 && errno == ECHILD) << "what could not start is collected";

    ::signal(SIGCHLD, SIG_IGN);
    auto start = Clock::now();
    EXPECT_EQ(RunShellCommand("sleep 0.3; exit 3"), 0) << "the status is lost, the wait is not";
    EXPECT_GE(Clock::now() - start, milliseconds(300));
}

TEST_F(ProcessTest, FilesOutsideTheMachineWideFolderKeepToTheMaskOfTheStart) {
    const ScratchFolder home;
    const ScratchFolder root;
    const ScopedVariable homeVariable("HOME", home.Path().c_str());
    const ScopedVariable rootVariable("LECTORA_ROOT", root.Path().c_str());
    ASSERT_EQ(RunShellCommand("umask 027; exec " LECTORA_FOUNDATION_CHILD " files Name"), 0);
    EXPECT_EQ(home.Read("umask"), "0027\n") << "what a command writes keeps to it too";
    int files = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(home.Path())) {
        struct stat status {};
        ASSERT_EQ(::stat(entry.path().c_str(), &status), 0);
        files += entry.is_regular_file();
        const mode_t expected =
            entry.is_directory() || entry.path().extension() == ".lck" ? 0750 : 0640;
        EXPECT_EQ(status.st_mode & 07777, expected) << entry.path();
    }
    EXPECT_EQ(files, 12) << "settings, record, log, data, text, a copy of each, umask, lock";
    EXPECT_EQ(std::filesystem::status(root / "opt/quillon/lectora/etc/name").permissions(),
              std::filesystem::perms(0666));
    EXPECT_EQ(home.Read(".quillon/lectora/name"), "key=value\r\n");
    EXPECT_EQ(root.Read("opt/quillon/lectora/etc/name"), "key=value\r\n");
}

TEST_F(ProcessTest, CommandsOfEveryKindLeaveNothing) {
    const int before = CountDescriptors();
    RunShellCommand("true");
    StartShellCommand("true");
    {
        LPipeIn in;
        ASSERT_TRUE(in._Open("echo x"));
        LPipeOut out;
        ASSERT_TRUE(out._Open("cat >/dev/null"));
        LPipeInOut both;
        ASSERT_TRUE(both._Open("cat"));
    }
    EXPECT_EQ(CountDescriptors(), before);
    const auto limit = Clock::now() + std::chrono::seconds(10);
    while (HasChildren() && Clock::now() < limit)
        std::this_thread::sleep_for(milliseconds(5));
    EXPECT_FALSE(HasChildren());
}

TEST_F(ProcessTest, OneWayPipesCarryEverythingAndCloseWaitsForTheStatus) {
    LPipeIn in;
    EXPECT_EQ(in.Close(), -1);
    ASSERT_TRUE(in._Open("echo one; exit 5"));
    char line[16];
    ASSERT_NE(std::fgets(line, sizeof line, in.Stream()), nullptr);
    EXPECT_STREQ(line, "one\n");
    EXPECT_EQ(WEXITSTATUS(in.Close()), 5);
    EXPECT_EQ(in.Fd(), -1);
    ASSERT_TRUE(in._Open("exec cat /dev/zero"));
    const int status = in.Close();
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGPIPE) << "nobody reads any more";

    const ScratchFolder folder;
    LPipeOut out;
    ASSERT_TRUE(out._Open(("sleep 0.1; cat >" + (folder / "out")).c_str()));
    std::fputs("first ", out.Stream());
    std::fflush(out.Stream());
    ASSERT_EQ(::write(out.Fd(), "second ", 7), 7);
    std::fputs("third", out.Stream());
    EXPECT_EQ(out.Close(), 0);
    EXPECT_EQ(folder.Read("out"), "first second third");
}

TEST_F(ProcessTest, TwoWayPipesConverseAndLeaveTheCommandToItself) {
    LPipeInOut both;
    ASSERT_TRUE(both._Open("while read word; do echo \"<$word>\"; done; echo end"));
    ASSERT_EQ(::write(both.WriteFd(), "hello\n", 6), 6);
    char reply[8] = {};
    ASSERT_EQ(::read(both.ReadFd(), reply, sizeof reply), 8);
    EXPECT_EQ(std::string(reply, 8), "<hello>\n");
    both.CloseWrite();
    EXPECT_EQ(ReadAll(both.ReadFd()), "end\n");

    // A command that ignores the end of its input goes on after Close and ends, with its own
    // children, by Kill.
    LPipeIn watched;  // reads its end when the last of them has ended
    const ScratchFolder folder;
    ASSERT_EQ(::mkfifo((folder / "fifo").c_str(), 0600), 0);
    ASSERT_TRUE(watched._Open(("exec cat " + (folder / "fifo")).c_str()));
    ASSERT_TRUE(both._Open(
        ("exec 2>" + (folder / "fifo") + "; echo up; trap '' HUP TERM; sleep 60 & sleep 60")
            .c_str()));
    ASSERT_EQ(::read(both.ReadFd(), reply, sizeof reply), 3);
    const auto start = Clock::now();
    both.Close();
    EXPECT_EQ(::kill(both.Pid(), 0), 0);
    both.Kill();
    EXPECT_EQ(ReadAll(watched.Fd()), "");
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(30));
    both.Kill();  // nothing left to end
}

TEST_F(ProcessTest, APipeIsNeverAStandardDescriptorOfTheChild) {
    const UniqueFd savedIn(::fcntl(0, F_DUPFD_CLOEXEC, 100));
    const UniqueFd savedOut(::fcntl(1, F_DUPFD_CLOEXEC, 100));
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

}  // namespace
