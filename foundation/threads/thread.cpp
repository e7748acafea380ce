#include "foundation/threads/thread.h"

#include <sched.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "foundation/threads/signal_stack.h"
#include "foundation/threads/timed_poll.h"

namespace {

// The stop signal first: an entry of -1 is never ready.
LProcessResult WaitOrStop(const LThread& thread, int first, int second, long long milliseconds) {
    pollfd entries[3] = {
        {thread.StopSignal().ReadFd(), POLLIN, 0}, {first, POLLIN, 0}, {second, POLLIN, 0}};
    TimedPoll(entries, 3, milliseconds);
    if (entries[0].revents & POLLIN)
        return kProcessStopped;
    return ((entries[1].revents | entries[2].revents) & POLLIN) ? kProcessDone : kProcessFailed;
}

std::atomic<int>& Pending() {
    static std::atomic<int> pending{0};
    return pending;
}

}  // namespace

LThread::~LThread() {
    StopThreadSoon();
    Join();
}

void LThread::Start(int priority) {
    const std::lock_guard lock(startMutex_);
    if (running_)
        return;
    if (hasHandle_) {
        ::pthread_join(handle_, nullptr);
        hasHandle_ = false;
    }
    stopFlag_ = false;
    stopSignal_.Reset();
    Launch(priority, &Entry);
}

void LThread::Launch(int priority, void* (*entry)(void*)) {
    running_ = true;
    isPending_ = IsPendingWork();
    Pending() += isPending_ ? 1 : 0;
    {
        const std::lock_guard priorityLock(priorityMutex_);
        priority_ = priority;
    }
    hasHandle_ = ::pthread_create(&handle_, nullptr, entry, this) == 0;
    if (!hasHandle_)
        EndRun();
}

void LThread::EndRun() {
    Pending() -= isPending_ ? 1 : 0;
    running_ = false;
}

int LThread::PendingWork() {
    return Pending();
}

void* LThread::Entry(void* self) {
    static_cast<LThread*>(self)->Run();
    return nullptr;
}

void LThread::Run() {
    const LSignalStack signalStack;
    {
        const std::lock_guard lock(priorityMutex_);
        kernelId_ = static_cast<int>(::syscall(SYS_gettid));
        ApplyPriority();
    }
    ThreadFunction();
    {
        const std::lock_guard lock(priorityMutex_);
        kernelId_ = -1;
    }
    EndRun();
}

void LThread::SetPriority(int priority) {
    const std::lock_guard lock(priorityMutex_);
    priority_ = priority;
    if (kernelId_ != -1)
        ApplyPriority();
}

// Users without the right to real-time scheduling get EPERM; the thread then runs as it was.
void LThread::ApplyPriority() {
    const bool realTime = priority_ >= 1;
    sched_param parameters{};
    parameters.sched_priority = realTime ? priority_ : 0;
    ::setpriority(PRIO_PROCESS, static_cast<id_t>(kernelId_), realTime ? 0 : -priority_);
    ::sched_setscheduler(kernelId_, realTime ? SCHED_RR : SCHED_OTHER, &parameters);
}

void LThread::StopThreadSoon() {
    stopFlag_ = true;
    stopSignal_.Signal();
}

void LThread::Join() {
    pthread_t handle;
    {
        const std::lock_guard lock(startMutex_);
        if (!hasHandle_)
            return;
        handle = handle_;
        hasHandle_ = false;
    }
    ::pthread_join(handle, nullptr);
}

LProcessResult LThread::ProcessWaitSignalObjectGroup(LSignalObjectGroup& group,
                                                     unsigned int milliseconds) const {
    if (group.Count() < LSignalObjectGroup::kMaxEntries - 1)
        group.Add(StopSignal());
    if (!group.Wait(milliseconds))
        return kProcessFailed;
    return group.WasSignaled(group.Count() - 1) ? kProcessStopped : kProcessDone;
}

LProcessResult ProcessWaitSignal(const LThread& thread, LSignalObjectRef signal,
                                 unsigned int milliseconds) {
    return WaitOrStop(thread, signal.ReadFd(), -1, milliseconds);
}

LProcessResult ProcessWaitSignals(const LThread& thread, LSignalObjectRef first,
                                  LSignalObjectRef second, unsigned int milliseconds) {
    return WaitOrStop(thread, first.ReadFd(), second.ReadFd(), milliseconds);
}

LProcessResult ProcessWaitSignalForever(const LThread& thread, LSignalObjectRef signal) {
    return WaitOrStop(thread, signal.ReadFd(), -1, -1);
}
