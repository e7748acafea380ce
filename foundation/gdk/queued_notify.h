// Two ways of running code on the GUI thread from any thread, both through GLib's idle queue.
#pragma once

#include <glib.h>

#include <cstdint>
#include <mutex>
#include <vector>

// Calls EvNotify on the GUI thread, inside the GDK lock, once for every QueueNotify. What is to be
// told lives in the derived object, so several queued calls all see the newest values. Destroy it
// on the GUI thread, after the threads that queue: calls still pending are taken back.
class LThreadQueuedNotify {
public:
    LThreadQueuedNotify() = default;
    LThreadQueuedNotify(const LThreadQueuedNotify&) = delete;
    LThreadQueuedNotify& operator=(const LThreadQueuedNotify&) = delete;
    virtual ~LThreadQueuedNotify();

protected:
    virtual void EvNotify() = 0;  // may delete this object
    void QueueNotify();           // any thread, with or without the GDK lock

private:
    static gboolean SourceFunc(gpointer self);

    std::mutex mutex_;
    std::vector<guint> pending_;  // source ids
};

// Receives messages on the GUI thread, outside the GDK lock. Destroy it on the GUI thread: messages
// still queued for it are dropped.
class LQueuedNotifyDataHandler {
public:
    LQueuedNotifyDataHandler() = default;
    LQueuedNotifyDataHandler(const LQueuedNotifyDataHandler&) = delete;
    LQueuedNotifyDataHandler& operator=(const LQueuedNotifyDataHandler&) = delete;
    virtual ~LQueuedNotifyDataHandler();

    // data is null when size is 0, and valid during the call only.
    virtual void EvNotifyData(std::uint32_t code, const void* data, std::uint32_t size) = 0;

private:
    friend class LQueuedNotifyDataSender;
    static gboolean NotifyCallBack(gpointer message);
};

// Sends messages, each with its own copy of its data. Copyable; any thread.
class LQueuedNotifyDataSender {
public:
    LQueuedNotifyDataSender() = default;
    explicit LQueuedNotifyDataSender(LQueuedNotifyDataHandler* handler) : handler_(handler) {}

    void SetHandler(LQueuedNotifyDataHandler* handler) { handler_ = handler; }
    // The id of the queued idle source, 0 when there is no handler. size in bytes.
    unsigned int NotifyData(unsigned int code, const void* data, unsigned int size) const;

private:
    LQueuedNotifyDataHandler* handler_ = nullptr;  // borrowed
};
