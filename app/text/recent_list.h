// The menu's list of the files that were open before.
#pragma once

#include <functional>
#include <string>

#include "app/commands/command_places.h"
#include "app/commands/command_set.h"
#include "app/reading/narrator.h"
#include "app/text/text_sources.h"
#include "gui/gui_timer.h"

// A receiver of the narrator's news: the list says how far the files were read. GUI thread.
class RecentList {
public:
    // All are borrowed. labelOf: what stands there for a path.
    RecentList(LMainWindow& window, TextSources& sources, CommandPlaces& places, Narrator& narrator,
               std::function<std::string(const std::string& path)> labelOf);
    RecentList(const RecentList&) = delete;
    RecentList& operator=(const RecentList&) = delete;

    void AddCommands(CommandSet& commands);
    void Show();  // once the menus are there
    // From the main loop: an item of the list may be what was pressed just now.
    void ShowSoon();

private:
    void Open(std::size_t number);

    LMainWindow& window_;
    TextSources& sources_;
    CommandPlaces& places_;
    const std::function<std::string(const std::string&)> labelOf_;
    LGuiTimer soon_;
    Narrator::Subscription news_;
};
