#include "foundation/threads/detached_thread.h"

bool LDetachedThread::StartDetached(LDetachedThreadsOwner& owner, int priority) {
    // Under the owner's mutex until the end: the thread cannot reach Destruct, and so delete
    // itself, before.
    const std::lock_guard lock(owner.mutex_);
    stopFlag_ = false;
    owner_ = &owner;
    next_ = owner.first_;
    owner.first_ = this;
    Launch(priority, &DetachedEntry);
    return hasHandle_;
}

void* LDetachedThread::DetachedEntry(void* self) {
    auto* const thread = static_cast<LDetachedThread*>(self);
    LDetachedThreadsOwner& owner = *thread->owner_;
    thread->Run();
    owner.Destruct(thread);
    return nullptr;
}

bool LDetachedThreadsOwner::Unlink(const LDetachedThread* thread) {
    for (LDetachedThread** link = &first_; *link; link = &(*link)->next_) {
        if (*link == thread) {
            *link = thread->next_;
            return true;
        }
    }
    return false;
}

void LDetachedThreadsOwner::Destruct(LDetachedThread* thread) {
    {
        const std::lock_guard lock(mutex_);
        if (!Unlink(thread))
            return;  // StopThreadsNow joins and deletes it
        // Nobody will join it any more. The handle is given up only here, so that the owner never
        // finds a thread that has neither ended nor a handle to join.
        if (thread->hasHandle_)
            ::pthread_detach(thread->handle_);
        thread->hasHandle_ = false;
        ++beingDeleted_;
    }
    delete thread;
    const std::lock_guard lock(mutex_);
    --beingDeleted_;
    deletedOne_.notify_all();
}

void LDetachedThreadsOwner::StopThreadsSoon() {
    const std::lock_guard lock(mutex_);
    for (LDetachedThread* thread = first_; thread; thread = thread->next_)
        thread->StopThreadSoon();
}

void LDetachedThreadsOwner::StopThreadsNow() {
    StopThreadsSoon();
    std::unique_lock lock(mutex_);
    while (first_) {
        LDetachedThread* const thread = first_;
        first_ = thread->next_;
        lock.unlock();
        thread->StopThreadSoon();
        thread->Join();
        delete thread;
        lock.lock();
    }
    deletedOne_.wait(lock, [this] { return beingDeleted_ == 0; });
}
