#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <string>

#include "foundation/processes/browser.h"
#include "foundation/processes/pipes.h"
#include "foundation/settings/hosts.h"
#include "foundation/settings/settings_keys.h"
#include "tests/support/eventually.h"
#include "tests/support/scratch_folder.h"

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

std::string ReadAll(int fd) {
    std::string text;
    char buffer[4096];
    for (ssize_t length; (length = ::read(fd, buffer, sizeof buffer)) > 0;)
        text.append(buffer, static_cast<std::size_t>(length));
    return text;
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

TEST_F(ProcessTest, ChildrenStartWithDefaultSignalsAndThreeDescriptorsAndLeaveNothing) {
    const std::string report = "grep -E '^Sig(Blk|Ign)' /proc/self/status; ls /proc/self/fd";
    // ls itself opens the folder as 3.
    const std::string clean = "SigBlk:\t0000000000000000\nSigIgn:\t0000000000000000\n0\n1\n2\n3\n";
    const ScratchFolder folder;
    LPipeIn in;
    ASSERT_TRUE(in._Open(report.c_str()));
    EXPECT_EQ(ReadAll(in.Fd()), clean);
    EXPECT_EQ(in.Close(), 0);
    LPipeInOut both;
    ASSERT_TRUE(both._Open(report.c_str()));
    EXPECT_EQ(ReadAll(both.ReadFd()), clean);
    ASSERT_EQ(::mkfifo((folder / "fifo").c_str(), 0600), 0);
    EXPECT_TRUE(StartShellCommand(("exec >" + (folder / "fifo") + ";" + report).c_str()));
    EXPECT_EQ(folder.Read("fifo"), clean) << "were it waited for, nobody would read it";
    EXPECT_TRUE(Eventually([] { return !HasChildren(); }));
}

TEST_F(ProcessTest, RunShellCommandWaitsAndAnswersTheStatus) {
    EXPECT_EQ(WEXITSTATUS(RunShellCommand("exit 3")), 3);
    const int killed = RunShellCommand("kill -9 $$");
    EXPECT_TRUE(WIFSIGNALED(killed) && WTERMSIG(killed) == SIGKILL);
    EXPECT_EQ(RunShellCommand("if read line; then exit 7; fi"), 0) << "the input must be empty";
    const char* const missing[] = {"/no/such/program", nullptr};
    EXPECT_FALSE(LChildProcess::Start(missing, {}).IsStarted());
    EXPECT_FALSE(HasChildren()) << "what could not start is collected";
    ::signal(SIGCHLD, SIG_IGN);
    const auto start = Clock::now();
    EXPECT_EQ(WEXITSTATUS(RunShellCommand("sleep 0.2; exit 3")), 3) << "also where it is ignored";
    EXPECT_GE(Clock::now() - start, milliseconds(200));
}

TEST_F(ProcessTest, FilesOfTheUsersKeepToTheMaskAndTheMachinesAreRootsToWrite) {
    const ScratchFolder home;
    const ScratchFolder root;
    const ScopedVariable homeVariable("HOME", home.Path().c_str());
    const ScopedVariable rootVariable("LECTORA_ROOT", root.Path().c_str());
    ASSERT_EQ(RunShellCommand("umask 027; exec " LECTORA_FOUNDATION_CHILD " files Name"), 0);
    EXPECT_EQ(home.Read("umask"), "0027\n") << "what a command writes keeps to it too";
    int files = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(home.Path())) {
        struct stat status = {};
        ASSERT_EQ(::stat(entry.path().c_str(), &status), 0);
        files += entry.is_regular_file();
        const bool isLock = entry.path().extension() == ".lck";
        const bool isLog = entry.path().parent_path() == home / ".quillon/lectora/Logs";
        EXPECT_EQ(status.st_mode & 07777, isLog                            ? 0600u
                                          : entry.is_directory() || isLock ? 0750u
                                                                           : 0640u)
            << entry.path();
    }
    EXPECT_EQ(files, 12) << "settings, record, log, data, text, a copy of each, umask, lock";
    for (const auto& [shared, mode] : {std::pair{"etc", 0755}, {"etc/name", 0644}, {"", 0755}})
        EXPECT_EQ(std::filesystem::status((root / "opt/quillon/lectora/") + shared).permissions(),
                  std::filesystem::perms(mode))
            << shared;
    EXPECT_EQ(home.Read(".quillon/lectora/name"), "key=value\r\n");
    EXPECT_EQ(root.Read("opt/quillon/lectora/etc/name"), "key=value\r\n");
}

TEST_F(ProcessTest, OneWayPipesCarryEverythingAndCloseWaitsForTheStatus) {
    LPipeIn in;
    EXPECT_EQ(in.Close(), -1);
    ASSERT_TRUE(in._Open("echo one; exit 5"));
    EXPECT_EQ(ReadAll(in.Fd()), "one\n");
    EXPECT_EQ(WEXITSTATUS(in.Close()), 5);
    ASSERT_TRUE(in._Open("exec cat /dev/zero"));
    EXPECT_EQ(WEXITSTATUS(in.Close()), 128 + SIGPIPE) << "nobody reads any more";
    const ScratchFolder folder;
    LPipeOut out;
    ASSERT_TRUE(out._Open(("sleep 0.1; cat >" + (folder / "out")).c_str()));
    std::fputs("text", out.Stream());
    EXPECT_EQ(out.Close(), 0);
    EXPECT_EQ(folder.Read("out"), "text");
    ::signal(SIGCHLD, SIG_IGN);
    ASSERT_TRUE(out._Open("cat >/dev/null; exit 3"));
    EXPECT_EQ(WEXITSTATUS(out.Close()), 3) << "an encoder that fails at its end is known by that";
    ASSERT_TRUE(out._Open("kill -9 0"));
    EXPECT_NE(out.Close(), 0);
}

TEST_F(ProcessTest, TwoWayPipesConverseAndLeaveTheCommandToItself) {
    LPipeInOut both;
    // A pipe is never a standard descriptor of the child, also where these were closed.
    const UniqueFd savedIn(::fcntl(0, F_DUPFD_CLOEXEC, 100));
    const UniqueFd savedOut(::fcntl(1, F_DUPFD_CLOEXEC, 100));
    ::close(0);
    ::close(1);
    const bool opened = both._Open("while read word; do echo \"<$word>\"; done; echo end");
    ::dup2(savedIn.Get(), 0);
    ::dup2(savedOut.Get(), 1);
    ASSERT_TRUE(opened);
    ASSERT_EQ(::write(both.WriteFd(), "hello\n", 6), 6);
    char reply[8] = {};
    ASSERT_EQ(::read(both.ReadFd(), reply, sizeof reply), 8);
    EXPECT_EQ(std::string(reply, 8), "<hello>\n");
    both.CloseWrite();
    EXPECT_EQ(ReadAll(both.ReadFd()), "end\n");

    // A command that ignores the end of its input goes on after Close and ends by Kill, with its
    // own children: somebody waits for the last writer of the FIFO.
    const ScratchFolder folder;
    ASSERT_EQ(::mkfifo((folder / "fifo").c_str(), 0600), 0);
    ASSERT_TRUE(both._Open(
        ("exec 2>" + (folder / "fifo") + "; trap '' TERM; sleep 1000 & sleep 1000").c_str()));
    const UniqueFd watched(::open((folder / "fifo").c_str(), O_RDONLY));
    both.Close();
    EXPECT_EQ(::kill(both.Pid(), 0), 0);
    both.Kill();
    EXPECT_EQ(ReadAll(watched.Get()), "");
}

TEST(Browser, TheDesktopsOwnCommandWhenInstalledElseTheGenericOne) {
    const std::tuple<const char*, bool, std::string> cases[] = {
        {"none", false, "xdg-open"},
        {"gnome-open", false, "gnome-open"},
        {"gnome-open", true, "xdg-open"},
        {"kfmclient", true, "kfmclient exec"}};
    for (const auto& [installed, inKde, command] : cases) {
        const ScratchFolder folder;
        std::filesystem::create_directory(folder / "second");
        folder.WriteProgram(std::string("second/") + installed, "");
        const ScopedVariable path("PATH", (folder.Path() + "::" + (folder / "second")).c_str());
        const ScopedVariable kde("KDE_FULL_SESSION", inKde ? "true" : nullptr);
        EXPECT_EQ(BrowserCommand("http://a/b?c=d&e"), command + " \"http://a/b?c=d&e\"");
        EXPECT_FALSE(OpenInBrowser(std::string(260, 'a')));
    }
    // The shell reads the address as one literal word.
    const ScratchFolder folder;
    ASSERT_EQ(::mkfifo((folder / "fifo").c_str(), 0600), 0);
    folder.WriteProgram("xdg-open", "printf '%s|' \"$@\" >" + (folder / "fifo"));
    const ScopedVariable path("PATH", folder.Path().c_str());
    EXPECT_TRUE(OpenInBrowser("http://a/ b\"$(touch x)`id`\\;&\n*"));
    EXPECT_EQ(folder.Read("fifo"), "http://a/%20b%22%24(touch%20x)%60id%60%5C;&%0A*|");
}

TEST(Hosts, TheMachineWideSettingsStandBeforeTheDefaults) {
    kWebHostSetting.Set("127.0.0.1:8080");
    EXPECT_EQ(WebAddress("lectora/index"), "http://127.0.0.1:8080/lectora/index");
    EXPECT_EQ(WebAddress("/a?b=c"), "http://127.0.0.1:8080/a?b=c");
    kWebHostSetting.Set("");
    EXPECT_EQ(WebHost(), kWebHostSetting.defaultValue) << "an empty entry counts as none";
    kWebHostSetting.Delete();
}

}  // namespace
