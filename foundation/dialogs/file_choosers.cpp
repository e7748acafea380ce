// The file choosers of LFile; GUI thread, GDK lock held.
#include <gdk/gdkkeysyms.h>
#include <gtk/gtk.h>
#include <sys/stat.h>

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/files/file.h"
#include "foundation/files/file_mask.h"
#include "foundation/files/machine_root.h"
#include "foundation/files/path_text.h"
#include "foundation/owned_text.h"
#include "gui/display_text.h"
#include "gui/gui_timer.h"
#include "gui/icons.h"
#include "gui/parent_window.h"
#include "gui/windows/message_box.h"

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
        g_signal_connect(dialog_, "key-press-event", G_CALLBACK(GCKey), this);
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

    // Stands in the field of the name, to be taken, edited, or typed over.
    void SuggestName(const std::string& name) {
        suggestion_ = name;
        if (!name.empty())
            g_signal_connect(dialog_, "map-event", G_CALLBACK(GCMapped), this);
    }
    void StartIn(const std::string& folder) {
        gtk_file_chooser_set_current_folder(Self(),
                                            (folder.empty() ? HomeFolder() : folder).c_str());
    }
    void AddFilters(const char* filters) {
        while (filters != nullptr && *filters != '\0') {
            const char* patterns = filters + std::strlen(filters) + 1;
            AddFilter(filters, patterns);
            filters = patterns + std::strlen(patterns) + 1;
        }
    }
    void ChooseFilter(int index) {
        if (index >= 0 && index < static_cast<int>(filters_.size()))
            gtk_file_chooser_set_filter(Self(), filters_[static_cast<std::size_t>(index)].entry);
    }
    int ChosenFilter() const {
        const GtkFileFilter* chosen = gtk_file_chooser_get_filter(Self());
        for (std::size_t index = 0; index < filters_.size(); ++index) {
            if (filters_[index].entry == chosen)
                return static_cast<int>(index);
        }
        return 0;
    }
    // With its dot; empty where there are no filters.
    std::string ExtensionOfFilter() const {
        return filters_.empty() ? "" : filters_[static_cast<std::size_t>(ChosenFilter())].extension;
    }
    bool HasChosenExistingFile() const {
        struct stat status = {};
        return ::stat(File().c_str(), &status) == 0;
    }

private:
    struct Filter {
        GtkFileFilter* entry;  // the chooser's
        std::string extension;
    };

    void AddFilter(const char* name, std::string_view patterns) {
        Filter filter{gtk_file_filter_new(), ""};
        gtk_file_filter_set_name(filter.entry, DisplayText(name).c_str());
        while (!patterns.empty()) {
            const std::size_t end = patterns.find(';');
            std::string pattern(patterns.substr(0, end));
            pattern.erase(0, std::min(pattern.find_first_not_of(' '), pattern.size()));
            if (!pattern.empty())
                gtk_file_filter_add_pattern(filter.entry, pattern.c_str());
            if (filter.extension.empty())
                filter.extension = EndingOfPath(pattern);
            patterns.remove_prefix(end == std::string_view::npos ? patterns.size() : end + 1);
        }
        gtk_file_chooser_add_filter(Self(), filter.entry);
        filters_.push_back(filter);
    }

    // Only now, since GTK selects what stands in the field when it gets the keyboard: the selection
    // of the program in which the user has selected something would be lost.
    void ShowSuggestion() {
        GtkWidget* field = gtk_window_get_focus(GTK_WINDOW(dialog_));
        if (!GTK_IS_ENTRY(field) || gtk_entry_get_text_length(GTK_ENTRY(field)) > 0)
            return;
        gtk_file_chooser_set_current_name(Self(), suggestion_.c_str());
        g_signal_connect(field, "button-press-event", G_CALLBACK(GCPressed), this);
        isSuggested_ = true;
    }
    // As if the suggestion were selected: what is typed first takes its place.
    void TypeOverSuggestion(GtkWidget* field, const GdkEventKey& event) {
        if (!isSuggested_ || event.is_modifier != 0 || !GTK_IS_ENTRY(field))
            return;
        isSuggested_ = false;
        const guint modifiers = event.state & gtk_accelerator_get_default_mod_mask();
        const gunichar sign = gdk_keyval_to_unicode(event.keyval);
        const bool types = (modifiers & ~static_cast<guint>(GDK_SHIFT_MASK)) == 0 && sign != 0 &&
                           g_unichar_isprint(sign) != FALSE;
        const bool pastes = modifiers == GDK_CONTROL_MASK && event.keyval == GDK_KEY_v;
        const bool erases = event.keyval == GDK_KEY_BackSpace || event.keyval == GDK_KEY_Delete;
        if (types || pastes || erases)
            gtk_editable_delete_text(GTK_EDITABLE(field), 0, -1);
    }
    static gboolean GCMapped(GtkWidget*, GdkEvent*, gpointer chooser) {
        auto* self = static_cast<Chooser*>(chooser);
        self->suggestTimer_.Start(0, [self] { self->ShowSuggestion(); });
        return FALSE;
    }
    static gboolean GCPressed(GtkWidget*, GdkEventButton*, gpointer chooser) {
        static_cast<Chooser*>(chooser)->isSuggested_ = false;
        return FALSE;
    }

    // GTK keeps Tab in the field of the name, to complete it; whoever works by ear would not get
    // out. What GTK has completed while the name was typed is taken.
    static gboolean GCKey(GtkWidget* dialog, GdkEventKey* event, gpointer chooser) {
        GtkWidget* focus = gtk_window_get_focus(GTK_WINDOW(dialog));
        static_cast<Chooser*>(chooser)->TypeOverSuggestion(focus, *event);
        const bool leaves = event->keyval == GDK_KEY_Tab &&
                            (event->state & gtk_accelerator_get_default_mod_mask()) == 0 &&
                            GTK_IS_ENTRY(focus);
        if (leaves)
            g_signal_emit_by_name(dialog, "move-focus", GTK_DIR_TAB_FORWARD);
        return leaves ? TRUE : FALSE;
    }

    GtkWidget* dialog_;
    std::vector<Filter> filters_;
    std::string suggestion_;
    LGuiTimer suggestTimer_;
    bool isSuggested_ = false;  // untouched
    // GTK keeps files of its own about choosers in the home folder, and may be asked to make a
    // folder there.
    const mode_t maskBefore_ = umask(StartMask());
};

// A folder is not asked about: it cannot be replaced, which is told later.
bool MayReplace(GtkWidget* parent, const std::string& path) {
    struct stat info = {};
    if (::stat(path.c_str(), &info) != 0 || S_ISDIR(info.st_mode))
        return true;
    const std::string question = "The file " + path + " exists. Do you want to replace it?";
    return MessageBoxRun(parent, GTK_MESSAGE_QUESTION, GTK_BUTTONS_YES_NO, "Lectora",
                         question.c_str(), "") == GTK_RESPONSE_YES;
}

bool Accept(const std::string& file, std::string& path, std::string& folder) {
    path = file;
    folder = FolderOfPath(file);
    return true;
}

}  // namespace

bool LFile::BrowseReadFilePath(GtkWidget* parent, std::string& path, const char* title,
                               std::string& folder, const char* filters) {
    Chooser chooser(parent, title, GTK_FILE_CHOOSER_ACTION_OPEN, "gtk-open");
    chooser.StartIn(folder);
    if (!path.empty())
        gtk_file_chooser_set_filename(chooser.Self(), path.c_str());
    chooser.AddFilters(filters);
    while (chooser.Run()) {
        if (chooser.HasChosenExistingFile())
            return Accept(chooser.File(), path, folder);
        const std::string text =
            "The File " + chooser.File() + " is not valid. Please choose another file.";
        MessageBoxRun(chooser.Widget(), GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Lectora", text.c_str(),
                      "");
    }
    path.clear();
    return false;
}

bool LFile::BrowseSaveFilePath(GtkWidget* parent, std::string& path, const char* title,
                               std::string& folder, const char* filters, int& filter) {
    Chooser chooser(parent, title, GTK_FILE_CHOOSER_ACTION_SAVE, "gtk-save");
    chooser.StartIn(folder);
    chooser.SuggestName(FileOfPath(path));
    chooser.AddFilters(filters);
    chooser.ChooseFilter(filter);
    while (chooser.Run()) {
        std::string file = chooser.File();
        const bool lacksExtension = EndingOfPath(file).empty();
        if (lacksExtension)
            file += chooser.ExtensionOfFilter();
        // The chooser itself has asked about the name as it was typed.
        if (file.empty() || (lacksExtension && !MayReplace(chooser.Widget(), file)))
            continue;
        filter = chooser.ChosenFilter();
        return Accept(file, path, folder);
    }
    path.clear();
    return false;
}

bool LFile::BrowseMultipleReadFiles(GtkWidget* parent, BrowseMultiplePaths& paths,
                                    const char* title, std::string& folder, const char* filters) {
    Chooser chooser(parent, title, GTK_FILE_CHOOSER_ACTION_OPEN, "gtk-open");
    chooser.StartIn(folder);
    chooser.AddFilters(filters);
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
        folder = FolderOfPath(paths.front());
    return !paths.empty();
}

bool LFile::BrowseFolder(GtkWidget* parent, std::string& path, const char* title) {
    Chooser chooser(parent, title, GTK_FILE_CHOOSER_ACTION_SELECT_FOLDER, "gtk-open");
    chooser.StartIn(path);
    path = chooser.Run() ? chooser.File() : "";
    return !path.empty();
}
