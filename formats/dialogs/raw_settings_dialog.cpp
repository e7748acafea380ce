#include "formats/dialogs/raw_settings_dialog.h"

#include <algorithm>

#include "formats/dialogs/standard_lists.h"
#include "formats/settings_keys.h"
#include "formats/wave_format.h"
#include "gui/windows/dialog_gen_context.h"

namespace {

// Control ids; each label is one above.
constexpr int kRawCodec = 101;
constexpr int kRawRate = 103;
constexpr int kRawChannels = 105;
constexpr int kRawDefaults = 110;

constexpr int kLowestRawRate = 6000;

constexpr const char* kRawCodecs[] = {"Dialogic ADPCM",
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
    context.AddPullDownList(kRawCodec, "Codec:");
    context.AddComboBox(kRawRate, "Sample Rate:");  // other rates than the listed ones may be typed
    context.AddPullDownList(kRawChannels, "Channels:");
    context.AddSpecialOkCancelHelp(kRawDefaults, "Restore Defaults", kOkCancelHelp);
}

bool LRawSettingsDialog::Run(GtkWidget* parent) {
    return LDialog::Open(parent, {"Raw Encoder Options", false, DlgGenRawSettings}, true);
}

bool LRawSettingsDialog::Open(GtkWidget*) {
    return false;
}

void LRawSettingsDialog::InitDialog() {
    PDLFill(kRawCodec, kRawCodecs);
    PDLFill(kRawRate, kStandardRates);
    PDLFill(kRawChannels, kMonoStereo);
    PDLSetCurSel(kRawCodec, settings_.codec);
    PDLSetCurSel(kRawRate, PDLFindString(kRawRate, std::to_string(settings_.sampleRate).c_str()));
    PDLSetCurSel(kRawChannels, settings_.channels - 1);
}

void LRawSettingsDialog::Command(int command) {
    if (command == kRawDefaults) {
        PDLSetCurSel(kRawCodec, kRawPcm16);
        PDLSetCurSel(kRawRate, kStandardRate44100);
        PDLSetCurSel(kRawChannels, kStereo);
    }
}

bool LRawSettingsDialog::CmOk() {
    const int rate = PDLGetInt(kRawRate);
    if (rate < kLowestRawRate || rate > kHighestRate) {
        SetControlInvalid(kRawRate, "Please select a sample rate between 6000 and 196000.",
                          "Lectora");
        return false;
    }
    settings_.sampleRate = rate;
    // No selected channel count counts as mono, no codec as the first.
    settings_.channels = static_cast<std::uint8_t>(std::max(PDLGetCurSel(kRawChannels) + 1, 1));
    settings_.codec = std::max(PDLGetCurSel(kRawCodec), 0);
    RawRateSetting(section_).Set(settings_.sampleRate);
    RawChannelsSetting(section_).Set(settings_.channels);
    RawCodecSetting(section_).Set(settings_.codec);
    return true;
}
