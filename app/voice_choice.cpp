#include "app/voice_choice.h"

#include <utility>

#include "app/settings_keys.h"
#include "gui/progress_dialog.h"
#include "speech/voices.h"

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
    if (!AreVoicesKnown())
        return;
    const int count = TTSGetNumSpeakers();
    for (; shown_ < count; ++shown_) {
        char name[kTextBufferSize];
        TTSGetDictSpeakerName(shown_, name);
        window_.PDLAddString(list_, name);
    }
    if (chosen_ >= 0)
        return;
    const int stored = kVoiceSetting.Get();
    chosen_ = stored >= 0 && stored < count ? stored : 0;
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
    kVoiceSetting.Set(IndexAtNextStart(chosen_));  // the end of a session ends the program unasked
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
        kVoiceSetting.Set(IndexAtNextStart(voice));
}
