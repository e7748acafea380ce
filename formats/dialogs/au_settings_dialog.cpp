#include "formats/dialogs/au_settings_dialog.h"

#include <string>

#include "formats/dialogs/standard_lists.h"
#include "formats/settings_keys.h"
#include "gui/windows/dialog_gen_context.h"

namespace {

// Control ids; each label is one above.
constexpr int kAuCodec = 101;
constexpr int kAuRate = 103;
constexpr int kAuChannels = 105;
constexpr int kAuDefaults = 110;

constexpr int kPcm16 = 0;
constexpr const char* kAuCodecs[] = {"PCM 16 bit", "PCM 8 bit", "aLaw", "uLaw", nullptr};

}  // namespace

void DlgGenAuEncode(LDialogGenContext& context) {
    context.SetWidth(390);
    // The codec list bears the other list's label; the texts are fixed.
    context.AddPullDownList(kAuCodec, "Channels");
    context.AddPullDownList(kAuRate, "Sample Rate");
    context.AddPullDownList(kAuChannels, "Channels");
    context.AddSpecialOkCancelHelp(kAuDefaults, "Restore Defaults", kOkCancelHelp);
}

bool LAuSettingsDlg::Run(GtkWidget* parent) {
    return Open(parent, {"Au Encoder Options", false, DlgGenAuEncode}, true);
}

void LAuSettingsDlg::InitDialog() {
    PDLFill(kAuCodec, kAuCodecs);
    PDLFill(kAuRate, kStandardRates);
    PDLFill(kAuChannels, kMonoStereo);
    PDLSetCurSel(kAuCodec, kAuCodecSetting.Get());
    PDLSetText(kAuRate, std::to_string(kAuRateSetting.Get()).c_str());
    PDLSetCurSel(kAuChannels, kAuChannelsSetting.Get() - 1);
}

void LAuSettingsDlg::Command(int command) {
    if (command == kAuDefaults) {
        PDLSetCurSel(kAuCodec, kPcm16);
        PDLSetCurSel(kAuRate, kStandardRate44100);
        PDLSetCurSel(kAuChannels, kStereo);
    }
}

bool LAuSettingsDlg::CmOk() {
    // What no list holds stays as it is until another is chosen.
    if (PDLGetCurSel(kAuRate) >= 0)
        kAuRateSetting.Set(PDLGetInt(kAuRate));
    if (PDLGetCurSel(kAuChannels) >= 0)
        kAuChannelsSetting.Set(PDLGetCurSel(kAuChannels) + 1);
    if (PDLGetCurSel(kAuCodec) >= 0)
        kAuCodecSetting.Set(PDLGetCurSel(kAuCodec));
    return true;
}
