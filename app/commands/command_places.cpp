#include "app/command_places.h"

#include <gdk/gdkkeysyms.h>

#include <string>

#include "app/commands.h"
#include "gui/gtk_children.h"
#include "gui/icon_numbers.h"

namespace {

constexpr LKeyToCommandMap kKeyMap[] = {
    {kKeyControl | GDK_B, kUpdateFromSelection},
    {kKeyControl | GDK_O, kLoadFile},
    {kKeyControl | kKeyShift | GDK_R, kReadCurrent},
    {kKeyControl | kKeyShift | GDK_B, kReadFromSelection},
    {kKeyControl | kKeyShift | GDK_O, kReadFromFile},
    {kKeyControl | kKeyAlt | GDK_V, kSaveCurrent},
    {kKeyControl | kKeyAlt | GDK_B, kSaveFromSelection},
    {kKeyControl | kKeyAlt | GDK_O, kSaveFromFile},
    {kKeyControl | GDK_Z, kUndo},
    {kKeyControl | kKeyShift | GDK_Z, kRedo},
    {kKeyControl | GDK_Y, kRedo},
    {kKeyControl | GDK_F, kFind},
    {GDK_F3, kFindNext},
    {kKeyControl | GDK_plus, kLargerText},
    {kKeyControl | kKeyShift | GDK_plus, kLargerText},  // where it is above another sign
    {kKeyControl | GDK_equal, kLargerText},
    {kKeyControl | GDK_KP_Add, kLargerText},
    {kKeyControl | GDK_minus, kSmallerText},
    {kKeyControl | GDK_KP_Subtract, kSmallerText},
    {kKeyControl | GDK_0, kNormalText},
    {kKeyControl | GDK_KP_0, kNormalText},
};

constexpr LMenuItem kSeparator{0, nullptr};
constexpr LMenuItem kEnd{-1, nullptr};

constexpr char kRecentFilesTitle[] = "Recent &Files";

constexpr LMenuItem kMenuBar[] = {
    {-1, "Lectora"},
    {-1, "&Read Aloud"},
    {kReadCurrent, "Read Current&Text"},
    kSeparator,
    {kReadFromFileMenu, "Read from fil&e"},
    {kReadFromSelection, "Read from Clipboar&d"},
    kEnd,
    {-1, "&Save as Speech"},
    {kSaveCurrent, "Save Current &Text"},
    kSeparator,
    {kSaveFromFileMenu, "Save f&rom file"},
    {kSaveFromSelection, "Save from Cli&pboard"},
    kEnd,
    {-1, "&Update Text"},
    {kUpdateFromSelection, "Update From Clip&board"},
    kSeparator,
    {kLoadFile, "&Load Text From File"},
    kEnd,
    {-1, kRecentFilesTitle},
    kEnd,
    kSeparator,
    {-kShowCommandBar, "Show Command Bar"},
    kEnd,
    {-1, "&Edit"},
    {kUndo, "&Undo"},
    {kRedo, "&Redo"},
    kSeparator,
    {kFind, "&Find..."},
    {kFindNext, "Find &Next"},
    kSeparator,
    {kLargerText, "&Larger Text"},
    {kSmallerText, "&Smaller Text"},
    {kNormalText, "Normal &Text Size"},
    kEnd,
    {-1, "&Tools"},
    {kOptions, "&Options..."},
    kEnd,
};

constexpr LToolBar::ToolBarItem kToolBar[] = {
    {kReadCurrent, kReadAloudIcon, "Read Aloud", "Read text aloud (Ctrl+Shift+R)",
     LToolBar::ToolBarItem::kDropDown},
    {kSaveCurrent, kSaveSpeechIcon, "Save Speech", "Save the text to an audio file (Ctrl+Alt+V)",
     LToolBar::ToolBarItem::kDropDown},
    // The key is that of updating everything from the program in front, once that is offered.
    {kUpdateFromSelection, kUpdateTextIcon, "Update Text", "Update text (Ctrl+E)",
     LToolBar::ToolBarItem::kDropDown},
    {0, 0, "", "", LToolBar::ToolBarItem::kSeparator},
    {kOptions, kOptionsIcon, "Options", "Change settings and hotkey preferences",
     LToolBar::ToolBarItem::kButton},
};

constexpr LMenuItem kReadMenu[] = {
    {kReadCurrent, "Read Current&Text"},
    kSeparator,
    {kReadFromFileMenu, "Read from fil&e"},
    {kReadFromSelection, "Read from Clipboar&d"},
};
constexpr LMenuItem kSaveMenu[] = {
    {kSaveCurrent, "Save Current &Text"},
    kSeparator,
    {kSaveFromFileMenu, "Save f&rom file"},
    {kSaveFromSelection, "Save from Cli&pboard"},
};
constexpr LMenuItem kUpdateMenu[] = {
    {kUpdateFromSelection, "Update From Clip&board"},
    kSeparator,
    {kLoadFile, "&Load Text From File"},
};
constexpr struct {
    int command;
    int toolBarItem;
    LMenuItems items;
} kDropDowns[] = {
    {kReadDropDown, kReadCurrent, kReadMenu},
    {kSaveDropDown, kSaveCurrent, kSaveMenu},
    {kUpdateDropDown, kUpdateFromSelection, kUpdateMenu},
};

constexpr LMenuItem kTrayMenu[] = {
    {kOpenWindow, "Open Lectora"},
    kSeparator,
    {kReadFromSelection, "Read from Clipboard"},
    kSeparator,
    {kSaveFromSelection, "Save from Clipboard"},
    kSeparator,
    {kCommandClose, "Close to Tray"},
    {kCommandExit, "Exit (Hot Keys Off)"},
};

struct BarItem {
    const char* text;  // with command 0: a topic, and the number of its image
    const char* tooltip;
    int command;
    int image;
};
constexpr BarItem kBarItems[] = {
    {"Read Aloud", nullptr, 0, kReadAloudIcon},
    {"Read current text", "Read aloud the Lectora window (Ctrl+Shift+R)", kReadCurrent, 0},
    {"Read from a file", "Read the text from the file (Ctrl+Shift+O)", kReadFromFile, 0},
    {"Read from clipboard",
     "Read aloud the last text cut or copied to the clipboard (Ctrl+Shift+B)", kReadFromSelection,
     0},
    {"Save as Speech", nullptr, 0, kSaveSpeechIcon},
    {"Save current text", "Save text in the Lectora window to file (Ctrl+Alt+V)", kSaveCurrent, 0},
    {"Save speech from file", "Saves the text from the file (Ctrl+Alt+O)", kSaveFromFile, 0},
    {"Save from clipboard", "Save the last text cut or copied to the clipboard (Ctrl+Alt+B)",
     kSaveFromSelection, 0},
    {"Update Text", nullptr, 0, kUpdateTextIcon},
    {"Update text from file", "Load contents from text file to Lectora window (Ctrl+O)", kLoadFile,
     0},
    {"Update from clipboard", "Copy text from Clipboard and paste to Lectora window (Ctrl+B)",
     kUpdateFromSelection, 0},
    {"Help", nullptr, 0, kHelpIcon},
    {"Display Help Contents", "Open the help documentation (F1)", kCommandHelp, 0},
};

constexpr int kOfText[] = {kReadCurrent, kSaveCurrent};
constexpr int kOfSelection[] = {kReadFromSelection, kSaveFromSelection, kUpdateFromSelection};

// Labels that speak of the program in front; "%s" is its name.
struct WindowLabel {
    int command;
    const char* text;
};
constexpr WindowLabel kBarLabels[] = {
    {kReadAllOfWindow, "Read all from %s"},
    {kSaveAllOfWindow, "Save all from %s"},
    {kUpdateAllOfWindow, "Update all from %s"},
};
constexpr WindowLabel kMenuLabels[] = {
    {kUpdateSelectionOfWindow, "Update selection from %s\tCtrl+S"},
    {kUpdateAllOfWindow, "Update all from %s\tCtrl+E"},
    {kReadSelectionOfWindow, "Read selection from %s\tCtrl+Shift+S"},
    {kReadAllOfWindow, "Read all from %s\tCtrl+Shift+E"},
    {kSaveSelectionOfWindow, "Save selection from %s\tCtrl+Alt+S"},
    {kSaveAllOfWindow, "Save all from %s\tCtrl+Alt+E"},
};

std::string RecentFileText(std::size_t number, const std::string& path) {
    std::string text = "&" + std::to_string(number + 1) + " ";
    for (const char byte : path) {
        text += byte;
        if (byte == '&')
            text += byte;
    }
    return text;
}

std::string Named(const char* label, const char* program) {
    std::string text = label;
    return text.replace(text.find("%s"), 2, program);
}

}  // namespace

LKeyMap MainKeyMap() {
    return kKeyMap;
}

CommandPlaces::CommandPlaces(LMainWindow& window)
    : window_(window), dropDown_(window), trayMenu_(window) {}

void CommandPlaces::CreateMenus() {
    LMenuContainer::SetMenu(window_, kMenuBar, kKeyMap);
    window_.SetToolBar(window_, kToolBar);
    for (const auto& each : kDropDowns)
        window_.HandleToolBarItemDropdown(each.toolBarItem, each.command);
    window_.AddToolboxAndHelp();
}

GtkWidget* CommandPlaces::NewCommandBar() {
    GtkWidget* bar = bar_.Create([this](int command) { window_.WMCommand(command); });
    int topic = -1;
    for (const BarItem& item : kBarItems) {
        if (item.command == 0)
            topic = bar_.AddTopic(item.text, item.image);
        else
            bar_.AddItem(topic, item.text, item.tooltip, item.command);
    }
    return bar;
}

void CommandPlaces::CheckCommandBar(bool shown) {
    window_.CheckMenuItem(kShowCommandBar, shown);
}

void CommandPlaces::Enable(CommandState state) {
    state_ = state;
    for (const int command : kOfText) {
        window_.EnableMenuItem(command, state.hasText);
        window_.EnableToolBarItem(command, state.hasText);
        bar_.ShowItem(command, state.hasText);
    }
    window_.EnableMenuItem(kFind, state.hasText);
    window_.EnableMenuItem(kFindNext, state.hasText);
    window_.EnableMenuItem(kUndo, state.canUndo);
    window_.EnableMenuItem(kRedo, state.canRedo);
    for (const int command : kOfSelection) {
        window_.EnableMenuItem(command, state.hasSelection);
        bar_.ShowItem(command, state.hasSelection);
    }
}

void CommandPlaces::ListRecentFiles(const std::vector<std::string>& paths) {
    auto* bar = static_cast<GtkWidget*>(g_object_get_data(G_OBJECT(window_.Widget()), "menu_bar"));
    GtkWidget* menu = gtk_menu_item_get_submenu(GTK_MENU_ITEM(LGtkChildren(bar).First()));
    const auto position =
        static_cast<std::ptrdiff_t>(LMenuControls::CheckSubMenu(menu, kRecentFilesTitle));
    const LGtkChildren items(menu);
    GtkWidget* title = *(items.begin() + position);
    GtkWidget* list = gtk_menu_item_get_submenu(GTK_MENU_ITEM(title));
    for (GtkWidget* old : LGtkChildren(list))
        gtk_widget_destroy(old);
    for (std::size_t number = 0; number < paths.size(); ++number) {
        const std::string text = RecentFileText(number, paths[number]);
        const LMenuItem row[] = {{static_cast<std::int16_t>(kRecentFile + number), text.c_str()}};
        std::size_t index = 0;
        LMenuAdd(window_, list, row, index, {});
    }
    gtk_widget_show_all(list);
    gtk_widget_set_sensitive(title, !paths.empty());
}

void CommandPlaces::DropDown(int command) {
    for (const auto& each : kDropDowns) {
        if (each.command != command)
            continue;
        dropDown_.SetMenu(each.items);
        for (const int ofText : kOfText)
            dropDown_.EnableMenuItem(ofText, state_.hasText);
        for (const int ofSelection : kOfSelection)
            dropDown_.EnableMenuItem(ofSelection, state_.hasSelection);
        dropDown_.PopupUnder(window_.GetToolItemFromID(each.toolBarItem));
    }
}

void CommandPlaces::PopupTrayMenu() {
    trayMenu_.SetMenu(kTrayMenu);
    trayMenu_.Popup();
}

void CommandPlaces::NameActiveWindow(const char* program) {
    for (const WindowLabel& label : kBarLabels)
        bar_.SetItemText(label.command, Named(label.text, program).c_str());
    for (const WindowLabel& label : kMenuLabels) {
        GtkWidget* item = window_.GetControlByID(label.command);
        if (GTK_IS_MENU_ITEM(item))
            gtk_menu_item_set_label(GTK_MENU_ITEM(item), Named(label.text, program).c_str());
    }
}
