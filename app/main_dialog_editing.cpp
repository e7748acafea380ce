// Editing in the main window: undoing, finding, the size of the letters, files that were open
// before.
#include <unistd.h>

#include "app/commands/command_numbers.h"
#include "app/main_dialog.h"
#include "app/recent_files.h"
#include "gui/message_box.h"

// One step to be undone.
void MainDialog::ReplaceText(const std::string& text) {
    GtkTextBuffer* buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(GetControlByID(kTextBox)));
    gtk_text_buffer_begin_user_action(buffer);
    SetEditText(kTextBox, text.c_str());
    gtk_text_buffer_end_user_action(buffer);
}

void MainDialog::CmUndo() {
    history_.Undo();
    ShowCursor();
}

void MainDialog::CmRedo() {
    history_.Redo();
    ShowCursor();
}

void MainDialog::ShowCursor() {
    auto* view = GTK_TEXT_VIEW(GetControlByID(kTextBox));
    gtk_text_view_scroll_mark_onscreen(view,
                                       gtk_text_buffer_get_insert(gtk_text_view_get_buffer(view)));
}

void MainDialog::TellTextSize(int points) {
    TellStatusText(("Text size: " + std::to_string(points) + " points").c_str());
}

// The open bar takes its place before it takes the keyboard.
void MainDialog::CmFind() {
    ShowControl(kFindBar, true);
    find_.Open();
    Layout();
}

void MainDialog::CmFindNext() {
    if (find_.IsOpen())
        find_.FindNext();
    else
        CmFind();
}

void MainDialog::OpenRecentFile(std::size_t number) {
    const std::vector<std::string> files = RecentFiles::List();
    if (number >= files.size())
        return;
    const std::string& path = files[number];
    if (::access(path.c_str(), F_OK) == 0) {
        LoadFile(path.c_str(), FileFrom::kUser);
        return;
    }
    RecentFiles::Remove(path);
    ListRecentFilesSoon();
    MessageBoxRun(Widget(), GTK_MESSAGE_INFO, GTK_BUTTONS_OK, "Lectora",
                  "The file is no longer there.",
                  (path + " was taken from the list of recent files.").c_str());
}

// From the main loop: an item of the list may be what was pressed just now.
void MainDialog::ListRecentFilesSoon() {
    recentTimer_.Start(0, [this] {
        if (IsOpen())
            places_.ListRecentFiles(RecentFiles::List());
    });
}

// From the main loop: loading may run a dialog, and the other program waits for the drop to end.
void MainDialog::EvFilesDropped(const std::vector<std::string>& paths) {
    dropTimer_.Start(0, [this, path = paths.front()] {
        if (IsOpen() && !loading_ && !speaking_)
            LoadFile(path.c_str(), FileFrom::kUser);
    });
}
