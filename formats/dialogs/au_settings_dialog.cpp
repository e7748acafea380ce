#include "formats/dialogs/au_settings_dialog.h"

#include <string>

#include "formats/dialogs/standard_lists.h"
#include "formats/settings_keys.h"
#include "gui/dialog_gen_context.h"

namespace {

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
    // The codec list bears the other list's label; the texts are fixed.
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
    PDLSetCurSel(kCodec, kAuCodecSetting.Get());
    PDLSetText(kRate, std::to_string(kAuRateSetting.Get()).c_str());
    PDLSetCurSel(kChannels, kAuChannelsSetting.Get() - 1);
}

void LAuSettingsDlg::Command(int command) {
    if (command == kDefaults) {
        PDLSetCurSel(kCodec, kPcm16);
        PDLSetCurSel(kRate, kStandardRate44100);
        PDLSetCurSel(kChannels, kStereo);
    }
}

bool LAuSettingsDlg::CmOk() {
    kAuRateSetting.Set(PDLGetInt(kRate));
    kAuChannelsSetting.Set(PDLGetCurSel(kChannels) + 1);
    kAuCodecSetting.Set(PDLGetCurSel(kCodec));
    return true;
}
