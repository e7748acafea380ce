#include "app/options/general_page.h"

#include <algorithm>
#include <string>
#include <vector>

#include "app/options/keep_change.h"
#include "app/settings_keys.h"
#include "app/text/highlight_colors.h"
#include "app/text/kept_text.h"
#include "app/voices/voice_chooser_dialog.h"
#include "desktop/dialogs/start_on_login_controls.h"
#include "formats/wave_file.h"
#include "gui/accessible.h"
#include "gui/windows/dialog_gen_context.h"
#include "gui/windows/message_box.h"
#include "speech/chosen_voice.h"
#include "speech/speech_pieces.h"
#include "speech/voice_table.h"

namespace {

constexpr int kRunAtLogin = 101;
constexpr int kRunMode = 102;
constexpr int kPrompt = 103;
constexpr int kUseDefault = 104;
constexpr int kFormat = 105;
constexpr int kFormatSettings = 107;
constexpr int kKeepText = 113;
constexpr int kByLanguage = 114;
constexpr int kHighlight = 115;
constexpr int kSpellCapitals = 117;
constexpr int kSayPunctuation = 118;
constexpr int kSayEmoji = 119;
constexpr int kVoice = 120;
constexpr int kVoiceButton = 121;
constexpr int kMarkWords = 122;

enum : int { kMp3 = 0, kWav = 1 };
constexpr const char* kFormats[] = {"MP3", "WAV", nullptr};

}  // namespace

void DlgGenGeneralDlg(LDialogGenContext& context) {
    context.AddGroup(-1, "Run Start Up");
    context.AddCheckBox(kRunAtLogin, "&Run Lectora automatically when computer starts");
    context.AddPullDownList(kRunMode);
    context.GroupEnd();
    context.AddGroup(-1, "Save");
    context.AddRadioButtonGroup(kPrompt, "&Prompt for format settings");
    context.AddRadioButton(kUseDefault, "&Use these default format settings ");
    context.AddPullDownList(kFormat, "  Choose Format");
    context.AddButton(kFormatSettings, "&Format Settings");
    context.GroupEnd();
    context.AddGroup(-1, "Voices");
    context.AddStatic(kVoice, "");
    context.AddButton(kVoiceButton, "Choose &Voice...");
    context.AddCheckBox(kByLanguage, "Read each language in a voice of its own");
    context.AddCheckBox(kSpellCapitals, "Spell words in capitals");
    context.AddCheckBox(kSayPunctuation, "Say punctuation");
    context.AddCheckBox(kSayEmoji, "Say emoji");
    context.GroupEnd();
    context.AddGroup(-1, "Text");
    context.AddCheckBox(kKeepText, "&Keep the text for the next start");
    context.AddPullDownList(kHighlight, "&Mark what is heard in");
    context.AddCheckBox(kMarkWords, "Mark each &word");
    context.GroupEnd();
}

void GeneralDlgImp::InitDialog() {
    LAutoRunSettingsInit(*this, kRunAtLogin, kRunMode);
    SetAccessibleName(GetControlByID(kRunMode), "For whom");
    // As saving takes them, also where nothing was chosen.
    SetCheck(kSaveByDefaultSetting.Get() == "0" ? kPrompt : kUseDefault, true);
    PDLFill(kFormat, kFormats);
    PDLSetCurSel(kFormat, kSaveFormatSetting.Get() == "0" ? kMp3 : kWav);
    SetCheck(kKeepText, kKeepTextSetting.Get());
    SetCheck(kByLanguage, kVoiceByLanguageSetting.Get());
    FillHighlight();
    SetCheck(kMarkWords, kMarkWordsSetting.Get());
    SetCheck(kSpellCapitals, kSpellCapitalsSetting.Get());
    SetCheck(kSayPunctuation, kSayPunctuationSetting.Get());
    SetCheck(kSayEmoji, kSayEmojiSetting.Get());
    ShowVoice();
    shown_ = Choices();
}

GeneralDlgImp::Choice GeneralDlgImp::Choices() const {
    return {GetCheck(kRunAtLogin),
            PDLGetCurSel(kRunMode),
            GetCheck(kUseDefault) ? "1" : "0",
            PDLGetCurSel(kFormat) == kMp3 ? "0" : "1",
            GetCheck(kKeepText),
            GetCheck(kByLanguage),
            HighlightChoices()[static_cast<std::size_t>(std::max(0, PDLGetCurSel(kHighlight)))].key,
            GetCheck(kMarkWords),
            GetCheck(kSpellCapitals),
            GetCheck(kSayPunctuation),
            GetCheck(kSayEmoji)};
}

void GeneralDlgImp::FillHighlight() {
    std::vector<const char*> names;
    int chosen = 0;
    for (const HighlightChoice& choice : HighlightChoices()) {
        if (kHighlightSetting.Get() == choice.key)
            chosen = static_cast<int>(names.size());
        names.push_back(choice.name);
    }
    names.push_back(nullptr);
    PDLFill(kHighlight, names.data());
    PDLSetCurSel(kHighlight, chosen);
}

void GeneralDlgImp::EnableControls() {
    const bool useDefault = GetCheck(kUseDefault);
    EnableControl(kRunMode, GetCheck(kRunAtLogin));
    EnableControl(kVoiceButton, CountVoices() > 0);
    for (const int id : {kFormat, kFormat + 1, kFormatSettings})  // kFormat + 1 is its label
        EnableControl(id, useDefault);
}

void GeneralDlgImp::Command(int command) {
    if (command == kFormatSettings)
        ShowFormatSettings();
    else if (command == kVoiceButton && ChooseVoice(Widget()).isTaken)
        ShowVoice();
}

void GeneralDlgImp::ShowVoice() {
    const int voice = ChosenVoice();
    const std::string text =
        voice < 0 ? "No voice is installed." : "The voice that reads: " + VoiceAt(voice).title;
    SetStaticText(kVoice, text.c_str());
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

// What was left as it was shown is left as it is.
bool GeneralDlgImp::CmOk() {
    const Choice now = Choices();
    const bool startChanged =
        now.runAtLogin != shown_.runAtLogin || (now.runAtLogin && now.runMode != shown_.runMode);
    if (startChanged && !LAutoRunSettingsApply(*this, kRunAtLogin, kRunMode))
        return false;
    bool isKept = KeepChange(kSaveByDefaultSetting, shown_.byDefault, now.byDefault);
    isKept = KeepChange(kSaveFormatSetting, shown_.format, now.format) && isKept;
    isKept = KeepChange(kKeepTextSetting, shown_.keepText, now.keepText) && isKept;
    isKept = KeepChange(kVoiceByLanguageSetting, shown_.byLanguage, now.byLanguage) && isKept;
    isKept = KeepChange(kHighlightSetting, shown_.highlight, now.highlight) && isKept;
    isKept = KeepChange(kMarkWordsSetting, shown_.markWords, now.markWords) && isKept;
    isKept = KeepChange(kSpellCapitalsSetting, shown_.spellCapitals, now.spellCapitals) && isKept;
    isKept =
        KeepChange(kSayPunctuationSetting, shown_.sayPunctuation, now.sayPunctuation) && isKept;
    isKept = KeepChange(kSayEmojiSetting, shown_.sayEmoji, now.sayEmoji) && isKept;
    if (!now.keepText)
        ForgetKeptText();
    if (!isKept)
        MessageBoxRun(Widget(), GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Lectora",
                      "Your options could not be kept.", kFolderNotWritten);
    return isKept;
}
