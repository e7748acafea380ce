#include "formats/dialogs/aiff_settings_dialog.h"

#include <string>

#include "formats/dialogs/standard_lists.h"
#include "formats/settings_keys.h"
#include "gui/windows/dialog_gen_context.h"

namespace {

// Control ids; each label is one above.
constexpr int kAiffRate = 101;
constexpr int kAiffChannels = 103;
constexpr int kAiffDefaults = 110;

}  // namespace

void DlgGenAIFFEncode(LDialogGenContext& context) {
    context.AddPullDownList(kAiffRate, "Sample Rate");
    context.AddPullDownList(kAiffChannels, "Channels");
    context.AddSpecialOkCancelHelp(kAiffDefaults, "Restore Defaults", kOkCancelHelp);
}

bool LAIFFSettingsDlg::Run(GtkWidget* parent) {
    return LDialog::Open(parent, {"AIFF Encoder Options", false, DlgGenAIFFEncode}, true);
}

bool LAIFFSettingsDlg::Open(GtkWidget*) {
    return false;
}

void LAIFFSettingsDlg::InitDialog() {
    PDLFill(kAiffRate, kStandardRates);
    PDLFill(kAiffChannels, kMonoStereo);
    PDLSetText(kAiffRate, std::to_string(kAiffRateSetting.Get()).c_str());
    PDLSetCurSel(kAiffChannels, kAiffChannelsSetting.Get() - 1);
}

void LAIFFSettingsDlg::Command(int command) {
    if (command == kAiffDefaults) {
        PDLSetCurSel(kAiffRate, kStandardRate44100);
        PDLSetCurSel(kAiffChannels, kStereo);
    }
}

bool LAIFFSettingsDlg::CmOk() {
    // What no list holds stays as it is until another is chosen.
    if (PDLGetCurSel(kAiffRate) >= 0)
        kAiffRateSetting.Set(PDLGetInt(kAiffRate));
    if (PDLGetCurSel(kAiffChannels) >= 0)
        kAiffChannelsSetting.Set(PDLGetCurSel(kAiffChannels) + 1);
    return true;
}
