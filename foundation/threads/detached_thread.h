// Threads that delete themselves when their work is done, and the owner that can still stop them.
#pragma once

#include <condition_variable>
#include <mutex>

#include "foundation/threads/thread.h"

class LDetachedThreadsOwner;

// Made with new; belongs to its owner from StartDetached on and must not be touched after it.
class LDetachedThread : public LThread {
public:
    // Puts the thread on the owner's list and runs it; deleted when ThreadFunction returns, or by
    // the owner. False: it could not be created, never runs, and stays on the list until the owner
    // is stopped.
    bool StartDetached(LDetachedThreadsOwner& owner, int priority);

private:
    friend class LDetachedThreadsOwner;
    static void* DetachedEntry(void* self);

    LDetachedThread* next_ = nullptr;
    LDetachedThreadsOwner* owner_ = nullptr;
};

// Must outlive its threads' ThreadFunctions; destruction stops them all. Any thread but one of its
// own.
class LDetachedThreadsOwner {
public:
    LDetachedThreadsOwner() = default;
    LDetachedThreadsOwner(const LDetachedThreadsOwner&) = delete;
    LDetachedThreadsOwner& operator=(const LDetachedThreadsOwner&) = delete;
    ~LDetachedThreadsOwner() { StopThreadsNow(); }

    void StopThreadsSoon();  // asks all, does not wait
    void StopThreadsNow();   // asks all; on return every one has ended and is deleted

    // The end of a thread's own run: deletes it, unless the owner has taken it off the list and
    // disposes of it.
    void Destruct(LDetachedThread* thread);

private:
    friend class LDetachedThread;
    bool Unlink(const LDetachedThread* thread);  // mutex held

    std::mutex mutex_;
    std::condition_variable deletedOne_;
    LDetachedThread* first_ = nullptr;
    int beingDeleted_ = 0;  // off the list, destructor running on the thread itself
};
