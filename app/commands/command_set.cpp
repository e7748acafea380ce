#include "app/commands/command_set.h"

#include <algorithm>
#include <utility>

namespace {

// A selection is left out: its owner tells of it late, and a command looks for itself.
constexpr struct {
    CommandNeeds need;
    const char* lack;
} kLacks[] = {
    {kNeedsText, "There is no text yet."},
    {kNeedsTextOrReading, "There is no text yet."},
    {kNeedsUndo, "There is nothing to undo."},
    {kNeedsRedo, "There is nothing to redo."},
    {kNeedsReading, "Nothing is being read."},
    {kNeedsSound, "Nothing is being read."},
    {kNeedsTextOrSound, "There is nothing to play yet."},
    {kNeedsArticle, "Nothing around the text is left out."},
    {kNeedsPlaces, "Nothing is being read."},
    {kNeedsHeadings, "This text has no headings."},
    {kNeedsWaitingFile, "No file waits to be read."},
    {kNeedsChapters, "This text has no chapters."},
    {kNeedsContents, "This text has no contents: no chapters and no headings."},
    {kNeedsPages, "This text has no pages."},
};

}  // namespace

std::string TipWithKey(const char* tip, const CommandFacts& facts) {
    const std::string text = tip != nullptr ? tip : "";
    return facts.keys[0] == 0 ? text : text + " (" + LKeyGetDescription(facts.keys[0]) + ")";
}

void CommandSet::Add(const CommandFacts& facts, std::function<void()> act) {
    entries_.emplace_back(facts, std::move(act));
    for (const LKeyCode key : facts.keys) {
        if (key == 0)
            continue;
        keys_.push_back({key, facts.number});
        for (const int number : facts.also) {
            if (number != 0)
                keys_.push_back({key, number});  // menus show the key of what they send
        }
    }
}

void CommandSet::AddRange(int first, int last, std::function<void(int)> act) {
    ranges_.push_back({first, last, std::move(act)});
}

auto* CommandSet::Find(auto& entries, int command) {
    const auto found = std::ranges::find_if(entries, [=](const Entry& each) {
        return command != 0 &&
               (each.facts.number == command || std::ranges::count(each.facts.also, command) != 0);
    });
    return found != entries.end() ? &*found : nullptr;
}

const CommandFacts& CommandSet::Facts(int command) const {
    static constexpr CommandFacts kNone;
    const Entry* entry = Find(entries_, command);
    return entry != nullptr ? entry->facts : kNone;
}

bool CommandSet::Run(int command) {
    if (const Entry* entry = Find(entries_, command)) {
        const CommandNeeds lacking = entry->facts.needs & ~available_();
        for (const auto& each : kLacks) {
            if ((lacking & each.need) != 0) {
                tell_(each.lack);
                return true;
            }
        }
        entry->act();
        return true;
    }
    for (const Range& range : ranges_) {
        if (command >= range.first && command <= range.last) {
            range.act(command);
            return true;
        }
    }
    return false;
}

bool CommandSet::CanAct(int command) const {
    return (Facts(command).needs & ~available_()) == 0;
}

bool CommandSet::LeavesKey(LKeyCode key) const {
    const CommandFacts& facts = Facts(CommandOfKey(keys_, key));
    return facts.sharesKeys && !CanAct(facts.number);
}

void CommandSet::Refresh() {
    const CommandNeeds available = available_();
    for (Entry& entry : entries_)
        entry.action.SetEnabled((entry.facts.needs & ~available) == 0);
}

void CommandSet::AddProxy(int command, GtkWidget* widget, LAction::WhenOff whenOff) {
    Entry* entry = Find(entries_, command);
    if (entry != nullptr && widget != nullptr)
        entry->action.AddProxy(widget, whenOff);
}

void CommandSet::Check(int command, bool checked) {
    if (Entry* entry = Find(entries_, command))
        entry->action.SetChecked(checked);
}

void CommandSet::Rename(int command, const char* label) {
    Entry* entry = Find(entries_, command);
    if (entry == nullptr)
        return;
    entry->facts.label = label;
    entry->action.SetLabel(label);
}
