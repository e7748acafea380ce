#include "app/window/sleep_commands.h"

#include <gdk/gdkkeysyms.h>

#include <utility>

#include "app/commands/command_numbers.h"

SleepCommands::SleepCommands(Narrator& narrator, CommandSet& commands,
                             std::function<void(const char*)> tell)
    : commands_(commands),
      timer_(narrator, {.tell = std::move(tell), .changed = [this] { ShowChoice(); }}) {}

void SleepCommands::AddCommands() {
    static constexpr CommandRow<SleepCommands> kRows[] = {
        {{.number = kSleepNever, .label = "&Off"}, &SleepCommands::CmOff},
        {{.number = kSleepIn15, .label = "In &15 Minutes"}, &SleepCommands::CmIn15},
        {{.number = kSleepIn30, .label = "In &30 Minutes"}, &SleepCommands::CmIn30},
        {{.number = kSleepIn60, .label = "In &60 Minutes"}, &SleepCommands::CmIn60},
        {{.number = kSleepAtChapter, .label = "At the End of the &Chapter", .needs = kNeedsReading},
         &SleepCommands::CmEndOfChapter},
        {{.number = kSleepNext, .label = "&Next of These", .keys = {kKeyControl | GDK_T}},
         &SleepCommands::CmNext},
    };
    commands_.Add(*this, kRows);
    ShowChoice();
}

// The item that was pressed has lost its mark when it was the choice already.
void SleepCommands::Choose(SleepAt when) {
    timer_.Choose(when);
    ShowChoice();
}

void SleepCommands::ShowChoice() {
    static constexpr int kInOrder[] = {kSleepNever, kSleepIn15, kSleepIn30, kSleepIn60,
                                       kSleepAtChapter};
    static_assert(std::size(kInOrder) == kSleepChoices);
    for (std::size_t choice = 0; choice < kSleepChoices; ++choice)
        commands_.Check(kInOrder[choice], choice == static_cast<std::size_t>(timer_.Chosen()));
}
