#include "formats/dialogs/wave_encode_dialog.h"

#include <algorithm>
#include <string>

#include "formats/dialogs/standard_lists.h"
#include "formats/settings_keys.h"
#include "formats/wave_file.h"
#include "gui/windows/dialog_gen_context.h"

namespace {

// Control ids; each label is one above.
constexpr int kSettings = 101;
constexpr int kFormat = 103;
constexpr int kWaveRate = 105;
constexpr int kWaveChannels = 107;
constexpr int kWaveDefaults = 110;

enum Preset { kAuto, kHigh, kMedium, kLow, kCustom };
constexpr int kListAuto = 0;  // first item of the other lists
constexpr int kFormatPcm = 1;
constexpr int kFormatGsm = 2;
constexpr int kChannelsMono = 1;

constexpr const char* kPresets[] = {"Auto",        "High Quality", "Medium Quality",
                                    "Low Quality", "Custom",       nullptr};
constexpr const char* kFormats[] = {"Auto", "PCM", "GSM", nullptr};
constexpr const char* kAutoOnly[] = {"Auto", nullptr};
constexpr const char* kChannelCounts[] = {"Auto", "1", "2", nullptr};

// The window that the user is in, so that the dialog comes up over it; null when there is none.
GtkWidget* CurrentWindow() {
    if (GtkWidget* grabbed = gtk_grab_get_current())
        return gtk_widget_get_toplevel(grabbed);
    GList* windows = gtk_window_list_toplevels();
    GtkWidget* active = nullptr;
    for (GList* each = windows; each != nullptr; each = each->next) {
        if (gtk_window_is_active(GTK_WINDOW(each->data)))
            active = GTK_WIDGET(each->data);
    }
    g_list_free(windows);
    return active;
}

}  // namespace

void DlgGenLWaveEncodeDlg(LDialogGenContext& context) {
    context.SetWidth(420);
    context.AddPullDownList(kSettings, "Settings:");
    context.AddPullDownList(kFormat, "Format:");
    context.AddPullDownList(kWaveRate, "Sample Rate:");
    context.AddPullDownList(kWaveChannels, "Channels:");
    context.AddSpecialOkCancelHelp(kWaveDefaults, "Defaults", kOkCancelHelp);
}

bool LWaveEncodeDlg::Run(GtkWidget* parent) {
    return Open(parent, {"Wave Encoder Options", false, DlgGenLWaveEncodeDlg}, true);
}

bool LWaveFile::WaveFormatSelectDialog(LWaveFileFormat& format, unsigned char, const char*) {
    return LWaveEncodeDlg(format).Run(CurrentWindow());
}

void LWaveEncodeDlg::InitDialog() {
    PDLFill(kSettings, kPresets);
    PDLFill(kFormat, kFormats);
    PDLFill(kWaveRate, kAutoOnly);
    PDLFill(kWaveRate, kStandardRates);
    PDLFill(kWaveChannels, kChannelCounts);
    const int preset = kWavFormatPresetSetting.Get();
    PDLSetCurSel(kSettings, preset >= kAuto && preset <= kCustom ? preset : kAuto);
    if (IsCustom())
        ShowCustomFormat();
    else
        SetListsToAuto();
    HandlePDLSelChange(kSettings);
    HandlePDLSelChange(kFormat);
}

bool LWaveEncodeDlg::IsCustom() const {
    return PDLGetCurSel(kSettings) == kCustom;
}

void LWaveEncodeDlg::ShowCustomFormat() {
    PDLSetCurSel(kFormat, format_.tag == kWaveTagPcm ? kFormatPcm : kFormatGsm);
    PDLSetText(kWaveRate, std::to_string(format_.samplesPerSecond).c_str());
    PDLSetCurSel(kWaveChannels, std::min<int>(format_.channels, 2));
}

void LWaveEncodeDlg::SetListsToAuto() {
    for (const int list : {kFormat, kWaveRate, kWaveChannels})
        PDLSetCurSel(list, kListAuto);
}

void LWaveEncodeDlg::EnableControls() {
    const bool custom = IsCustom();
    const bool free = custom && PDLGetCurSel(kFormat) != kFormatGsm;
    for (const int offset : {0, 1}) {  // the list and its label
        EnableControl(kFormat + offset, custom);
        EnableControl(kWaveRate + offset, free);
        EnableControl(kWaveChannels + offset, free);
    }
}

void LWaveEncodeDlg::Command(int command) {
    if (command == kWaveDefaults)
        PDLSetCurSel(kSettings, kAuto);
    else if (command == kSettings && !IsCustom())
        SetListsToAuto();
}

void LWaveEncodeDlg::TakeCustomFormat() {
    if (PDLGetCurSel(kFormat) == kFormatGsm) {  // which has one rate and one channel
        format_.tag = kWaveTagGsm610;
        format_.channels = 1;
        format_.samplesPerSecond = 8000;
        return;
    }
    if (PDLGetCurSel(kWaveRate) > kListAuto)
        format_.samplesPerSecond = static_cast<std::uint32_t>(PDLGetInt(kWaveRate));
    if (PDLGetCurSel(kWaveChannels) == kChannelsMono)
        format_.channels = 1;
}

bool LWaveEncodeDlg::CmOk() {
    const int preset = PDLGetCurSel(kSettings);
    kWavFormatPresetSetting.Set(preset);
    format_.tag = kWaveTagPcm;
    format_.channels = 2;
    switch (preset) {
        case kMedium:
            format_.samplesPerSecond = 22050;
            break;
        case kLow:
            format_.samplesPerSecond = 8000;
            format_.channels = 1;
            break;
        case kCustom:
            TakeCustomFormat();
            break;
        default:
            format_.samplesPerSecond = 44100;
            break;
    }
    return true;
}
