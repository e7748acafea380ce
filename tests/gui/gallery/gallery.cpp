// Shows every control, and the dialogs that no window of the program opens, and takes pictures.
//
//     gui_gallery FOLDER THEME FONT      e.g. "out/light" "Adwaita" "Sans 10"; "" for GTK's own
//     theme
//     gui_gallery                        one window after the other, until each is closed
//
// Fails when GTK prints a warning and when something has less room than it asks for.
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "formats/dialogs/aiff_settings_dialog.h"
#include "formats/dialogs/au_settings_dialog.h"
#include "formats/dialogs/mp3_encode_dialog.h"
#include "formats/dialogs/raw_settings_dialog.h"
#include "gui/icon_numbers.h"
#include "gui/key_dialog.h"
#include "gui/property_sheet.h"
#include "gui/splash_screen.h"
#include "gui/status_bar.h"
#include "gui/status_window.h"
#include "gui/tool_bar.h"
#include "gui/widgets/explorer_bar.h"
#include "speech/dialogs/tts_input_dialog.h"
#include "speech/festival_voices.h"
#include "tests/gui/gui_fixtures.h"

namespace {

std::string folder;  // empty: a person or a screen reader looks, no pictures
bool allIsWell = true;

// The one complaint that is GTK's own to make is about a theme's engine that is not installed.
void Complain(const char* domain, GLogLevelFlags level, const char* message, gpointer) {
    g_log_default_handler(domain, level, message, nullptr);
    constexpr auto kBad =
        GLogLevelFlags(G_LOG_LEVEL_WARNING | G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_ERROR);
    if ((level & kBad) != 0 && std::strstr(message, "Unable to locate theme engine") == nullptr)
        allIsWell = false;
}

// What got less room than it asked for is cut off on the screen. What scrolls needs none, and
// GTK's own path bar gives its arrows less.
void CheckRoom(GtkWidget* widget, gpointer picture) {
    if (!gtk_widget_get_mapped(widget))
        return;
    GtkRequisition wanted;
    gtk_widget_get_child_requisition(widget, &wanted);
    const GtkAllocation& place = widget->allocation;
    if (place.width < wanted.width || place.height < wanted.height) {
        std::fprintf(stderr, "%s: %s \"%s\" wants %d x %d, has %d x %d\n",
                     static_cast<const char*>(picture), G_OBJECT_TYPE_NAME(widget),
                     GTK_IS_LABEL(widget) ? gtk_label_get_text(GTK_LABEL(widget)) : "",
                     wanted.width, wanted.height, place.width, place.height);
        allIsWell = false;
    }
    const bool scrolls =
        GTK_IS_SCROLLED_WINDOW(widget) || g_strcmp0(G_OBJECT_TYPE_NAME(widget), "GtkPathBar") == 0;
    if (GTK_IS_CONTAINER(widget) && !scrolls)
        gtk_container_foreach(GTK_CONTAINER(widget), CheckRoom, picture);
}

// The one that is open; there is never a second.
GtkWidget* ContentWindow() {
    return FindWindow([](GtkWidget* window) {
        return gtk_widget_get_mapped(window) &&
               gtk_window_get_window_type(GTK_WINDOW(window)) == GTK_WINDOW_TOPLEVEL;
    });
}

// The window with its frame, and what has popped up over it, as they are on the screen.
void TakePicture(const char* name) {
    // Placing, drawing and theme pictures take some turns of the main loop.
    PumpUntil([] { return false; }, 400);
    GtkWidget* window = ContentWindow();
    if (window == nullptr)
        return;
    CheckRoom(window, const_cast<char*>(name));
    GdkRectangle frame;
    gdk_window_get_frame_extents(gtk_widget_get_window(window), &frame);
    GdkWindow* root = gdk_get_default_root_window();
    int width = 0;
    int height = 0;
    gdk_drawable_get_size(root, &width, &height);
    if (frame.width > width || frame.height > height) {
        std::fprintf(stderr, "%s: %d x %d is larger than the screen\n", name, frame.width,
                     frame.height);
        allIsWell = false;
    }
    const GdkRectangle screen{0, 0, width, height};
    GdkRectangle seen;
    gdk_rectangle_intersect(&frame, &screen, &seen);
    const auto picture = GObjectRef<GdkPixbuf>::Adopt(gdk_pixbuf_get_from_drawable(
        nullptr, root, nullptr, seen.x, seen.y, 0, 0, seen.width, seen.height));
    const std::string file = folder + "/" + name + ".png";
    gdk_pixbuf_save(picture.Get(), file.c_str(), "png", nullptr, nullptr);
}

// Takes the window's picture, or lets a person look until it is closed.
void Present(const LWindow& window, const char* name) {
    if (!folder.empty())
        TakePicture(name);
    while (folder.empty() && window.Widget() != nullptr && gtk_widget_get_mapped(window.Widget()))
        gtk_main_iteration();
}

void GenerateControls(LDialogGenContext& c) {
    c.AddStaticTitle(1, "Every control of the builder");
    c.AddInput(10, "Name", 220);
    c.AddInputPassword(12, "Password");
    c.AddInputUpDown(14, "Copies");
    c.AddPullDownList(16, "Voice", 220);
    c.AddComboBox(18, "Device");
    c.AddDateTime(20, "Remind me");
    c.AddScrollBar(22, "Speed");
    c.AddDBEdit(24, "Volume");
    c.AddDBDisplay(26);
    c.AddHorizontalLine(27, "Progress");
    c.AddProgressBar(28);
    c.AddEdit(29, "Several lines of text\nin a field of their own", 60, "Notes");
    c.AddHyperLink(31, "Quillon on the web", "http://quillon.example/");
    c.AddGroup(32, "How to save");
    c.AddRadioButtonGroup(33, "Prompt for format settings");
    c.AddRadioButton(34, "Use these default format settings ");
    c.AddCheckBox(35, "Tell me when it is done");
    c.StartHBox();
    c.AddButton(36, "Add...");
    c.AddButton(37, "Change...");
    c.AddButton(38, "Remove...");
    c.EndHBox();
    c.GroupEnd();
    c.AddSpecialOkCancelHelp(39, "Defaults", nullptr, false, false, false);
}

void FillControls(LDialog& d) {
    d.TextPromptSet(10, "Your name");
    d.SetPasswordText(12, "secret");
    d.UDInit(14, 1, 99, 3);
    d.PDLAddString(16, "kal_diphone");
    d.PDLSetCurSel(16, 0);
    d.PDLSetText(18, "default");
    d.DTPInitDateTimeLocal(20);
    d.DTPSetDateTime(20, LDateTime::FromLocal(2026, 11, 21, 9, 30, 0));
    d.SBSetRange(22, 0, 100, 10);
    d.SBSetPos(22, 40);
    d.LDBEditInit(24);
    d.DBEditSetLevel(24, LDB(-6));
    d.DBDisplaySetLevels(26, LDBMC(2, LDB(-9)));
    d.PBSetProgress(28, 0.4);
    d.PBSetText(28, "40 %");
}

void GenerateLists(LDialogGenContext& c) {
    c.SetWidth(420);
    c.AddGroup(1, "System Wide HotKeys");
    c.AddList(10, 128);
    c.GroupEnd();
    c.AddEditReadOnly(31, "", 110);
    c.AddOkCancelHelp("Go Back", false, true, false);
}

void FillLists(LDialog& d, LStatusWindow& log) {
    static constexpr LListColumn kColumns[] = {{"Key", 35, LListSort::kText},
                                               {"Command", 65, LListSort::kText}};
    static constexpr int kIcons[] = {kReadButtonIcon, kSaveButtonIcon};
    d.LVSetStyleCheck(10);
    d.LVSetImages(10, kIcons);
    d.LVInit(10, {LListColumns::kPercent, kColumns});
    const char* rows[][2] = {{"Ctrl+Alt+R", "Read text from clipboard"},
                             {"Ctrl+Alt+S", "Save text from clipboard"},
                             {"F5", "Copy text from clipboard"}};
    for (const auto& row : rows) {
        const int at = d.LVImageAddString(10, row[0][0] == 'F' ? 1 : 0, row[0]);
        d.LVSetColumnString(10, at, 1, row[1]);
    }
    d.LVSetCheck(10, 0, true);
    d.LVSetCurSel(10, 1);
    d.LVSetRowColor(10, 2, GdkColor{0, 0xC000, 0x2000, 0x2000});
    log.Init(d, 30);
    log.DisplayStatus("Lectora started", kLogPlain);
    log.DisplayStatus("3 voices found", kLogInformation);
    log.DisplayStatus("The sound card is busy", kLogWarning);
    log.DisplayStatus("The file could not be written", kLogError);
}

struct MainLike : LKeyDialog, LStatusBar, LToolBar {
    GtkWidget* StatusBar() { return CreateStatusBar(); }
    void Command(int command) override {
        commands += " " + std::to_string(command);
        SetStatusText(commands.c_str());
    }
    std::string commands = "Commands:";
};

constexpr LMenuItem kMenu[] = {
    {-1, "Lectora"},
    {-1, "&Read Aloud"},
    {1011, "Read Current&Text"},
    {0, nullptr},
    {1008, "Read from fil&e"},
    {-1, nullptr},
    {1012, "Save Current &Text"},
    {-2001, "Show Command Bar"},
    {-1, nullptr},
    {-1, "&Tools"},
    {1021, "&Options..."},
};
constexpr LKeyToCommandMap kKeys[] = {{kKeyControl | kKeyShift | 'R', 1011},
                                      {kKeyControl | kKeyAlt | 'V', 1012}};
constexpr LToolBar::ToolBarItem kTools[] = {
    {1011, kReadAloudIcon, "Read Aloud", "Read text aloud (Ctrl+Shift+R)",
     LToolBar::ToolBarItem::kDropDown},
    {1012, kSaveSpeechIcon, "Save Speech", "Save the text to an audio file",
     LToolBar::ToolBarItem::kDropDown},
    {0, 0, nullptr, nullptr, LToolBar::ToolBarItem::kSeparator},
    {1021, kOptionsIcon, "Options", "Change settings", LToolBar::ToolBarItem::kButton},
};

void ShowMainLike() {
    MainLike window;
    window.Open(nullptr,
                {"Menus, tool bar, command bar", true,
                 [](LDialogGenContext& c) {
                     c.StartHBox();
                     c.AddSpanFull(gtk_toggle_button_new(), 510);
                     c.AddSpanFull(gtk_toggle_button_new(), 511);
                     c.AddSpanFull(gtk_toggle_button_new(), 512);
                     c.EndHBox();
                     c.AddOkCancelHelp(true, true, true);
                 }},
                false);
    LExplorerBar commands;
    GtkWidget* content = gtk_dialog_get_content_area(GTK_DIALOG(window.Widget()));
    GtkWidget* bar = commands.Create([](int) {});
    commands.AddItem(commands.AddTopic("Read Aloud"), "Read current text", "Reads it", 1011);
    commands.AddItem(commands.AddTopic("Save as Speech"), "Save current text", "Saves it", 1012);
    commands.FoldTopic(commands.AddTopic("Tools", kOptionsIcon), true);
    gtk_widget_set_size_request(bar, 180, 160);
    gtk_box_pack_start(GTK_BOX(content), bar, TRUE, TRUE, 0);
    LMenuContainer::SetMenu(window, kMenu, kKeys);
    window.AddStandardMenuItems(true);
    window.HandleInitMenu(7);
    window.SetToolBar(window, kTools);
    window.AddToolboxAndHelp();
    gtk_box_pack_end(GTK_BOX(content), window.StatusBar(), FALSE, FALSE, 0);
    window.SetStatusText("Lectora v 1.05");
    window.CoolButtonInit(510, kReadButtonIcon, "Read Aloud");
    window.CoolButtonInitDropDown(511, kSaveButtonIcon, "Save as Speech", 1);
    window.CoolButtonInitUpDown(512, kRewindIcon, "", 2, 3);
    window.SetTooltip(512, "Rewind (<-)");
    gtk_widget_set_size_request(window.Widget(), MIN(860, gdk_screen_width() - 20), -1);
    gtk_widget_show_all(window.Widget());
    Present(window, "main-like");
    if (folder.empty())
        return;
    GtkWidget* menuBar =
        static_cast<GtkWidget*>(g_object_get_data(G_OBJECT(window.Widget()), "menu_bar"));
    gtk_menu_shell_select_first(GTK_MENU_SHELL(menuBar), FALSE);
    g_signal_emit_by_name(menuBar, "activate-current", FALSE);
    TakePicture("menu");
    gtk_menu_shell_cancel(GTK_MENU_SHELL(menuBar));
}

// Takes the picture of the modal dialog that opens next and ends it.
std::vector<std::function<void()>> Photographed(const char* name) {
    return {[name] {
        TakePicture(name);
        gtk_dialog_response(GTK_DIALOG(ContentWindow()), GTK_RESPONSE_CANCEL);
    }};
}

void PictureModalOnes() {
    LPropertyPage general;
    LPropertyPage keys;
    LPropertySheet sheet;
    sheet.AddPage(general, {"General", false, GenerateLists});
    sheet.AddPage(keys, {"HotKeys", false, GenerateLists});
    const UserScript sheetUser(Photographed("sheet"));
    sheet.Open(nullptr, "Options", 0);
    AddVoices({FestivalVoice("kal_diphone"), FestivalVoice("cmu_us_slt_arctic_hts")});
    std::string text = "The quick brown fox jumps over the lazy dog.";
    LTTSInputDialog input(text, "");
    const UserScript inputUser(Photographed("text-to-speech"));
    input.Run(nullptr);
}

// To be heard; the program itself shows none of them.
void ShowFormats() {
    LMp3EncodeSettings mp3;
    LMP3EncodeDlg(mp3).Run(nullptr);
    LAuSettingsDlg().Run(nullptr);
    LAIFFSettingsDlg aiff;
    static_cast<LDialog&>(aiff).Open(nullptr, {"AIFF", false, DlgGenAIFFEncode}, true);
    LRawSettings settings{44100, 2, kRawPcm16};
    LRawSettingsDialog raw(settings, "GalleryRaw");
    static_cast<LDialog&>(raw).Open(nullptr, {"Raw", false, DlgGenRawSettings}, true);
}

void ShowSplash() {
    LSplashScreen splash;
    for (int i = 0; folder.empty() && i < 2; ++i) {
        splash.Display(nullptr);
        splash.Display(nullptr);
        while (splash.IsShown())
            gtk_main_iteration();
    }
    if (folder.empty())
        return;
    LAboutBox::Open(nullptr);
    TakePicture("about");
    gtk_dialog_response(GTK_DIALOG(ContentWindow()), GTK_RESPONSE_OK);
    splash.Display(nullptr);
    TakePicture("splash");
}

void ShowAll() {
    {
        RecordingDialog controls;
        controls.onInit = [&] { FillControls(controls); };
        controls.Open(nullptr, {"Controls", false, GenerateControls}, false);
        controls.onCommand = [&](int command) {
            if (command == 36)
                controls.SetControlInvalid(10, "Please enter your name.", "Name Required");
        };
        Present(controls, "controls");
        if (!folder.empty()) {
            gtk_button_clicked(ButtonOf(controls, 20));
            TakePicture("calendar");
            gtk_button_clicked(ButtonOf(controls, 20));
            gtk_button_clicked(ButtonOf(controls, 36));
            TakePicture("bubble-tip");
        }
    }
    {
        LStatusWindow log;
        RecordingDialog lists;
        lists.onInit = [&] { FillLists(lists, log); };
        lists.Open(nullptr, {"Lists and log", false, GenerateLists}, false);
        Present(lists, "lists");
    }
    ShowMainLike();
    if (folder.empty())
        ShowFormats();
    else
        PictureModalOnes();
    ShowSplash();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 1 && argc != 4)
        return 2;
    gdk_threads_init();
    gtk_init(&argc, &argv);
    if (argc == 4) {
        folder = argv[1];
        std::filesystem::create_directories(folder);
        const std::string style =
            std::string("gtk-theme-name=\"") + argv[2] + "\"\ngtk-font-name=\"" + argv[3] + "\"\n";
        gtk_rc_parse_string(style.c_str());
    }
    g_log_set_default_handler(Complain, nullptr);
    const GdkLock lock;
    ShowAll();
    return allIsWell ? 0 : 1;
}
