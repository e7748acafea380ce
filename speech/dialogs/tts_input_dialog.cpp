#include "speech/dialogs/tts_input_dialog.h"

#include <algorithm>

#include "gui/accessible.h"
#include "gui/windows/dialog_gen_context.h"
#include "speech/chosen_voice.h"
#include "speech/dialogs/synthesis_dialog.h"
#include "speech/voice_table.h"
#include "speech/voices.h"

namespace {

constexpr int kText = 101;
constexpr int kVoice = 102;
constexpr int kWidth = 420;
constexpr LRows kTextHeight{8};

}  // namespace

void DlgGenTTSInput(LDialogGenContext& context) {
    context.SetWidth(kWidth);
    context.AddEdit(kText, "", kTextHeight);
    context.AddPullDownList(kVoice, "Choose Voice:");
    context.AddOkCancelHelp(kOkCancelHelp);
}

bool LTTSInputDialog::Run(GtkWidget* parent) {
    return Open(parent, {"Text To Speech", false, DlgGenTTSInput}, true);
}

void LTTSInputDialog::InitDialog() {
    SetAccessibleName(GetControlByID(kText), "Text to speak");
    SetEditText(kText, text_.c_str());
    static_cast<void>(TTSGetNumSpeakers());  // asks when nobody has
    for (const Voice& voice : KnownVoices())
        PDLAddString(kVoice, voice.title.c_str());
    PDLSetCurSel(kVoice, std::max(ChosenVoice(), 0));
}

bool LTTSInputDialog::CmOk() {
    text_ = GetEditText(kText);
    const int voice = std::max(PDLGetCurSel(kVoice), 0);
    KeepChosenVoice(voice);
    LTTS request;
    request.text = text_.c_str();
    request.outputPath = outputPath_.c_str();
    request.voice = voice;
    return ProcessDialogRun(Widget(), request);
}
