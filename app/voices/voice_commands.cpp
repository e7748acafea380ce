#include "app/voices/voice_commands.h"

#include <gdk/gdkkeysyms.h>

#include <utility>

#include "app/commands/command_numbers.h"
#include "app/voices/voice_chooser_dialog.h"
#include "speech/voice_table.h"

VoiceCommands::VoiceCommands(LWindow& window, VoiceChoice& voices, Narrator& narrator,
                             CommandSet& commands, std::function<void(const char*)> tell)
    : window_(window),
      voices_(voices),
      commands_(commands),
      tell_(std::move(tell)),
      change_(narrator) {}

void VoiceCommands::AddCommands() {
    static constexpr CommandRow<VoiceCommands> kRows[] = {
        {{.number = kChooseVoice,
          .label = "Choose &Voice...",
          .keys = {kKeyControl | kKeyShift | GDK_V}},
         &VoiceCommands::CmChoose},
        {{.number = kVoiceList}, &VoiceCommands::EvListChanged},
    };
    commands_.Add(*this, kRows);
}

void VoiceCommands::EvListChanged() {
    if (voices_.NoteChange() && change_.Begin(voices_.Chosen()))
        tell_(("From the next sentence on: " + VoiceAt(voices_.Chosen()).title).c_str());
}

void VoiceCommands::CmChoose() {
    voices_.Update();
    if (voices_.Chosen() < 0) {
        tell_("The speech engine has not told its voices yet.");
        return;
    }
    if (ChooseVoice(window_.Widget()) && window_.IsOpen())
        voices_.TakeChosen();
}
