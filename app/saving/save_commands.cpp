#include "app/saving/save_commands.h"

#include <gdk/gdkkeysyms.h>

#include <string>

#include "app/commands/command_numbers.h"
#include "app/document_text.h"
#include "app/saving/save_speech.h"
#include "app/saving/save_text.h"
#include "app/saving/suggested_name.h"
#include "gui/icon_numbers.h"

void SaveCommands::AddCommands(CommandSet& commands) {
    // The large button acts as the menu's command does, and names its key.
    static constexpr LKeyCode kSaveKey = kKeyControl | kKeyAlt | GDK_V;
    static constexpr CommandRow<SaveCommands> kRows[] = {
        {{.number = kSaveCurrent,
          .also = {kSaveAllOfWindow, kSaveSelectionOfWindow},
          .label = "Save Current &Text",
          .name = "Save current text",
          .tip = "Save text in the Lectora window to file",
          .icon = kSaveSpeechIcon,
          .keys = {kSaveKey},
          .needs = kNeedsText},
         &SaveCommands::CmSave},
        {{.number = kSaveFromFile,
          .also = {kSaveFromFileMenu},
          .label = "Save f&rom file",
          .name = "Save speech from file",
          .tip = "Saves the text from the file",
          .keys = {kKeyControl | kKeyAlt | GDK_O}},
         &SaveCommands::CmSaveFromFile},
        {{.number = kSaveFromSelection,
          .label = "Save from Cli&pboard",
          .name = "Save from clipboard",
          .tip = "Save the selection or clipboard",
          .keys = {kKeyControl | kKeyAlt | GDK_B},
          .needs = kNeedsSelection},
         &SaveCommands::CmSaveFromSelection},
        {{.number = kSaveButton,
          .name = "Save as Speech",
          .tip = "Save as Speech",
          .icon = kSaveButtonIcon,
          .keys = {kSaveKey},
          .needs = kNeedsText},
         &SaveCommands::CmSave},
        {{.number = kSaveTextAs,
          .label = "Save Te&xt As...",
          .keys = {kKeyControl | GDK_S},
          .needs = kNeedsText},
         &SaveCommands::CmSaveTextAs},
    };
    commands.Add(*this, kRows);
}

void SaveCommands::CmSave() {
    if (parts_.turn.IsTaken() || !parts_.sources.AwaitAll())
        return;
    const std::string text = parts_.text.Text();
    if (text.empty())
        return;
    const CommandTurn::Hold hold(parts_.turn);
    const int voice = parts_.voices.Require();
    if (voice < 0)
        return;
    const std::string note = SaveSpeech(parts_.window.Widget(), DocumentText(parts_.text, text),
                                        voice, SuggestedName(text, parts_.text.File()));
    if (!note.empty())
        parts_.window.TellStatusText(note.c_str());
}

// Without a file the command ends.
void SaveCommands::CmSaveFromFile() {
    if (parts_.sources.OpenFile())
        CmSave();
}

void SaveCommands::CmSaveFromSelection() {
    parts_.sources.UpdateThen([this] { CmSave(); });
}

void SaveCommands::CmSaveTextAs() {
    if (parts_.turn.IsTaken() || !parts_.sources.AwaitAll())
        return;
    // What comes meanwhile waits: it would be taken for what was saved.
    const CommandTurn::Hold hold(parts_.turn);
    const std::string text = parts_.text.Text();
    const std::string path =
        SaveTextAs(parts_.window.Widget(), text, SuggestedName(text, parts_.text.File()));
    if (path.empty() || !parts_.window.IsOpen())
        return;
    parts_.sources.WasSavedAs(path);
    parts_.window.TellStatusText(("Saved as " + path).c_str());
}
