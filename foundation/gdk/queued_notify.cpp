#include "foundation/gdk/queued_notify.h"

#include <algorithm>
#include <cstring>

#include "foundation/gdk/gdk_lock.h"

namespace {

struct Message {
    std::uint32_t code;
    LQueuedNotifyDataHandler* handler;
    void* data;  // behind this header, in the same block; null when there is none
    std::uint32_t size;
};

// Messages on their way, so that a handler that goes away can take back its own.
struct Queued {
    const Message* message;
    guint source;
};
struct MessageQueue {
    std::mutex mutex;
    std::vector<Queued> messages;
};
MessageQueue& TheQueue() {
    static MessageQueue queue;
    return queue;
}

}  // namespace

LThreadQueuedNotify::~LThreadQueuedNotify() {
    const std::lock_guard lock(mutex_);
    for (const guint source : pending_)
        g_source_remove(source);
}

void LThreadQueuedNotify::QueueNotify() {
    // The mutex is held until the id is stored: the GUI thread may run the call at once.
    const std::lock_guard lock(mutex_);
    pending_.push_back(g_idle_add(&SourceFunc, this));
}

gboolean LThreadQueuedNotify::SourceFunc(gpointer self) {
    auto* const notify = static_cast<LThreadQueuedNotify*>(self);
    const guint source = g_source_get_id(g_main_current_source());
    const GdkLock gdk;
    {
        const std::lock_guard lock(notify->mutex_);
        std::erase(notify->pending_, source);
    }
    notify->EvNotify();
    return FALSE;
}

unsigned int LQueuedNotifyDataSender::NotifyData(unsigned int code, const void* data,
                                                 unsigned int size) const {
    if (!handler_)
        return 0;
    auto* const block = static_cast<char*>(g_malloc(sizeof(Message) + size));
    auto* const message = new (block) Message{code, handler_, nullptr, size};
    if (size > 0) {
        message->data = block + sizeof(Message);
        std::memcpy(message->data, data, size);
    }
    const std::lock_guard lock(TheQueue().mutex);
    const guint source = g_idle_add_full(
        G_PRIORITY_DEFAULT_IDLE, &LQueuedNotifyDataHandler::NotifyCallBack, message, g_free);
    TheQueue().messages.push_back({message, source});
    return source;
}

gboolean LQueuedNotifyDataHandler::NotifyCallBack(gpointer data) {
    const auto* const message = static_cast<const Message*>(data);
    {
        const std::lock_guard lock(TheQueue().mutex);
        std::erase_if(TheQueue().messages,
                      [message](const Queued& entry) { return entry.message == message; });
    }
    message->handler->EvNotifyData(message->code, message->data, message->size);
    return FALSE;
}

LQueuedNotifyDataHandler::~LQueuedNotifyDataHandler() {
    std::vector<guint> sources;
    {
        const std::lock_guard lock(TheQueue().mutex);
        for (const Queued& entry : TheQueue().messages)
            if (entry.message->handler == this)
                sources.push_back(entry.source);
        std::erase_if(TheQueue().messages,
                      [this](const Queued& entry) { return entry.message->handler == this; });
    }
    for (const guint source : sources)
        g_source_remove(source);
}
