#include "formats/dialogs/au_settings_dialog.h"

#include "formats/dialogs/standard_lists.h"
#include "foundation/settings.h"
#include "gui/dialog_gen_context.h"

namespace {

constexpr const char* kSection = "AuEncoder";

// Control ids; each label is one above.
constexpr int kCodec = 101;
constexpr int kRate = 103;
constexpr int kChannels = 105;
constexpr int kDefaults = 110;

constexpr int kPcm16 = 0;
constexpr const char* kCodecs[] = {"PCM 16 bit", "PCM 8 bit", "aLaw", "uLaw", nullptr};

}  // namespace

void DlgGenAuEncode(LDialogGenContext& context) {
    context.SetWidth(390);
    // The codec list has always borne the other list's label; the texts are fixed.
    context.AddPullDownList(kCodec, "Channels");
    context.AddPullDownList(kRate, "Sample Rate");
    context.AddPullDownList(kChannels, "Channels");
    context.AddSpecialOkCancelHelp(kDefaults, "Restore Defaults", nullptr, false, false, false);
}

bool LAuSettingsDlg::Run(GtkWidget* parent) {
    return Open(parent, {"Au Encoder Options", false, DlgGenAuEncode}, true);
}

void LAuSettingsDlg::InitDialog() {
    PDLFill(kCodec, kCodecs);
    PDLFill(kRate, kStandardRates);
    PDLFill(kChannels, kMonoStereo);
    PDLSetCurSel(kCodec, LUserSettingGetInt(kSection, "CodecIndex", kPcm16));
    PDLSetText(kRate, LUserSettingGet(kSection, "SampleRate", "44100").c_str());
    PDLSetCurSel(kChannels, LUserSettingGetInt(kSection, "Channels", kStereo + 1) - 1);
}

void LAuSettingsDlg::Command(int command) {
    if (command == kDefaults) {
        PDLSetCurSel(kCodec, kPcm16);
        PDLSetCurSel(kRate, kStandardRate44100);
        PDLSetCurSel(kChannels, kStereo);
    }
}

bool LAuSettingsDlg::CmOk() {
    LUserSettingSetInt(kSection, "SampleRate", PDLGetInt(kRate));
    LUserSettingSetInt(kSection, "Channels", PDLGetCurSel(kChannels) + 1);
    LUserSettingSetInt(kSection, "CodecIndex", PDLGetCurSel(kCodec));
    return true;
}
