#include "app/commands/command_places.h"

#include <algorithm>

#include "app/commands/command_numbers.h"
#include "gui/gtk_children.h"
#include "gui/icon_numbers.h"
#include "gui/mnemonic.h"

namespace {

using WhenOff = LAction::WhenOff;

constexpr LMenuItem kSeparator{0, nullptr};
constexpr LMenuItem kEndOfPlaces{-1, nullptr};

// A row with the label of its command.
constexpr LMenuItem Item(std::int16_t command) {
    return {command, ""};
}

constexpr char kRecentFilesTitle[] = "Recent &Files";

constexpr LMenuItem kMenuBar[] = {
    {-1, "Lectora"},
    {-1, "&Read Aloud"},
    Item(kReadCurrent),
    kSeparator,
    Item(kReadFromFileMenu),
    Item(kReadFromSelection),
    kEndOfPlaces,
    {-1, "&Save as Speech"},
    Item(kSaveCurrent),
    kSeparator,
    Item(kSaveFromFileMenu),
    Item(kSaveFromSelection),
    kSeparator,
    Item(kSaveAsAudiobook),
    kEndOfPlaces,
    {-1, "&Update Text"},
    Item(kUpdateFromSelection),
    kSeparator,
    Item(kLoadFile),
    kEndOfPlaces,
    {-1, kRecentFilesTitle},
    kEndOfPlaces,
    Item(kWholePage),
    Item(kSaveTextAs),
    kSeparator,
    Item(-kShowCommandBar),
    Item(-kShowContents),
    kEndOfPlaces,
    {-1, "&Edit"},
    Item(kUndo),
    Item(kRedo),
    kSeparator,
    Item(kFind),
    Item(kFindNext),
    kSeparator,
    Item(kGoToContents),
    Item(kGoToPage),
    kSeparator,
    Item(kReadFromHere),
    kSeparator,
    Item(kSayDifferently),
    kSeparator,
    Item(kLargerText),
    Item(kSmallerText),
    Item(kNormalText),
    kEndOfPlaces,
    {-1, "&Playback"},
    Item(kPlayOrPause),
    Item(kStopReading),
    kSeparator,
    Item(kPreviousSentence),
    Item(kRepeatSentence),
    Item(kNextSentence),
    kSeparator,
    Item(kPreviousParagraph),
    Item(kNextParagraph),
    Item(kPreviousHeading),
    Item(kNextHeading),
    Item(kPreviousChapter),
    Item(kNextChapter),
    kSeparator,
    Item(kFaster),
    Item(kSlower),
    kSeparator,
    {-1, "Sleep &Timer"},
    Item(-kSleepNever),
    Item(-kSleepIn15),
    Item(-kSleepIn30),
    Item(-kSleepIn60),
    Item(-kSleepAtChapter),
    kSeparator,
    Item(kSleepNext),
    kEndOfPlaces,
    kSeparator,
    Item(kSetBookmark),
    Item(kBookmarks),
    kSeparator,
    Item(kReadFileLater),
    Item(kReadNextFile),
    Item(kWaitingFiles),
    kEndOfPlaces,
    {-1, "&Tools"},
    Item(kChooseVoice),
    Item(-kVoiceByLanguage),
    Item(kOptions),
    kEndOfPlaces,
};

// Shorter than elsewhere, for the room below a picture; null: as elsewhere.
struct ToolItem {
    int command;  // 0: a line between
    const char* name;
    const char* tip;
    LToolBar::ToolBarItem::Kind kind;
};
constexpr ToolItem kToolBar[] = {
    {kReadCurrent, "Read Aloud", "Read text aloud", LToolBar::ToolBarItem::kDropDown},
    {kSaveCurrent, "Save Speech", "Save the text to an audio file",
     LToolBar::ToolBarItem::kDropDown},
    {kUpdateFromSelection, "Update Text", "Update text", LToolBar::ToolBarItem::kDropDown},
    {0, nullptr, nullptr, LToolBar::ToolBarItem::kSeparator},
    {kOptions, nullptr, nullptr, LToolBar::ToolBarItem::kButton},
};

constexpr LMenuItem kReadMenu[] = {
    Item(kReadCurrent),
    kSeparator,
    Item(kReadFromFileMenu),
    Item(kReadFromSelection),
};
constexpr LMenuItem kSaveMenu[] = {
    Item(kSaveCurrent),       kSeparator, Item(kSaveFromFileMenu),
    Item(kSaveFromSelection), kSeparator, Item(kSaveAsAudiobook),
};
constexpr LMenuItem kUpdateMenu[] = {
    Item(kUpdateFromSelection),
    kSeparator,
    Item(kLoadFile),
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
    Item(kOpenWindow),
    kSeparator,
    Item(kReadFromSelection),
    kSeparator,
    Item(kSaveFromSelection),
    kSeparator,
    {kCommandClose, "Close to Tray"},
    {kCommandExit, "Exit (Hot Keys Off)"},
};

// Above the others while something is read.
constexpr LMenuItem kTrayReading[] = {
    Item(kPlayOrPause),      Item(kStopReading),  kSeparator,
    Item(kPreviousSentence), Item(kNextSentence), kSeparator,
};

struct BarItem {
    int command;
    const char* topic = nullptr;  // with command 0, and its picture
    int image = 0;
};
constexpr BarItem kBarItems[] = {
    {0, "Read Aloud", kReadAloudIcon},
    {kReadCurrent},
    {kReadFromFile},
    {kReadFromSelection},
    {0, "Save as Speech", kSaveSpeechIcon},
    {kSaveCurrent},
    {kSaveFromFile},
    {kSaveFromSelection},
    {0, "Update Text", kUpdateTextIcon},
    {kLoadFile},
    {kUpdateFromSelection},
    {0, "Help", kHelpIcon},
    {kCommandHelp},
};

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

std::string RecentFileText(std::size_t number, const std::string& label) {
    std::string text = "&" + std::to_string(number + 1) + " ";
    for (const char byte : label) {
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

int CommandOf(const LMenuItem& item) {
    return item.command < -1 ? -item.command : item.command;
}

// A menu's table with the labels of the commands filled in.
std::vector<LMenuItem> Labelled(LMenuItems items, const CommandSet& commands) {
    std::vector<LMenuItem> rows(items.begin(), items.end());
    for (LMenuItem& row : rows) {
        if (row.text != nullptr && *row.text == '\0')
            row.text = commands.Facts(CommandOf(row)).label;
    }
    return rows;
}

}  // namespace

CommandPlaces::CommandPlaces(LMainWindow& window, CommandSet& commands)
    : window_(window), commands_(commands), dropDown_(window), trayMenu_(window) {
    CheckActiveWindowChange();
}

// X does not tell a program which window was in front before its own; where a desktop does, this is
// the place to ask it and to pass the name on to EvActiveWindowChanged.
void CommandPlaces::CheckActiveWindowChange() {}

void CommandPlaces::AddCommands() {
    for (const auto& each : kDropDowns)
        commands_.AddRange(each.command, each.command, [this](int arrow) { DropDown(arrow); });
}

void CommandPlaces::CreateMenus() {
    LMenuContainer::SetMenu(window_, Labelled(kMenuBar, commands_), commands_.Keys());
    for (const LMenuItem& item : kMenuBar) {
        if (item.text != nullptr && *item.text == '\0')
            commands_.AddProxy(CommandOf(item), window_.GetControlByID(CommandOf(item)),
                               WhenOff::kGrey);
    }
    CreateToolBar();
}

void CommandPlaces::CreateToolBar() {
    std::vector<LToolBar::ToolBarItem> rows;
    std::vector<std::string> tips;  // which the rows point into
    tips.reserve(std::size(kToolBar));
    for (const ToolItem& item : kToolBar) {
        const CommandFacts& facts = commands_.Facts(item.command);
        tips.push_back(TipWithKey(item.tip != nullptr ? item.tip : facts.tip, facts));
        rows.push_back({item.command, facts.icon, item.name != nullptr ? item.name : facts.name,
                        tips.back().c_str(), item.kind});
    }
    window_.SetToolBar(window_, rows);
    for (const ToolItem& item : kToolBar)
        commands_.AddProxy(item.command, window_.GetToolItemFromID(item.command), WhenOff::kGrey);
    for (const auto& each : kDropDowns)
        window_.HandleToolBarItemDropdown(each.toolBarItem, each.command);
    window_.AddToolboxAndHelp();
}

GtkWidget* CommandPlaces::NewCommandBar() {
    GtkWidget* bar = bar_.Create([this](int command) { window_.WMCommand(command); });
    int topic = -1;
    for (const BarItem& item : kBarItems) {
        if (item.command == 0) {
            topic = bar_.AddTopic(item.topic, item.image);
            continue;
        }
        GtkWidget* button = bar_.AddItem(topic, commands_.Facts(item.command).name,
                                         commands_.Tip(item.command).c_str(), item.command);
        commands_.AddProxy(item.command, button, WhenOff::kHidden);
    }
    return bar;
}

void CommandPlaces::ListRecentFiles(const std::vector<std::string>& labels) {
    auto* bar = static_cast<GtkWidget*>(g_object_get_data(G_OBJECT(window_.Widget()), "menu_bar"));
    GtkWidget* menu = gtk_menu_item_get_submenu(GTK_MENU_ITEM(LGtkChildren(bar).First()));
    const auto position =
        static_cast<std::ptrdiff_t>(LMenuControls::CheckSubMenu(menu, kRecentFilesTitle));
    const LGtkChildren items(menu);
    GtkWidget* title = *(items.begin() + position);
    GtkWidget* list = gtk_menu_item_get_submenu(GTK_MENU_ITEM(title));
    for (GtkWidget* old : LGtkChildren(list))
        gtk_widget_destroy(old);
    for (std::size_t number = 0; number < labels.size(); ++number) {
        const std::string text = RecentFileText(number, labels[number]);
        const LMenuItem row[] = {{static_cast<std::int16_t>(kRecentFile + number), text.c_str()}};
        std::size_t index = 0;
        LMenuAdd(window_, list, row, index, {});
    }
    gtk_widget_show_all(list);
    gtk_widget_set_sensitive(title, !labels.empty());
}

void CommandPlaces::SetPopup(LWindow::PopupMenu& menu, LMenuItems items) {
    menu.SetMenu(items);
    for (const LMenuItem& item : items) {
        int position = 0;
        GtkWidget* widget = LMenuControls::_GetMenuItem(menu.Widget(), item.command, position);
        commands_.AddProxy(item.command, widget, WhenOff::kGrey);
    }
}

void CommandPlaces::DropDown(int command) {
    for (const auto& each : kDropDowns) {
        if (each.command != command)
            continue;
        SetPopup(dropDown_, Labelled(each.items, commands_));
        dropDown_.PopupUnder(window_.GetToolItemFromID(each.toolBarItem));
    }
}

void CommandPlaces::AddToTextMenu(GtkWidget* menu) {
    static constexpr LMenuItem kItems[] = {kSeparator, Item(kSayDifferently)};
    std::size_t index = 0;
    LMenuAdd(window_, menu, Labelled(kItems, commands_), index, {});
    gtk_widget_show_all(menu);
    if (!commands_.CanAct(kSayDifferently))
        for (GtkWidget* item : LGtkChildren(menu))
            if (item == window_.GetControlByID(kSayDifferently))
                gtk_widget_set_sensitive(item, FALSE);
}

void CommandPlaces::EvNotifyIconContextMenu() {
    std::vector<LMenuItem> rows = Labelled(kTrayMenu, commands_);
    if (commands_.CanAct(kStopReading)) {
        const std::vector<LMenuItem> reading = Labelled(kTrayReading, commands_);
        rows.insert(rows.begin(), reading.begin(), reading.end());
    }
    std::vector<std::string> texts;  // which the rows point into
    texts.reserve(rows.size());
    for (LMenuItem& row : rows) {
        if (row.text == nullptr)
            continue;
        texts.push_back(WithoutMnemonic(row.text));
        row.text = texts.back().c_str();
    }
    SetPopup(trayMenu_, rows);
    trayMenu_.Popup();
}

void CommandPlaces::EvActiveWindowChanged(const char* program) {
    for (const WindowLabel& label : kBarLabels)
        bar_.SetItemText(label.command, Named(label.text, program).c_str());
    for (const WindowLabel& label : kMenuLabels) {
        GtkWidget* item = window_.GetControlByID(label.command);
        if (GTK_IS_MENU_ITEM(item))
            gtk_menu_item_set_label(GTK_MENU_ITEM(item), Named(label.text, program).c_str());
    }
}
