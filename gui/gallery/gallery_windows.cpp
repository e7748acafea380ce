#include "gui/gallery/gallery_windows.h"

#include <string>

#include "formats/dialogs/aiff_settings_dialog.h"
#include "formats/dialogs/au_settings_dialog.h"
#include "formats/dialogs/mp3_encode_dialog.h"
#include "formats/dialogs/raw_settings_dialog.h"
#include "gui/gallery/pictures.h"
#include "gui/icon_numbers.h"
#include "gui/main_window/status_bar.h"
#include "gui/main_window/tool_bar.h"
#include "gui/widgets/explorer_bar.h"
#include "gui/windows/dialog_gen_context.h"
#include "gui/windows/key_dialog.h"
#include "gui/windows/property_sheet.h"
#include "gui/windows/splash_screen.h"
#include "gui/windows/status_window.h"
#include "speech/dialogs/tts_input_dialog.h"
#include "speech/festival_voices.h"

namespace {

constexpr int kName = 10;
constexpr int kDate = 20;
constexpr int kAdd = 36;

void GenerateControls(LDialogGenContext& c) {
    c.AddStaticTitle(1, "Every control of the builder");
    c.AddInput(kName, "&Name", 220);
    c.AddInputPassword(12, "Pass&word");
    c.AddInputUpDown(14, "Cop&ies");
    c.AddPullDownList(16, "Voice", 220);
    c.AddComboBox(18, "Device");
    c.AddDateTime(kDate, "Remind me");
    c.AddScrollBar(22, "Speed");
    c.AddDBEdit(24, "Volume");
    c.AddDBDisplay(26);
    c.AddHorizontalLine(27, "Progress");
    c.AddProgressBar(28);
    c.AddEdit(29, "Several lines of text\nin a field of their own", LRows{3}, "Notes");
    c.AddHyperLink(31, "Quillon on the web", "http://quillon.example/");
    c.AddGroup(32, "How to save");
    c.AddRadioButtonGroup(33, "&Prompt for format settings");
    c.AddRadioButton(34, "&Use these default format settings ");
    c.AddCheckBox(35, "&Tell me when it is done");
    c.StartHBox();
    c.AddButton(kAdd, "&Add...");
    c.AddButton(37, "Chan&ge...");
    c.AddButton(38, "&Remove...");
    c.EndHBox();
    c.GroupEnd();
    c.AddSpecialOkCancelHelp(39, "Defaults", kOkCancelHelp);
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
    c.AddList(10, LRows{5});
    c.GroupEnd();
    c.AddEditReadOnly(31, "", LRows{5});
    c.AddOkCancelHelp(kOkButton | kHelpButton, "Go Back");
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

struct ControlsDialog : LDialog {
    void InitDialog() override { FillControls(*this); }
    void Command(int command) override {
        if (command == kAdd)
            SetControlInvalid(kName, "Please enter your name.", "Name Required");
    }
    void Click(int id) { gtk_button_clicked(GTK_BUTTON(GetControlByID(id))); }
};

struct ListsDialog : LDialog {
    void InitDialog() override { FillLists(*this, log); }
    LStatusWindow log;
};

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

}  // namespace

void ShowControls(Pictures& pictures) {
    ControlsDialog controls;
    controls.Open(nullptr, {"Controls", false, GenerateControls}, false);
    pictures.Present(controls, "controls");
    if (!pictures.AreTaken())
        return;
    controls.Click(kDate);
    pictures.Take("calendar");
    controls.Click(kDate);
    controls.Click(kAdd);
    pictures.Take("bubble-tip");
}

void ShowLists(Pictures& pictures) {
    ListsDialog lists;
    lists.Open(nullptr, {"Lists and log", false, GenerateLists}, false);
    pictures.Present(lists, "lists");
}

void ShowMenusAndBars(Pictures& pictures) {
    MainLike window;
    window.Open(nullptr,
                {"Menus, tool bar, command bar", true,
                 [](LDialogGenContext& c) {
                     c.StartHBox();
                     c.AddSpanFull(gtk_toggle_button_new(), 510);
                     c.AddSpanFull(gtk_toggle_button_new(), 511);
                     c.AddSpanFull(gtk_toggle_button_new(), 512);
                     c.EndHBox();
                     c.AddOkCancelHelp(kNoButtons);
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
    pictures.Present(window, "main-like");
    if (!pictures.AreTaken())
        return;
    GtkWidget* menuBar =
        static_cast<GtkWidget*>(g_object_get_data(G_OBJECT(window.Widget()), "menu_bar"));
    gtk_menu_shell_select_first(GTK_MENU_SHELL(menuBar), FALSE);
    g_signal_emit_by_name(menuBar, "activate-current", FALSE);
    pictures.Take("menu");
    gtk_menu_shell_cancel(GTK_MENU_SHELL(menuBar));
}

namespace {

void PictureModalOnes(Pictures& pictures) {
    LPropertyPage general;
    LPropertyPage keys;
    LPropertySheet sheet;
    sheet.AddPage(general, {"General", false, GenerateLists});
    sheet.AddPage(keys, {"HotKeys", false, GenerateLists});
    pictures.TakeNext("sheet");
    sheet.Open(nullptr, "Options", 0);
    AddVoices({FestivalVoice("kal_diphone"), FestivalVoice("cmu_us_slt_arctic_hts")});
    std::string text = "The quick brown fox jumps over the lazy dog.";
    LTTSInputDialog input(text, "");
    pictures.TakeNext("text-to-speech");
    input.Run(nullptr);
}

void ShowFormats() {
    LMp3EncodeSettings mp3;
    LMP3EncodeDlg(mp3).Run(nullptr);
    LAuSettingsDlg().Run(nullptr);
    LAIFFSettingsDlg().Run(nullptr);
    LRawSettings settings{44100, 2, kRawPcm16};
    LRawSettingsDialog(settings, "GalleryRaw").Run(nullptr);
}

}  // namespace

void ShowDialogs(Pictures& pictures) {
    if (pictures.AreTaken())
        PictureModalOnes(pictures);
    else
        ShowFormats();
}

void ShowSplashAndAbout(Pictures& pictures) {
    LSplashScreen splash;
    for (int i = 0; !pictures.AreTaken() && i < 2; ++i) {
        splash.Display(nullptr);
        splash.Display(nullptr);
        while (splash.IsShown())
            gtk_main_iteration();
    }
    if (!pictures.AreTaken())
        return;
    LAboutBox::Open(nullptr);
    pictures.Take("about");
    gtk_dialog_response(GTK_DIALOG(OpenWindow()), GTK_RESPONSE_OK);
    splash.Display(nullptr);
    pictures.Take("splash");
}
