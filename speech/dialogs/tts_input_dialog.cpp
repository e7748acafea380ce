#include "speech/dialogs/tts_input_dialog.h"

#include <algorithm>

#include "foundation/setting.h"
#include "gui/accessible.h"
#include "gui/dialog_gen_context.h"
#include "speech/dialogs/synthesis_dialog.h"
#include "speech/voices.h"

namespace {

constexpr int kText = 101;
constexpr int kVoice = 102;
constexpr int kWidth = 420;
constexpr int kTextHeight = 160;

constexpr UserSetting<int> kChosenVoice{"Settings", "TextToSpeechVoice", 0};

}  // namespace

void DlgGenTTSInput(LDialogGenContext& context) {
    context.SetWidth(kWidth);
    context.AddEdit(kText, "", kTextHeight);
    context.AddPullDownList(kVoice, "Choose Voice:");
    context.AddOkCancelHelp(false, false, false);
}

bool LTTSInputDialog::Run(GtkWidget* parent) {
    return Open(parent, {"Text To Speech", false, DlgGenTTSInput}, true);
}

void LTTSInputDialog::InitDialog() {
    SetAccessibleName(GetControlByID(kText), "Text to speak");
    SetEditText(kText, text_.c_str());
    const int voices = TTSGetNumSpeakers();
    for (int voice = 0; voice < voices; ++voice) {
        char name[kTextBufferSize];
        TTSGetDictSpeakerName(voice, name);
        PDLAddString(kVoice, name);
    }
    PDLSetCurSel(kVoice, std::clamp(kChosenVoice.Get(), 0, std::max(voices - 1, 0)));
}

bool LTTSInputDialog::CmOk() {
    text_ = GetEditText(kText);
    const int voice = std::max(PDLGetCurSel(kVoice), 0);
    kChosenVoice.Set(voice);
    LTTS request;
    request.text = text_.c_str();
    request.outputPath = outputPath_.c_str();
    request.voice = voice;
    return ProcessDialogRun(Widget(), request);
}
