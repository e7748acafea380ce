#include "app/general_page.h"

#include <string>

#include "app/settings_keys.h"
#include "desktop/dialogs/start_on_login_controls.h"
#include "formats/wave_file.h"
#include "gui/accessible.h"
#include "gui/dialog_gen_context.h"
#include "gui/message_box.h"

namespace {

constexpr int kRunAtLogin = 101;
constexpr int kRunMode = 102;
constexpr int kPrompt = 103;
constexpr int kUseDefault = 104;
constexpr int kFormat = 105;
constexpr int kFormatSettings = 107;
constexpr int kFormatNote = 112;

enum : int { kMp3 = 0, kWav = 1 };
constexpr const char* kFormats[] = {"MP3", "WAV", nullptr};

// The list begins with MP3 also for who has never chosen, while saving then writes WAV: told, so
// that nobody finds out by saving.
constexpr const char* kNothingChosen = "So far speech is saved as WAV; OK makes it this format.";

constexpr const char* kFolderNotWritten = "Your settings folder cannot be written.";

bool IsNothingChosen() {
    return kSaveFormatIndexSetting.Get() == kMp3 && kSaveFormatSetting.Get() != "0" &&
           kSaveByDefaultSetting.Get() != "0";
}

}  // namespace

void DlgGenGeneralDlg(LDialogGenContext& context) {
    context.AddGroup(-1, "Run Start Up");
    context.AddCheckBox(kRunAtLogin, "Run Lectora automatically when computer starts");
    context.AddPullDownList(kRunMode);
    context.GroupEnd();
    context.AddGroup(-1, "Save");
    context.AddRadioButtonGroup(kPrompt, "Prompt for format settings");
    context.AddRadioButton(kUseDefault, "Use these default format settings ");
    context.AddPullDownList(kFormat, "  Choose Format");
    if (IsNothingChosen())
        context.AddStatic(kFormatNote, kNothingChosen);
    context.AddButton(kFormatSettings, "Format Settings");
    context.GroupEnd();
}

void GeneralDlgImp::InitDialog() {
    LAutoRunSettingsInit(*this, kRunAtLogin, kRunMode);
    SetAccessibleName(GetControlByID(kRunMode), "For whom");
    SetCheck(kSaveByDefaultSetting.Get() == "0" ? kPrompt : kUseDefault, true);
    PDLFill(kFormat, kFormats);
    PDLSetCurSel(kFormat, kSaveFormatIndexSetting.Get() == kMp3 ? kMp3 : kWav);
    if (IsNothingChosen())
        SetTooltip(kFormat, kNothingChosen);
}

void GeneralDlgImp::EnableControls() {
    const bool useDefault = GetCheck(kUseDefault);
    EnableControl(kRunMode, GetCheck(kRunAtLogin));
    for (const int id : {kFormat, kFormat + 1, kFormatSettings})  // kFormat + 1 is its label
        EnableControl(id, useDefault);
}

void GeneralDlgImp::Command(int command) {
    if (command == kFormatSettings)
        ShowFormatSettings();
}

void GeneralDlgImp::ShowFormatSettings() {
    if (PDLGetCurSel(kFormat) == kMp3) {
        // Whatever is stored: MP3 settings are for administrators, who edit the settings store.
        MessageBoxRun(Widget(), GTK_MESSAGE_INFO, GTK_BUTTONS_OK, "Lectora",
                      "MP3 Settings are: Constant bitrate, 128", "");
        return;
    }
    LWaveFileFormat format(44100, 1, "PCM");
    LoadDefaultWaveFormat(format);
    if (LWaveFile::WaveFormatSelectDialog(format, 0, "Select Wave File Format") &&
        !SaveDefaultWaveFormat(format))
        MessageBoxRun(Widget(), GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Lectora",
                      "The format settings could not be kept.", kFolderNotWritten);
}

bool GeneralDlgImp::CmOk() {
    if (!LAutoRunSettingsApply(*this, kRunAtLogin, kRunMode))
        return false;
    const char* byDefault = GetCheck(kUseDefault) ? "1" : "0";
    const int format = PDLGetCurSel(kFormat);
    kSaveByDefaultSetting.Set(byDefault);
    kSaveFormatIndexSetting.Set(format);
    const bool isKept =
        kSaveByDefaultSetting.Get() == byDefault && kSaveFormatIndexSetting.Get() == format;
    if (!isKept)
        MessageBoxRun(Widget(), GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Lectora",
                      "Your options could not be kept.", kFolderNotWritten);
    return isKept;
}
