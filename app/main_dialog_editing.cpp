// Files that were open before, and files dropped on the window.
#include <unistd.h>

#include "app/commands/command_numbers.h"
#include "app/main_dialog.h"
#include "app/text/recent_files.h"
#include "app/words/say_differently_dialog.h"
#include "documents/web_address.h"
#include "gui/windows/message_box.h"

void MainDialog::CmSayDifferently() {
    SayDifferently(Widget(), text_.WordAtCursor());
}

void MainDialog::OpenRecentFile(std::size_t number) {
    const std::vector<std::string> files = RecentFiles::List();
    if (number >= files.size())
        return;
    const std::string& path = files[number];
    if (IsWebAddress(path) || ::access(path.c_str(), F_OK) == 0) {
        LoadFile(path, FileFrom::kUser);
        return;
    }
    RecentFiles::Remove(path);
    ListRecentFilesSoon();
    MessageBoxRun(Widget(), GTK_MESSAGE_INFO, GTK_BUTTONS_OK, "Lectora",
                  "The file is no longer there.",
                  (path + " was taken from the list of recent files.").c_str());
}

void MainDialog::ListRecentFiles() {
    std::vector<std::string> labels = RecentFiles::List();
    for (std::string& label : labels)
        label = keeper_.WithProgress(label);
    places_.ListRecentFiles(labels);
}

// From the main loop: an item of the list may be what was pressed just now.
void MainDialog::ListRecentFilesSoon() {
    recentTimer_.Start(0, [this] {
        if (IsOpen())
            ListRecentFiles();
    });
}

// From the main loop: loading may run a dialog, and the other program waits for the drop to end.
// One file is there to be looked at; several are read one after the other, as arguments are.
void MainDialog::EvFilesDropped(const std::vector<std::string>& paths) {
    dropTimer_.Start(0, [this, paths] {
        if (!IsOpen())
            return;
        if (paths.size() == 1 && !loading_ && !saving_)
            LoadFile(paths.front(), FileFrom::kUser);
        else
            ReadFiles(paths);
    });
}
