// The commands of the files that wait to be read.
#pragma once

#include <functional>
#include <string>

#include "app/commands/command_set.h"
#include "app/reading/kept_queue.h"
#include "app/reading/narrator.h"

// GUI thread; all that is handed over outlives this object.
class QueueCommands {
public:
    struct Listener {
        std::function<GtkWidget*()> parent;  // of the list
        std::function<std::string(const std::string&)>
            withProgress;  // a path, and how far it was read
        std::function<void(const char*)> tell;
        std::function<void()> changed;  // Available() is another one
    };
    QueueCommands(Narrator& narrator, CommandSet& commands, Listener listener);
    QueueCommands(const QueueCommands&) = delete;
    QueueCommands& operator=(const QueueCommands&) = delete;

    void AddCommands();
    CommandNeeds Available() const;
    // Of the queue from one run to the next: what waits is kept once it was taken up.
    KeptQueue& Kept() { return kept_; }
    std::string Status() const;  // "2 files wait"; empty when none does

private:
    void CmShow();
    void CmNext() { narrator_.NextItem(); }
    void EvChange();

    Narrator& narrator_;
    CommandSet& commands_;
    const Listener listener_;
    KeptQueue kept_;
    bool wasAside_ = false;
    bool isUntold_ = false;
    LGuiTimer soon_;
    LBroadcast<std::vector<ReadingQueue::File>>::Subscription changes_;
};
