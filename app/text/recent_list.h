// The menu's list of the files that were open before.
#pragma once

#include <functional>
#include <string>

#include "app/commands/command_places.h"
#include "app/commands/command_set.h"
#include "app/reading/narrator.h"
#include "gui/gui_timer.h"
#include "gui/main_window/main_window.h"

// A receiver of the narrator's news: the list says how far the files were read. GUI thread.
class RecentList {
public:
    struct Ways {
        std::function<std::string(const std::string& path)> labelOf;  // what stands there for it
        std::function<void(const std::string& path)> open;
    };
    // All are borrowed.
    RecentList(LMainWindow& window, CommandPlaces& places, Narrator& narrator, Ways ways);
    RecentList(const RecentList&) = delete;
    RecentList& operator=(const RecentList&) = delete;

    void AddCommands(CommandSet& commands);
    void Show();  // once the menus are there
    // From the main loop: an item of the list may be what was pressed just now.
    void ShowSoon();

private:
    void Open(std::size_t number);

    LMainWindow& window_;
    CommandPlaces& places_;
    const Ways ways_;
    LGuiTimer soon_;
    Narrator::Subscription news_;
};
