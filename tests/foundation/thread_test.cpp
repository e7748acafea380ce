#include "foundation/thread.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <functional>
#include <thread>

#include "foundation/detached_thread.h"

namespace {

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
    std::atomic<int> runs{0};
    LSignalObject entered;
    {
        Worker worker([&](Worker& self) {
            ++runs;
            entered.Signal();
            self.StopSignal().WaitSignalForever();
        });
        for (int run = 1; run <= 3; ++run) {
            worker.Start(0);
            worker.Start(0);
            EXPECT_TRUE(worker.IsRunning());
            // A new run starts without the old request.
            EXPECT_FALSE(worker.IsStopping());
            EXPECT_FALSE(worker.StopSignal().IsSignaled());
            ASSERT_TRUE(entered.Ref().WaitSignal(10000));
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
}

struct Scheduling {
    int policy = -1;
    int realTime = -1;
    int nice = -100;
    static Scheduling Current() {
        const auto id = static_cast<pid_t>(::syscall(SYS_gettid));
        sched_param parameters{};
        ::sched_getparam(id, &parameters);
        return {::sched_getscheduler(id), parameters.sched_priority,
                ::getpriority(PRIO_PROCESS, static_cast<id_t>(id))};
    }
};

TEST(Thread, PriorityIsNiceBelowOneAndRoundRobinAbove) {
    const Scheduling before = Scheduling::Current();
    if (before.nice > 10)
        GTEST_SKIP() << "started with a nice value that may not be lowered";
    // What this machine grants to a thread that asks for itself.
    bool realTimeAllowed = false;
    std::thread([&] {
        sched_param parameters{};
        parameters.sched_priority = 91;
        realTimeAllowed = ::pthread_setschedparam(::pthread_self(), SCHED_RR, &parameters) == 0;
    }).join();

    Scheduling atStart;
    Scheduling raised;
    LSignalObject started;
    LSignalObject goOn;
    Worker worker([&](Worker&) {
        atStart = Scheduling::Current();
        started.Signal();
        goOn.Ref().WaitSignalForever();
        raised = Scheduling::Current();
    });
    worker.Start(-10);
    ASSERT_TRUE(started.Ref().WaitSignal(10000));
    worker.SetPriority(91);
    goOn.Signal();
    worker.Join();
    EXPECT_EQ(atStart.policy, SCHED_OTHER);
    EXPECT_EQ(atStart.nice, 10);
    EXPECT_EQ(raised.policy, realTimeAllowed ? SCHED_RR : SCHED_OTHER);
    EXPECT_EQ(raised.realTime, realTimeAllowed ? 91 : 0);
    EXPECT_EQ(Scheduling::Current().nice, before.nice) << "only the worker's own may change";
}

TEST(Thread, WaitsAnswerStopBeforeDoneBeforeTimeOut) {
    const struct {
        bool stop, first, second;
        LProcessResult one, two;
    } cases[] = {{false, false, false, kProcessFailed, kProcessFailed},
                 {false, true, false, kProcessDone, kProcessDone},
                 {false, false, true, kProcessFailed, kProcessDone},
                 {true, true, true, kProcessStopped, kProcessStopped}};
    for (const auto& each : cases) {
        Worker worker([](Worker&) {});
        LSignalObject first;
        LSignalObject second;
        if (each.stop)
            worker.StopThreadSoon();
        if (each.first)
            first.Signal();
        if (each.second)
            second.Signal();
        EXPECT_EQ(ProcessWaitSignal(worker, first.Ref(), 5), each.one);
        EXPECT_EQ(ProcessWaitSignals(worker, first.Ref(), second.Ref(), 5), each.two);
        if (each.one != kProcessFailed) {
            EXPECT_EQ(ProcessWaitSignalForever(worker, first.Ref()), each.one);
        }
        LSignalObjectGroup group;
        group.Add(first.Ref());
        group.Add(second.Ref());
        EXPECT_EQ(worker.ProcessWaitSignalObjectGroup(group, 5), each.two);
    }
}

TEST(Thread, AGroupTakesTheStopSignalOnlyBelow255AndNeverMoreThan256) {
    Worker worker([](Worker&) {});
    worker.StopThreadSoon();
    LSignalObject silent;
    LSignalObjectGroup group;
    for (int i = 0; i < 255; ++i)
        group.Add(silent.Ref());
    EXPECT_EQ(worker.ProcessWaitSignalObjectGroup(group, 5), kProcessFailed);
    group.Add(silent.Ref());
    group.Add(worker.StopSignal());
    EXPECT_EQ(group.Count(), 256);
    EXPECT_EQ(worker.ProcessWaitSignalObjectGroup(group, 5), kProcessFailed);
    silent.Signal();
    EXPECT_EQ(worker.ProcessWaitSignalObjectGroup(group, 5), kProcessStopped)
        << "the last entry counts as the stop signal";
}

class Counted final : public LDetachedThread {
public:
    Counted(std::atomic<int>& alive, bool waits) : alive_(alive), waits_(waits) { ++alive_; }
    ~Counted() override {
        StopThreadSoon();
        Join();
        --alive_;
    }

private:
    void ThreadFunction() override {
        if (waits_)
            StopSignal().WaitSignalForever();
    }
    std::atomic<int>& alive_;
    const bool waits_;
};

TEST(DetachedThreads, DeleteThemselvesOrAreDeletedByTheOwnerExactlyOnce) {
    std::atomic<int> alive{0};
    LDetachedThreadsOwner owner;
    for (int round = 0; round < 20; ++round) {
        // A mixture: some end before, some while, some only because the owner stops them.
        for (int i = 0; i < 8; ++i)
            (new Counted(alive, i % 2 == 0))->StartDetached(owner, 0);
        owner.StopThreadsNow();
        ASSERT_EQ(alive, 0) << "round " << round;
    }
    (new Counted(alive, true))->StartDetached(owner, 0);
    EXPECT_EQ(alive, 1);
    owner.StopThreadsSoon();
    while (alive > 0)
        std::this_thread::yield();
    owner.StopThreadsNow();
}

}  // namespace
