// What the main window's user can ask for.
#include <gdk/gdkkeysyms.h>

#include "app/commands/command_numbers.h"
#include "app/help/help_links.h"
#include "app/help/machine_check.h"
#include "app/main_dialog.h"
#include "gui/icon_numbers.h"

struct MainDialog::Rows {
    // The large button acts as this command does, and names its key.
    static constexpr LKeyCode kSaveKey = kKeyControl | kKeyAlt | GDK_V;
    static constexpr CommandRow<MainDialog> kAll[] = {
        {{.number = kReadFromFile,
          .also = {kReadFromFileMenu},
          .label = "Read from fil&e",
          .name = "Read from a file",
          .tip = "Read the text from the file",
          .keys = {kKeyControl | kKeyShift | GDK_O}},
         &MainDialog::CmReadFromFile},
        {{.number = kReadFromSelection,
          .label = "Read from Clipboar&d",
          .name = "Read from clipboard",
          .tip = "Read aloud the selection or clipboard",
          .keys = {kKeyControl | kKeyShift | GDK_B},
          .needs = kNeedsSelection},
         &MainDialog::CmReadFromSelection},
        {{.number = kReadSelectionOrPause}, &MainDialog::CmReadSelectionOrPause},
        {{.number = kSaveCurrent,
          .also = {kSaveAllOfWindow, kSaveSelectionOfWindow},
          .label = "Save Current &Text",
          .name = "Save current text",
          .tip = "Save text in the Lectora window to file",
          .icon = kSaveSpeechIcon,
          .keys = {kSaveKey},
          .needs = kNeedsText},
         &MainDialog::CmSave},
        {{.number = kSaveFromFile,
          .also = {kSaveFromFileMenu},
          .label = "Save f&rom file",
          .name = "Save speech from file",
          .tip = "Saves the text from the file",
          .keys = {kKeyControl | kKeyAlt | GDK_O}},
         &MainDialog::CmSaveFromFile},
        {{.number = kSaveFromSelection,
          .label = "Save from Cli&pboard",
          .name = "Save from clipboard",
          .tip = "Save the selection or clipboard",
          .keys = {kKeyControl | kKeyAlt | GDK_B},
          .needs = kNeedsSelection},
         &MainDialog::CmSaveFromSelection},
        {{.number = kSaveButton,
          .name = "Save as Speech",
          .tip = "Save as Speech",
          .icon = kSaveButtonIcon,
          .keys = {kSaveKey},
          .needs = kNeedsText},
         &MainDialog::CmSave},
        {{.number = kUpdateFromSelection,
          .label = "Update From Clip&board",
          .name = "Update from clipboard",
          .tip = "Copy the selection or clipboard to the Lectora window",
          .icon = kUpdateTextIcon,
          .keys = {kKeyControl | GDK_B},
          .needs = kNeedsSelection},
         &MainDialog::CmCopyFromClipboard},
        {{.number = kLoadFile,
          .label = "&Load Text From File",
          .name = "Update text from file",
          .tip = "Load contents from text file to Lectora window",
          .keys = {kKeyControl | GDK_O}},
         &MainDialog::CmOpenFile},
        {{.number = kSaveTextAs,
          .label = "Save Te&xt As...",
          .keys = {kKeyControl | GDK_S},
          .needs = kNeedsText},
         &MainDialog::CmSaveTextAs},
        {{.number = kWholePage,
          .label = "&Whole Page",
          .keys = {kKeyControl | kKeyShift | GDK_W},
          .needs = kNeedsArticle},
         &MainDialog::CmWholePage},
        {{.number = kSayDifferently,
          .label = "Say It &Differently...",
          .keys = {kKeyControl | GDK_D},
          .needs = kNeedsText},
         &MainDialog::CmSayDifferently},
        {{.number = kCheckComputer, .label = "&Check This Computer..."},
         &MainDialog::CmCheckComputer},
        {{.number = kMoreVoices, .label = "More &Voices..."}, &MainDialog::CmMoreVoices},
        {{.number = kShowCommandBar, .label = "Show Command Bar"}, &MainDialog::CmShowCommandBar},
        {{.number = kOptions,
          .label = "&Options...",
          .name = "Options",
          .tip = "Change settings and hotkey preferences",
          .icon = kOptionsIcon},
         &MainDialog::CmOptions},
        {{.number = kOpenWindow, .label = "Open Lectora"}, &MainDialog::CmOpen},
        {{.number = kCommandHelp,
          .name = "Display Help Contents",
          .tip = "Open the help documentation",
          .keys = {GDK_F1}},
         &MainDialog::CmHelp},
        {{.number = kTextChanged}, &MainDialog::EvTextChanged},
        {{.number = kVoiceList}, &MainDialog::EvVoiceChosen},
    };
};

void MainDialog::AddCommands() {
    commands_.Add(*this, Rows::kAll);
    read_.AddCommands();
    text_.AddCommands(commands_);
    playback_.AddCommands();
    commands_.AddRange(kRecentFile, kLastRecentFile, [this](int command) {
        OpenRecentFile(static_cast<std::size_t>(command - kRecentFile));
    });
    for (const int arrow : {kUpdateDropDown, kReadDropDown, kSaveDropDown})
        commands_.AddRange(arrow, arrow, [this](int command) { places_.DropDown(command); });
    commands_.AddRange(LHelpLinks::kFirst, LHelpLinks::kLast, LHelpLinks::Open);
}

// Without a file the command ends.
void MainDialog::CmReadFromFile() {
    if (!OpenFile())
        return;
    CmRead();
    keeper_.TextCame();  // it is heard from its beginning until its user has answered
}

void MainDialog::CmReadFromSelection() {
    UpdateThen(&MainDialog::CmRead);
}

// Pressed again without anything new to read, the hotkey pauses, and then goes on. What is not
// heard yet is stopped: the next press reads it anew.
void MainDialog::CmReadSelectionOrPause() {
    if (!narrator_.IsReading()) {
        CmReadFromSelection();
        return;
    }
    FetchText([this](const std::string& text) {
        // The text in the window may have been edited since.
        const bool isNew = !text.empty() && text != narrator_.Text() && text != text_.Text();
        if (narrator_.IsReading() && !isNew) {
            commands_.Run(commands_.CanAct(kPlayOrPause) ? kPlayOrPause : kStopReading);
            return;
        }
        text_.TakeFromProgram(text);
        CmRead();
    });
}

void MainDialog::CmSaveFromFile() {
    if (OpenFile())
        CmSave();
}

void MainDialog::CmSaveFromSelection() {
    UpdateThen(&MainDialog::CmSave);
}

void MainDialog::CmCheckComputer() {
    RunMachineCheck(Widget());
    EnableControls();  // there may be new voices
}

void MainDialog::CmMoreVoices() {
    RunMachineCheckForVoices(Widget());
    EnableControls();
}
