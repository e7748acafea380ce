// The files that wait to be read, from one run to the next.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "app/reading/reading_queue.h"
#include "gui/gui_timer.h"

// Writes the paths into the user's store soon after each change. GUI thread; the queue outlives
// this.
class KeptQueue {
public:
    static constexpr std::size_t kMost = 1000;  // files

    struct Listener {
        std::function<bool()> mayKeep;
        std::function<void(const char*)> tell;  // what is not kept, once
    };
    KeptQueue(ReadingQueue& queue, Listener listener)
        : queue_(queue), listener_(std::move(listener)) {}
    KeptQueue(const KeptQueue&) = delete;
    KeptQueue& operator=(const KeptQueue&) = delete;

    // Puts what was kept behind what waits, set aside, and keeps from now on. `begin` reads a file
    // as QueuedText's does.
    void Begin(const std::function<QueuedText::Begun(const std::string& path)>& begin);
    void End();  // keeps what waits now, and nothing more

private:
    void Keep();

    ReadingQueue& queue_;
    const Listener listener_;
    bool isTold_ = false;
    LGuiTimer soon_;
    LBroadcast<std::vector<ReadingQueue::File>>::Subscription changes_;
};

// What was kept is gone from the disk.
void ForgetKeptQueue();
