#include "foundation/signal_object.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

#include <chrono>
#include <thread>

#include "foundation/progress.h"

namespace {

using std::chrono::milliseconds;

using Clock = std::chrono::steady_clock;

TEST(SignalObject, StaysSignalledUntilOneResetHoweverOftenItWasSignalled) {
    for (const int times : {1, 2, 100000}) {  // the last one fills the pipe
        LSignalObject signal;
        EXPECT_FALSE(signal.Ref().IsSignaled());
        for (int i = 0; i < times; ++i)
            signal.Signal();
        EXPECT_TRUE(signal.Ref().WaitSignal(0));
        EXPECT_TRUE(signal.Ref().IsSignaled()) << "a wait must not consume the signal";
        signal.Reset();
        EXPECT_FALSE(signal.Ref().IsSignaled());
    }
}

TEST(SignalObject, WaitsEndEarlyForASignalAndLastTheirTimeWithoutOne) {
    LSignalObject first;
    LSignalObject second;
    LSignalObject third;
    EXPECT_TRUE(::fcntl(first.Ref().ReadFd(), F_GETFD) & FD_CLOEXEC);
    LSilentProgress progress;
    const auto start = Clock::now();
    EXPECT_FALSE(first.Ref().WaitSignal(40));
    EXPECT_FALSE(first.Ref().WaitSignalDual(second.Ref(), 40));
    EXPECT_FALSE(first.Ref().WaitSignalTriple(second.Ref(), third.Ref(), 40));
    EXPECT_EQ(progress.ProcessWaitSignal(first.Ref(), 40), kProcessFailed);
    EXPECT_EQ(progress.ProcessWait(40), kProcessDone);
    EXPECT_GE(Clock::now() - start, milliseconds(200));

    std::thread signaller([&] {
        std::this_thread::sleep_for(milliseconds(50));
        third.Signal();
    });
    EXPECT_TRUE(first.Ref().WaitSignalTriple(second.Ref(), third.Ref(), 0xFFFFFFFFu));
    third.Ref().WaitSignalForever();
    EXPECT_TRUE(second.Ref().WaitSignalDual(third.Ref(), 0));
    EXPECT_FALSE(second.Ref().WaitSignalDual(first.Ref(), 0));
    EXPECT_EQ(progress.ProcessWaitSignal(third.Ref(), 0), kProcessDone);
    signaller.join();
}

TEST(SignalObject, WithoutAPipeItIsNeverSignalled) {
    rlimit old{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &old), 0);
    const rlimit none{0, old.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    LSignalObject signal;
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &old), 0);
    signal.Signal();
    const auto start = Clock::now();
    EXPECT_FALSE(signal.Ref().WaitSignal(50));
    EXPECT_GE(Clock::now() - start, milliseconds(50));
}

TEST(SignalObject, AHandledProcessSignalDoesNotShortenAWait) {
    struct sigaction handled {};
    handled.sa_handler = [](int) {};
    struct sigaction old {};
    ::sigaction(SIGUSR2, &handled, &old);
    std::thread interrupter([self = ::pthread_self()] {
        for (int i = 0; i < 5; ++i) {
            std::this_thread::sleep_for(milliseconds(10));
            ::pthread_kill(self, SIGUSR2);
        }
    });
    const LSignalObject signal;
    const auto start = Clock::now();
    EXPECT_FALSE(signal.Ref().WaitSignal(150));
    EXPECT_GE(Clock::now() - start, milliseconds(150));
    interrupter.join();
    ::sigaction(SIGUSR2, &old, nullptr);
}

}  // namespace
