#include "app/reading/dialogs/voice_choice.h"

#include <utility>

#include "gui/windows/progress_dialog.h"
#include "speech/voice_table.h"

VoiceChoice::VoiceChoice(LWindow& window, int list, std::function<void()> answered)
    : window_(window),
      list_(list),
      answered_(std::move(answered)),
      query_([this] { QueueNotify(); }) {}

void VoiceChoice::EvNotify() {
    Fill();
    answered_();
}

void VoiceChoice::Fill() {
    const int count = CountVoices();
    if (count == 0)
        return;
    for (; shown_ < count; ++shown_)
        window_.PDLAddString(list_, VoiceAt(shown_).title.c_str());
    if (chosen_ >= 0)
        return;
    chosen_ = ChosenVoice();
    window_.PDLSetCurSel(list_, chosen_);
}

LProcessResult VoiceChoice::Await(GtkWidget* parent) {
    LProcessDialog<VoiceListQuery> dialog("Synthesize Voice", query_);
    dialog.Open(parent);
    Fill();
    return dialog.Result();
}

void VoiceChoice::NoteChange() {
    const int selected = window_.PDLGetCurSel(list_);
    if (selected < 0 || selected == chosen_)
        return;
    chosen_ = selected;
    KeepChosenVoice(chosen_);  // the end of a session ends the program unasked
}

int VoiceChoice::Chosen() {
    if (chosen_ >= 0 && window_.PDLGetCurSel(list_) < 0) {
        const int typed = window_.PDLFindString(list_, window_.PDLGetText(list_).c_str());
        window_.PDLSetCurSel(list_, typed >= 0 ? typed : chosen_);
        NoteChange();
    }
    return chosen_;
}

void VoiceChoice::Store() {
    const int voice = Chosen();
    if (voice >= 0)
        KeepChosenVoice(voice);
}
