// All commands of the main window: found by their numbers, run when they can act, and shown alike
// wherever they stand.
#pragma once

#include <deque>
#include <functional>
#include <span>
#include <vector>

#include "app/commands/command_row.h"
#include "gui/menus/action.h"

// GUI thread. Everything is added before the first question.
class CommandSet {
public:
    // available: what is there now, asked whenever it counts. tell: a sentence for the user.
    CommandSet(std::function<CommandNeeds()> available, std::function<void(const char*)> tell)
        : available_(std::move(available)), tell_(std::move(tell)) {}

    // The owner outlives the set, the rows' texts too.
    template <typename Owner, std::size_t count>
    void Add(Owner& owner, const CommandRow<Owner> (&rows)[count]) {
        for (const CommandRow<Owner>& row : rows)
            Add(row.facts, [&owner, act = row.act] { (owner.*act)(); });
    }
    // Numbers that are told apart by what they act on, as the places of a list.
    void AddRange(int first, int last, std::function<void(int command)> act);

    // False: an unknown number. What cannot act is not run, and the user is told why, since keys
    // have no other way to show it. Whether there is a selection its owner tells late: what needs
    // one looks for itself.
    bool Run(int command);
    bool CanAct(int command) const;
    bool LeavesKey(LKeyCode key) const;  // whether it is none of a command's just now
    // Shows in all places what can act now; called whenever that may have changed.
    void Refresh();

    // The key of each command first as it is shown; valid as long as the set, once all is added.
    LKeyMap Keys() const { return keys_; }
    const CommandFacts& Facts(int command) const;  // of an unknown number: empty ones
    std::string Tip(int command) const { return TipWithKey(Facts(command).tip, Facts(command)); }

    // The widget shows the command's state until it is destroyed. Null or unknown: nothing.
    void AddProxy(int command, GtkWidget* widget, LAction::WhenOff whenOff);
    void Check(int command, bool checked);
    void Rename(int command, const char* label);  // in menus, those made later too; not copied

private:
    struct Entry {
        Entry(const CommandFacts& row, std::function<void()> function)
            : facts(row), act(std::move(function)), action(row.number) {}
        CommandFacts facts;
        std::function<void()> act;
        LAction action;
    };
    struct Range {
        int first;
        int last;
        std::function<void(int)> act;
    };
    void Add(const CommandFacts& facts, std::function<void()> act);
    static auto* Find(auto& entries, int command);

    std::function<CommandNeeds()> available_;
    std::function<void(const char*)> tell_;
    std::deque<Entry> entries_;  // which never move: widgets hold their actions
    std::vector<Range> ranges_;
    std::vector<LKeyToCommandMap> keys_;
};
