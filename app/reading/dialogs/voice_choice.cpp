#include "app/reading/dialogs/voice_choice.h"

#include <utility>

#include "gui/windows/progress_dialog.h"
#include "speech/chosen_voice.h"
#include "speech/voice_table.h"

VoiceChoice::VoiceChoice(LWindow& window, int list, Narrator& narrator,
                         std::function<void()> missing)
    : window_(window),
      list_(list),
      narrator_(narrator),
      missing_(std::move(missing)),
      query_([this] { QueueNotify(); }) {}

void VoiceChoice::EvNotify() {
    Fill();
    if (narrator_.State() == ReadingState::kWaitingForVoice)
        narrator_.SetVoice(Chosen());
    else if (query_.State() != VoiceListState::kKnown && !isRequired_)
        missing_();
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

// The engine may be slow to wake up, or have been installed since the program was started.
int VoiceChoice::Require() {
    isRequired_ = true;
    if (Chosen() < 0 && Await() == kProcessFailed)
        missing_();
    isRequired_ = false;
    return Chosen();
}

LProcessResult VoiceChoice::Await() {
    LProcessDialog<VoiceListQuery> dialog("Synthesize Voice", query_);
    dialog.Open(window_.Widget());
    Fill();
    return dialog.Result();
}

bool VoiceChoice::NoteChange() {
    const int selected = window_.PDLGetCurSel(list_);
    if (selected < 0 || selected == chosen_)
        return false;
    chosen_ = selected;
    KeepChosenVoice(chosen_);  // the end of a session ends the program unasked
    return true;
}

void VoiceChoice::TakeChosen() {
    Fill();
    if (const int chosen = ChosenVoice(); chosen >= 0 && chosen != chosen_)
        window_.PDLSetCurSel(list_, chosen);  // which the window notes as any change of the list
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
    if (voice >= 0 && !IsChosenVoiceMissing())
        KeepChosenVoice(voice);
}
