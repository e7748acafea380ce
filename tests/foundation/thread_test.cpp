#include "foundation/threads/thread.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

#include <chrono>
#include <functional>
#include <thread>

#include "foundation/threads/detached_thread.h"
#include "foundation/threads/progress.h"

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

TEST(SignalObject, WaitsEndEarlyForASignalAndLastTheirTimeWithoutOne) {
    LSignalObject first;
    LSignalObject second;
    LSignalObject third;
    EXPECT_TRUE(::fcntl(first.Ref().ReadFd(), F_GETFD) & FD_CLOEXEC);
    LSilentProgress progress;
    // Handled signals of the process do not shorten them.
    const auto old = ::signal(SIGUSR2, [](int) {});
    std::thread interrupter([self = ::pthread_self()] {
        for (int i = 0; i < 10; ++i) {
            std::this_thread::sleep_for(milliseconds(10));
            ::pthread_kill(self, SIGUSR2);
        }
    });
    const auto start = Clock::now();
    EXPECT_FALSE(first.Ref().WaitSignal(40));
    EXPECT_FALSE(first.Ref().WaitSignalDual(second.Ref(), 40));
    EXPECT_FALSE(first.Ref().WaitSignalTriple(second.Ref(), third.Ref(), 40));
    EXPECT_EQ(progress.ProcessWaitSignal(first.Ref(), 40), kProcessFailed);
    EXPECT_EQ(progress.ProcessWait(40), kProcessDone);
    EXPECT_GE(Clock::now() - start, milliseconds(200));
    interrupter.join();
    ::signal(SIGUSR2, old);

    std::thread signaller([&] {
        std::this_thread::sleep_for(milliseconds(50));
        third.Signal();
    });
    EXPECT_TRUE(first.Ref().WaitSignalTriple(second.Ref(), third.Ref(), 0xFFFFFFFFu));
    third.Ref().WaitSignalForever();
    EXPECT_TRUE(second.Ref().WaitSignalDual(third.Ref(), 0));
    EXPECT_EQ(progress.ProcessWaitSignal(third.Ref(), 0), kProcessDone);
    signaller.join();
    for (int i = 0; i < 100000; ++i)  // fills the pipe
        third.Signal();
    EXPECT_TRUE(third.Ref().IsSignaled());
    third.Reset();
    EXPECT_FALSE(third.Ref().IsSignaled());
}

class Worker final : public LThread {
public:
    explicit Worker(std::function<void(Worker&)> body) : body_(std::move(body)) {}
    ~Worker() override {
        StopThreadSoon();
        Join();
    }

private:
    void ThreadFunction() override { body_(*this); }
    std::function<void(Worker&)> body_;
};

TEST(Thread, StartWhileRunningDoesNothingAndStartAfterwardsRunsAgain) {
    const int before = ::getpriority(PRIO_PROCESS, 0);
    std::atomic<int> runs{0};
    std::atomic<int> nice{0};
    LSignalObject entered;
    {
        Worker worker([&](Worker& self) {
            ++runs;
            nice = ::getpriority(PRIO_PROCESS, 0);  // of this thread alone
            entered.Signal();
            self.StopSignal().WaitSignalForever();
        });
        for (int run = 1; run <= 3; ++run) {
            worker.Start(-10);
            worker.Start(0);
            EXPECT_FALSE(worker.IsStopping()) << "a new run starts without the old request";
            ASSERT_TRUE(entered.Ref().WaitSignal(10000));
            EXPECT_TRUE(nice == 10 || before > 10) << nice;
            entered.Reset();
            worker.StopThreadSoon();
            while (worker.IsRunning())
                std::this_thread::yield();
            EXPECT_EQ(runs, run);
        }
        worker.Join();
        worker.Start(0);
    }
    EXPECT_EQ(runs, 4) << "the end of the object stops and joins";
    EXPECT_EQ(::getpriority(PRIO_PROCESS, 0), before) << "only the worker's own may change";
}

TEST(Thread, WaitsAnswerStopBeforeDoneBeforeTimeOut) {
    Worker worker([](Worker&) {});
    LSignalObject first;
    LSignalObject second;
    LSignalObjectGroup group;
    group.Add(first.Ref());
    group.Add(second.Ref());
    const auto expect = [&](LProcessResult one, LProcessResult any) {
        EXPECT_EQ(ProcessWaitSignal(worker, first.Ref(), 5), one);
        EXPECT_EQ(ProcessWaitSignals(worker, first.Ref(), second.Ref(), 5), any);
        EXPECT_EQ(worker.ProcessWaitSignalObjectGroup(group, 5), any);
        if (one != kProcessFailed) {
            EXPECT_EQ(ProcessWaitSignalForever(worker, first.Ref()), one);
        }
    };
    expect(kProcessFailed, kProcessFailed);
    second.Signal();
    expect(kProcessFailed, kProcessDone);
    first.Signal();
    second.Reset();
    expect(kProcessDone, kProcessDone);
    worker.StopThreadSoon();
    expect(kProcessStopped, kProcessStopped);
}

class Counted final : public LDetachedThread {
public:
    explicit Counted(std::atomic<int>& alive) : alive_(alive), number_(++alive_) {}
    ~Counted() override {
        StopThreadSoon();
        Join();
        --alive_;
    }

private:
    void ThreadFunction() override {
        if (number_ % 2 == 0)
            StopSignal().WaitSignalForever();
    }
    std::atomic<int>& alive_;
    const int number_;
};

TEST(DetachedThreads, DeleteThemselvesOrAreDeletedByTheOwnerExactlyOnce) {
    std::atomic<int> alive{0};
    LDetachedThreadsOwner owner;
    for (int round = 0; round < 20; ++round) {
        // A mixture: some end before, some while, some only because the owner stops them.
        for (int i = 0; i < 8; ++i)
            (new Counted(alive))->StartDetached(owner, 0);
        if (round % 2 == 0)
            owner.StopThreadsSoon();
        owner.StopThreadsNow();
        ASSERT_EQ(alive, 0) << "round " << round;
    }
}

}  // namespace
