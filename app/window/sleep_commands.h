// The commands of the sleep timer.
#pragma once

#include "app/commands/command_set.h"
#include "app/reading/sleep_timer.h"

// GUI thread; the narrator outlives this object, the commands too.
class SleepCommands {
public:
    // tell: a sentence for the user.
    SleepCommands(Narrator& narrator, CommandSet& commands, std::function<void(const char*)> tell);
    SleepCommands(const SleepCommands&) = delete;
    SleepCommands& operator=(const SleepCommands&) = delete;

    void AddCommands();
    std::string Status() const { return timer_.Status(); }

private:
    void CmOff() { Choose(SleepAt::kNever); }
    void CmIn15() { Choose(SleepAt::kIn15); }
    void CmIn30() { Choose(SleepAt::kIn30); }
    void CmIn60() { Choose(SleepAt::kIn60); }
    void CmEndOfChapter() { Choose(SleepAt::kEndOfChapter); }
    void CmNext() { timer_.ChooseNext(); }
    void Choose(SleepAt when);
    void ShowChoice();

    CommandSet& commands_;
    SleepTimer timer_;
};
