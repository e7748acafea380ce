#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

#include <chrono>
#include <thread>

#include "foundation/progress.h"
#include "foundation/signal_group.h"
#include "foundation/signal_object.h"
#include "foundation/ticks.h"

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

long long MillisecondsSince(Clock::time_point start) {
    return std::chrono::duration_cast<milliseconds>(Clock::now() - start).count();
}

TEST(SignalObject, OneResetTakesBackEverySignal) {
    LSignalObject signal;
    EXPECT_FALSE(signal.Ref().IsSignaled());
    signal.Signal();
    signal.Signal();
    EXPECT_TRUE(signal.Ref().IsSignaled());
    EXPECT_TRUE(signal.Ref().WaitSignal(0)) << "a wait must not consume the signal";
    EXPECT_TRUE(signal.Ref().IsSignaled());
    signal.Reset();
    EXPECT_FALSE(signal.Ref().IsSignaled());
    signal.Signal();
    EXPECT_TRUE(signal.Ref().IsSignaled());
}

TEST(SignalObject, FullPipeNeitherBlocksNorLosesTheSignal) {
    LSignalObject signal;
    for (int i = 0; i < 100000; ++i)
        signal.Signal();
    EXPECT_TRUE(signal.Ref().IsSignaled());
    signal.Reset();
    EXPECT_FALSE(signal.Ref().IsSignaled());
}

TEST(SignalObject, BothEndsStayWithThisProcessAndNeverBlock) {
    const LSignalObject signal;
    const int fd = signal.Ref().ReadFd();
    EXPECT_TRUE(::fcntl(fd, F_GETFD) & FD_CLOEXEC);
    EXPECT_TRUE(::fcntl(fd, F_GETFL) & O_NONBLOCK);
    EXPECT_TRUE(::fcntl(fd + 1, F_GETFD) & FD_CLOEXEC);
    EXPECT_TRUE(::fcntl(fd + 1, F_GETFL) & O_NONBLOCK);
}

TEST(SignalObject, WaitsEndEarlyForASignalAndLastTheirTimeWithoutOne) {
    LSignalObject first;
    LSignalObject second;
    LSignalObject third;
    const auto start = Clock::now();
    EXPECT_FALSE(first.Ref().WaitSignal(60));
    EXPECT_FALSE(first.Ref().WaitSignalDual(second.Ref(), 60));
    EXPECT_FALSE(first.Ref().WaitSignalTriple(second.Ref(), third.Ref(), 60));
    EXPECT_GE(MillisecondsSince(start), 180);

    std::thread signaller([&] {
        std::this_thread::sleep_for(milliseconds(50));
        third.Signal();
    });
    EXPECT_TRUE(first.Ref().WaitSignalTriple(second.Ref(), third.Ref(), 0xFFFFFFFFu));
    third.Ref().WaitSignalForever();
    EXPECT_TRUE(second.Ref().WaitSignalDual(third.Ref(), 0));
    EXPECT_FALSE(second.Ref().WaitSignalDual(first.Ref(), 0));
    signaller.join();
}

TEST(SignalObject, WithoutAPipeItIsNeverSignalled) {
    rlimit old{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &old), 0);
    const rlimit none{0, old.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    LSignalObject signal;
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &old), 0);
    EXPECT_EQ(signal.Ref().ReadFd(), -1);
    signal.Signal();
    const auto start = Clock::now();
    EXPECT_FALSE(signal.Ref().WaitSignal(50));
    EXPECT_GE(MillisecondsSince(start), 50);
}

TEST(SignalObject, AHandledProcessSignalDoesNotShortenAWait) {
    struct sigaction handled {};
    handled.sa_handler = [](int) {};
    struct sigaction old {};
    ::sigaction(SIGUSR2, &handled, &old);
    const pthread_t self = ::pthread_self();
    std::thread interrupter([self] {
        for (int i = 0; i < 5; ++i) {
            std::this_thread::sleep_for(milliseconds(10));
            ::pthread_kill(self, SIGUSR2);
        }
    });
    const LSignalObject signal;
    const auto start = Clock::now();
    EXPECT_FALSE(signal.Ref().WaitSignal(150));
    EXPECT_GE(MillisecondsSince(start), 150);
    interrupter.join();
    ::sigaction(SIGUSR2, &old, nullptr);
}

TEST(SignalObjectGroup, HoldsNoMoreThanItsTable) {
    LSignalObject silent;
    LSignalObject loud;
    loud.Signal();
    LSignalObjectGroup group;
    for (int i = 0; i < LSignalObjectGroup::kMaxEntries; ++i)
        group.Add(silent.Ref());
    group.Add(loud.Ref());
    EXPECT_EQ(group.Count(), 256);
    EXPECT_FALSE(group.Wait(0));
    silent.Signal();
    EXPECT_TRUE(group.Wait(0));
    EXPECT_TRUE(group.WasSignaled(255));
    EXPECT_FALSE(group.WasSignaled(256));
}

TEST(SilentProgress, WaitsLikeAnUncancelledDialog) {
    static_assert(LProgress<LSilentProgress>);
    LSilentProgress progress;
    LSignalObject signal;
    const auto start = Clock::now();
    EXPECT_EQ(progress.ProcessWait(40), kProcessDone);
    EXPECT_EQ(progress.ProcessWaitSignal(signal.Ref(), 40), kProcessFailed);
    EXPECT_GE(MillisecondsSince(start), 80);
    signal.Signal();
    EXPECT_EQ(progress.ProcessWaitSignal(signal.Ref(), 0), kProcessDone);
}

TEST(Ticks, AreTheWallClockInMilliseconds) {
    const auto now = [] {
        return static_cast<std::uint32_t>(std::chrono::duration_cast<milliseconds>(
                                              std::chrono::system_clock::now().time_since_epoch())
                                              .count());
    };
    const std::uint32_t before = now();
    const std::uint32_t tick = GetTickCount();
    EXPECT_LE(tick - before, now() - before);
}

}  // namespace
