#include "app/voices/voice_commands.h"

#include <gdk/gdkkeysyms.h>

#include <string>
#include <utility>
#include <vector>

#include "app/commands/command_numbers.h"
#include "app/voices/voice_chooser_dialog.h"
#include "gui/accessible.h"
#include "speech/speech_pieces.h"
#include "speech/voice_manner.h"
#include "speech/voice_table.h"

VoiceCommands::VoiceCommands(LMainWindow& window, VoiceChoice& voices, Narrator& narrator,
                             CommandSet& commands, std::function<void(const char*)> tell)
    : window_(window),
      voices_(voices),
      narrator_(narrator),
      commands_(commands),
      tell_(std::move(tell)),
      change_(narrator),
      news_(narrator.News(), [this](const ReadingNews& news) { Hear(news); }) {}

void VoiceCommands::AddCommands() {
    static constexpr CommandRow<VoiceCommands> kRows[] = {
        {{.number = kChooseVoice,
          .label = "Choose &Voice...",
          .keys = {kKeyControl | kKeyShift | GDK_V}},
         &VoiceCommands::CmChoose},
        {{.number = kVoiceByLanguage,
          .label = "Own Voice for Each &Language",
          .keys = {kKeyControl | kKeyShift | GDK_E}},
         &VoiceCommands::CmByLanguage},
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
    // It tells what it changes: the manners of hundreds of voices take long to read beforehand.
    const VoiceChosen chosen = ChooseVoice(window_.Widget());
    if (chosen.isTaken)
        Take(chosen.hasOtherManners);
}

void VoiceCommands::TakeFrom(const std::function<void()>& dialog) {
    const std::vector<VoiceManner> before = MannersOfVoices();
    dialog();
    Take(MannersOfVoices() != before);
}

// Of whichever voice: a reading has its own and those for other languages.
void VoiceCommands::Take(bool hasOtherManners) {
    if (!window_.IsOpen())
        return;
    TakeSettings();
    if (hasOtherManners)
        change_.BeginAnew();
}

void VoiceCommands::CreateIndicator() {
    other_ = gtk_button_new();
    gtk_button_set_relief(GTK_BUTTON(other_), GTK_RELIEF_NONE);
    const std::string tip =
        TipWithKey("Read everything in the chosen voice from the next sentence on",
                   commands_.Facts(kVoiceByLanguage));
    gtk_widget_set_tooltip_text(other_, tip.c_str());
    g_signal_connect(other_, "clicked", G_CALLBACK(GCOtherPressed), this);
    g_signal_connect(other_, "destroy", G_CALLBACK(gtk_widget_destroyed), &other_);
    window_.AddToStatusBar(other_);
    TakeSettings();
}

void VoiceCommands::GCOtherPressed(GtkWidget*, gpointer self) {
    static_cast<VoiceCommands*>(self)->window_.WMCommand(kVoiceByLanguage);
}

void VoiceCommands::TakeSettings() {
    commands_.Check(kVoiceByLanguage, kVoiceByLanguageSetting.Get());
    voices_.TakeChosen();
}

void VoiceCommands::CmByLanguage() {
    const bool isOn = !kVoiceByLanguageSetting.Get();
    kVoiceByLanguageSetting.Set(isOn);
    commands_.Check(kVoiceByLanguage, isOn);
    change_.BeginAnew();
    tell_(isOn ? "Each language is read by a voice of its own." : "One voice reads everything.");
}

void VoiceCommands::Hear(const ReadingNews& news) {
    const int heard = IsReading(news.state) && news.stretch ? news.stretch->voice : -1;
    const int other = heard == narrator_.Voice() ? -1 : heard;
    if (other == otherVoice_ || other_ == nullptr)
        return;
    otherVoice_ = other;
    gtk_widget_set_visible(other_, other >= 0 ? TRUE : FALSE);
    if (other < 0)
        return;
    const Voice voice = VoiceAt(other);
    gtk_button_set_label(GTK_BUTTON(other_), (voice.languageTitle + " \u00d7").c_str());
    SetAccessibleName(other_, ("Read by " + voice.title + ", one voice for all").c_str());
}
