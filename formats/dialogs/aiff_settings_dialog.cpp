#include "formats/dialogs/aiff_settings_dialog.h"

#include <string>

#include "formats/dialogs/standard_lists.h"
#include "formats/settings_keys.h"
#include "gui/dialog_gen_context.h"

namespace {

// Control ids; each label is one above.
constexpr int kRate = 101;
constexpr int kChannels = 103;
constexpr int kDefaults = 110;

}  // namespace

void DlgGenAIFFEncode(LDialogGenContext& context) {
    context.AddPullDownList(kRate, "Sample Rate");
    context.AddPullDownList(kChannels, "Channels");
    context.AddSpecialOkCancelHelp(kDefaults, "Restore Defaults", nullptr, false, false, false);
}

bool LAIFFSettingsDlg::Open(GtkWidget*) {
    return false;
}

void LAIFFSettingsDlg::InitDialog() {
    PDLFill(kRate, kStandardRates);
    PDLFill(kChannels, kMonoStereo);
    PDLSetText(kRate, std::to_string(kAiffRateSetting.Get()).c_str());
    PDLSetCurSel(kChannels, kAiffChannelsSetting.Get() - 1);
}

void LAIFFSettingsDlg::Command(int command) {
    if (command == kDefaults) {
        PDLSetCurSel(kRate, kStandardRate44100);
        PDLSetCurSel(kChannels, kStereo);
    }
}

bool LAIFFSettingsDlg::CmOk() {
    kAiffRateSetting.Set(PDLGetInt(kRate));
    kAiffChannelsSetting.Set(PDLGetCurSel(kChannels) + 1);
    return true;
}
