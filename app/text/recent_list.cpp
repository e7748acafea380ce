#include "app/text/recent_list.h"

#include <unistd.h>

#include <utility>
#include <vector>

#include "app/commands/command_numbers.h"
#include "app/text/recent_files.h"
#include "documents/web_address.h"
#include "gui/windows/message_box.h"

RecentList::RecentList(LMainWindow& window, CommandPlaces& places, Narrator& narrator, Ways ways)
    : window_(window),
      places_(places),
      ways_(std::move(ways)),
      news_(narrator.News(), [this](const ReadingNews& news) {
          if (news.IsNew() && !IsReading(news.state))
              ShowSoon();
      }) {}

void RecentList::AddCommands(CommandSet& commands) {
    commands.AddRange(kRecentFile, kLastRecentFile, [this](int command) {
        Open(static_cast<std::size_t>(command - kRecentFile));
    });
}

void RecentList::Open(std::size_t number) {
    const std::vector<std::string> files = RecentFiles::List();
    if (number >= files.size())
        return;
    const std::string& path = files[number];
    if (IsWebAddress(path) || ::access(path.c_str(), F_OK) == 0) {
        ways_.open(path);
        return;
    }
    RecentFiles::Remove(path);
    ShowSoon();
    MessageBoxRun(window_.Widget(), GTK_MESSAGE_INFO, GTK_BUTTONS_OK, "Lectora",
                  "The file is no longer there.",
                  (path + " was taken from the list of recent files.").c_str());
}

void RecentList::Show() {
    std::vector<std::string> labels = RecentFiles::List();
    for (std::string& label : labels)
        label = ways_.labelOf(label);
    places_.ListRecentFiles(labels);
}

void RecentList::ShowSoon() {
    soon_.Start(0, [this] {
        if (window_.IsOpen())
            Show();
    });
}
