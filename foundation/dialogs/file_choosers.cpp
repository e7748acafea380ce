// The file choosers of LFile; GUI thread, GDK lock held.
#include <gdk/gdkkeysyms.h>
#include <gtk/gtk.h>
#include <sys/stat.h>

#include <string>
#include <string_view>

#include "foundation/file.h"
#include "foundation/file_mask.h"
#include "foundation/machine_root.h"
#include "foundation/owned_text.h"
#include "foundation/text_buffer.h"
#include "gui/display_text.h"
#include "gui/icons.h"
#include "gui/message_box.h"
#include "gui/parent_window.h"

namespace {

// A chooser window, destroyed with this object.
class Chooser {
public:
    Chooser(GtkWidget* parent, const char* title, GtkFileChooserAction action,
            const char* acceptButton) {
        dialog_ = gtk_file_chooser_dialog_new(DisplayText(title).c_str(), ParentWindow(parent),
                                              action, "gtk-cancel", GTK_RESPONSE_CANCEL,
                                              acceptButton, GTK_RESPONSE_ACCEPT, nullptr);
        SetWindowIcon(GTK_WINDOW(dialog_), kAppIconNumber);
        gtk_dialog_set_default_response(GTK_DIALOG(dialog_), GTK_RESPONSE_ACCEPT);
        gtk_file_chooser_set_do_overwrite_confirmation(Self(), TRUE);
        g_signal_connect(dialog_, "key-press-event", G_CALLBACK(GCKey), nullptr);
    }
    ~Chooser() {
        gtk_widget_destroy(dialog_);
        umask(maskBefore_);
    }
    Chooser(const Chooser&) = delete;
    Chooser& operator=(const Chooser&) = delete;

    GtkFileChooser* Self() const { return GTK_FILE_CHOOSER(dialog_); }
    GtkWidget* Widget() const { return dialog_; }
    bool Run() { return gtk_dialog_run(GTK_DIALOG(dialog_)) == GTK_RESPONSE_ACCEPT; }
    std::string File() const {
        const OwnedText name(gtk_file_chooser_get_filename(Self()));
        return name ? name.get() : "";
    }

    void StartIn(const char* folder) {
        const std::string start = folder == nullptr || *folder == '\0' ? HomeFolder() : folder;
        gtk_file_chooser_set_current_folder(Self(), start.c_str());
    }
    // A name, a NUL, patterns separated by ";", and a double NUL.
    void AddFilter(const char* filter) {
        if (filter == nullptr)
            return;
        GtkFileFilter* entry = gtk_file_filter_new();
        gtk_file_filter_set_name(entry, DisplayText(filter).c_str());
        std::string_view patterns(filter + std::char_traits<char>::length(filter) + 1);
        while (!patterns.empty()) {
            const std::size_t end = patterns.find(';');
            std::string_view pattern = patterns.substr(0, end);
            pattern.remove_prefix(std::min(pattern.find_first_not_of(' '), pattern.size()));
            if (!pattern.empty())
                gtk_file_filter_add_pattern(entry, std::string(pattern).c_str());
            patterns.remove_prefix(end == std::string_view::npos ? patterns.size() : end + 1);
        }
        gtk_file_chooser_add_filter(Self(), entry);
    }
    bool HasChosenExistingFile() const {
        struct stat status = {};
        return ::stat(File().c_str(), &status) == 0;
    }

private:
    // GTK keeps Tab in the field of the name, to complete it; whoever works by ear would not get
    // out. What GTK has completed while the name was typed is taken.
    static gboolean GCKey(GtkWidget* dialog, GdkEventKey* event, gpointer) {
        GtkWidget* focus = gtk_window_get_focus(GTK_WINDOW(dialog));
        const bool leaves = event->keyval == GDK_KEY_Tab &&
                            (event->state & gtk_accelerator_get_default_mod_mask()) == 0 &&
                            GTK_IS_ENTRY(focus);
        if (leaves)
            g_signal_emit_by_name(dialog, "move-focus", GTK_DIR_TAB_FORWARD);
        return leaves ? TRUE : FALSE;
    }

    GtkWidget* dialog_;
    // GTK keeps files of its own about choosers in the home folder, and may be asked to make a
    // folder there.
    const mode_t maskBefore_ = umask(StartMask());
};

bool Accept(const Chooser& chooser, char* path, char* folder) {
    const std::string file = chooser.File();
    CopyText(path, kTextBufferSize, file);
    LFile::_GetFolderFromPath(folder, path);
    return true;
}

}  // namespace

bool LFile::BrowseReadFilePath(GtkWidget* parent, char* path, const char* title, char* folder,
                               const char* filter) {
    Chooser chooser(parent, title, GTK_FILE_CHOOSER_ACTION_OPEN, "gtk-open");
    chooser.StartIn(folder);
    if (*path != '\0')
        gtk_file_chooser_set_filename(chooser.Self(), path);
    chooser.AddFilter(filter);
    while (chooser.Run()) {
        if (chooser.HasChosenExistingFile())
            return Accept(chooser, path, folder);
        const std::string text =
            "The File " + chooser.File() + " is not valid. Please choose another file.";
        MessageBoxRun(chooser.Widget(), GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Lectora", text.c_str(),
                      "");
    }
    *path = '\0';
    return false;
}

bool LFile::BrowseSaveFilePath(GtkWidget* parent, char* path, const char* title, char* folder,
                               const char* filter) {
    Chooser chooser(parent, title, GTK_FILE_CHOOSER_ACTION_SAVE, "gtk-save");
    chooser.StartIn(folder);
    if (*path != '\0') {
        char name[kTextBufferSize];
        _GetFileFromPath(name, path);
        gtk_file_chooser_set_current_name(chooser.Self(), name);
    }
    chooser.AddFilter(filter);
    if (chooser.Run() && !chooser.File().empty())
        return Accept(chooser, path, folder);
    *path = '\0';
    return false;
}

bool LFile::BrowseMultipleReadFiles(GtkWidget* parent, BrowseMultiplePaths& paths,
                                    const char* title, char* folder, const char* filter) {
    Chooser chooser(parent, title, GTK_FILE_CHOOSER_ACTION_OPEN, "gtk-open");
    chooser.StartIn(folder);
    chooser.AddFilter(filter);
    gtk_file_chooser_set_select_multiple(chooser.Self(), TRUE);
    paths.clear();
    if (!chooser.Run())
        return false;
    GSList* names = gtk_file_chooser_get_filenames(chooser.Self());
    for (GSList* name = names; name != nullptr; name = name->next) {
        const OwnedText text(static_cast<char*>(name->data));
        paths.emplace_back(text.get());
    }
    g_slist_free(names);
    if (!paths.empty())
        _GetFolderFromPath(folder, paths.front().c_str());
    return !paths.empty();
}

bool LFile::BrowseFolder(GtkWidget* parent, char* path, const char* title) {
    Chooser chooser(parent, title, GTK_FILE_CHOOSER_ACTION_SELECT_FOLDER, "gtk-open");
    chooser.StartIn(path);
    const bool accepted = chooser.Run() && !chooser.File().empty();
    CopyText(path, kTextBufferSize, accepted ? chooser.File() : "");
    return accepted;
}
