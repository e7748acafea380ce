// A joinable worker thread with a stop request and a priority, and the waits that respect the
// request.
#pragma once

#include <pthread.h>

#include <atomic>
#include <mutex>

#include "foundation/processes/process_result.h"
#include "foundation/threads/signal_group.h"
#include "foundation/threads/signal_object.h"

// Priorities: 1 and more is real-time round-robin with that value; 0 and less is normal scheduling
// with the nice value minus the priority (-10 is nice 10).
class LThread {
public:
    LThread() = default;
    LThread(const LThread&) = delete;
    LThread& operator=(const LThread&) = delete;
    // Stops and joins. A derived class whose ThreadFunction uses derived members does both in its
    // own destructor.
    virtual ~LThread();

    // Any thread. Does nothing while the thread runs; joins a finished run first. A thread that
    // cannot be created simply never runs.
    void Start(int priority);
    void SetPriority(int priority);
    void StopThreadSoon();  // asks, does not wait
    void Join();  // the owner's thread only; returns at once when there is nothing to join

    // How many threads run of those whose work somebody waits for. Any thread.
    static int PendingWork();

    bool IsRunning() const { return running_.load(); }
    bool IsStopping() const { return stopFlag_.load(); }
    LSignalObjectRef StopSignal() const { return stopSignal_.Ref(); }

    // Adds the stop signal to the group (while it holds fewer than 255) and waits for any of it:
    // kProcessStopped when the last entry is signalled. A group serves one wait, since every call
    // adds again.
    LProcessResult ProcessWaitSignalObjectGroup(LSignalObjectGroup& group,
                                                unsigned int milliseconds) const;

protected:
    // Tests IsStopping() between units of work and sleeps by waiting on StopSignal(), so that a
    // stop wakes it.
    virtual void ThreadFunction() = 0;
    // False for one that only accompanies something, however long that goes on.
    virtual bool IsPendingWork() const { return true; }
    void SetStopFlag() { stopFlag_.store(true); }  // for a body that ends itself

private:
    friend class LDetachedThread;
    friend class LDetachedThreadsOwner;
    static void* Entry(void* self);
    void Launch(int priority, void* (*entry)(void*));  // no thread is to be running or joinable
    void EndRun();
    void Run();            // the body with its priority and signal stack, on the thread itself
    void ApplyPriority();  // priorityMutex_ held

    LSignalObject stopSignal_;
    std::atomic<bool> stopFlag_{false};
    bool hasHandle_ = false;  // to be joined; with handle_ guarded by startMutex_
    pthread_t handle_{};
    std::mutex priorityMutex_;  // keeps a SetPriority from meeting the end of the thread, whose id
                                // may be used again
    int kernelId_ = -1;
    int priority_ = 0;
    std::atomic<bool> running_{false};
    bool isPending_ = false;  // counted, as long as it runs
    std::mutex startMutex_;
};

// Waits of a worker thread: kProcessStopped when it was asked to stop (which wins), kProcessDone
// when the awaited signal is there, kProcessFailed on time-out.
LProcessResult ProcessWaitSignal(const LThread& thread, LSignalObjectRef signal,
                                 unsigned int milliseconds);
LProcessResult ProcessWaitSignals(const LThread& thread, LSignalObjectRef first,
                                  LSignalObjectRef second, unsigned int milliseconds);
LProcessResult ProcessWaitSignalForever(const LThread& thread, LSignalObjectRef signal);
