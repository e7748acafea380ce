#include "formats/dialogs/raw_settings_dialog.h"

#include <algorithm>

#include "formats/dialogs/standard_lists.h"
#include "formats/settings_keys.h"
#include "formats/wave_format.h"
#include "gui/dialog_gen_context.h"

namespace {

// Control ids; each label is one above.
constexpr int kCodec = 101;
constexpr int kRate = 103;
constexpr int kChannels = 105;
constexpr int kDefaults = 110;

constexpr int kLowestRate = 6000;

constexpr const char* kCodecs[] = {"Dialogic ADPCM",
                                   "G711 uLaw",
                                   "G711 aLaw",
                                   "16 bit PCM (Intel Endian)",
                                   "8 bit unsigned",
                                   "8 bit signed",
                                   "16 bit PCM (Big Endian)",
                                   "32 bit float (Intel Endian)",
                                   "32 bit float (Big Endian)",
                                   nullptr};

}  // namespace

void DlgGenRawSettings(LDialogGenContext& context) {
    context.AddPullDownList(kCodec, "Codec:");
    context.AddComboBox(kRate, "Sample Rate:");  // other rates than the listed ones may be typed
    context.AddPullDownList(kChannels, "Channels:");
    context.AddSpecialOkCancelHelp(kDefaults, "Restore Defaults", nullptr, false, false, false);
}

bool LRawSettingsDialog::Open(GtkWidget*) {
    return false;
}

void LRawSettingsDialog::InitDialog() {
    PDLFill(kCodec, kCodecs);
    PDLFill(kRate, kStandardRates);
    PDLFill(kChannels, kMonoStereo);
    PDLSetCurSel(kCodec, settings_.codec);
    PDLSetCurSel(kRate, PDLFindString(kRate, std::to_string(settings_.sampleRate).c_str()));
    PDLSetCurSel(kChannels, settings_.channels - 1);
}

void LRawSettingsDialog::Command(int command) {
    if (command == kDefaults) {
        PDLSetCurSel(kCodec, kRawPcm16);
        PDLSetCurSel(kRate, kStandardRate44100);
        PDLSetCurSel(kChannels, kStereo);
    }
}

bool LRawSettingsDialog::CmOk() {
    const int rate = PDLGetInt(kRate);
    if (rate < kLowestRate || rate > kHighestRate) {
        SetControlInvalid(kRate, "Please select a sample rate between 6000 and 196000.", "Lectora");
        return false;
    }
    settings_.sampleRate = rate;
    // No selected channel count counts as mono, no codec as the first.
    settings_.channels = static_cast<std::uint8_t>(std::max(PDLGetCurSel(kChannels) + 1, 1));
    settings_.codec = std::max(PDLGetCurSel(kCodec), 0);
    RawRateSetting(section_).Set(settings_.sampleRate);
    RawChannelsSetting(section_).Set(settings_.channels);
    RawCodecSetting(section_).Set(settings_.codec);
    return true;
}
