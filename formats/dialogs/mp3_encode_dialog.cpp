#include "formats/dialogs/mp3_encode_dialog.h"

#include <algorithm>
#include <string>

#include "gui/windows/dialog_gen_context.h"
#include "gui/windows/message_box.h"

namespace {

// Control ids; the label of a list is one above.
constexpr int kChannelMode = 101;
constexpr int kConstant = 103;
constexpr int kConstantRate = 104;
constexpr int kHighQuality = 106;
constexpr int kVariable = 107;
constexpr int kLowestBitRate = 108;
constexpr int kHighestBitRate = 110;
constexpr int kQuality = 112;
constexpr int kErrorProtection = 114;
constexpr int kMp3Defaults = 115;

constexpr const char* kChannelModes[] = {"Stereo", "Joint", "Force", "Mono", nullptr};
constexpr const char* kBitRates[] = {"8",   "16",  "24",  "32",  "40",  "48",
                                     "56",  "64",  "80",  "96",  "112", "128",
                                     "160", "192", "224", "256", "320", nullptr};
constexpr const char* kQualities[] = {"0 (Highest)", "1", "2", "3",          "4",    "5",
                                      "6",           "7", "8", "9 (Lowest)", nullptr};

}  // namespace

void DlgGenMP3Encode(LDialogGenContext& context) {
    context.AddPullDownList(kChannelMode, "Channel Mode:");
    context.AddRadioButtonGroup(kConstant, "Cons&tant Bitrate");
    context.AddPullDownList(kConstantRate, "Bitrate (kbps):");
    context.AddCheckBox(kHighQuality, "Hi&gh Quality");
    context.AddRadioButton(kVariable, "&Variable Bitrate");
    context.AddPullDownList(kLowestBitRate, "Minimum Bitrate (kbps):");
    context.AddPullDownList(kHighestBitRate, "Maximum Bitrate (kbps):");
    context.AddPullDownList(kQuality, "Quality:");
    context.AddCheckBox(kErrorProtection, "&Error Protection");
    context.AddSpecialOkCancelHelp(kMp3Defaults, "Defaults", kOkCancelHelp);
}

bool LMP3EncodeDlg::Run(GtkWidget* parent) {
    return Open(parent, {"MP3 Encoder Options", false, DlgGenMP3Encode}, true);
}

void LMP3EncodeDlg::InitDialog() {
    PDLFill(kChannelMode, kChannelModes);
    for (const int list : {kConstantRate, kLowestBitRate, kHighestBitRate})
        PDLFill(list, kBitRates);
    PDLFill(kQuality, kQualities);
    Show(settings_);
}

void LMP3EncodeDlg::Show(const LMp3EncodeSettings& settings) {
    const auto showRate = [this](int list, int rate) {
        PDLSetCurSel(list, PDLFindString(list, std::to_string(rate).c_str()));
    };
    PDLSetCurSel(kChannelMode, std::min<int>(settings.channelMode, 3));
    SetCheck(settings.constantBitRate ? kConstant : kVariable, true);
    showRate(kConstantRate, settings.cbrBitRate);
    SetCheck(kHighQuality, settings.highQuality);
    showRate(kLowestBitRate, settings.vbrMinBitRate);
    showRate(kHighestBitRate, settings.vbrMaxBitRate);
    PDLSetCurSel(kQuality, std::min<int>(settings.vbrQuality, 9));
    SetCheck(kErrorProtection, settings.errorProtection);
}

void LMP3EncodeDlg::EnableControls() {
    const bool isConstant = GetCheck(kConstant);
    for (const int offset : {0, 1}) {  // the list and its label
        EnableControl(kConstantRate + offset, isConstant);
        for (const int list : {kLowestBitRate, kHighestBitRate, kQuality})
            EnableControl(list + offset, !isConstant);
    }
    EnableControl(kHighQuality, isConstant);
}

void LMP3EncodeDlg::Command(int command) {
    if (command == kMp3Defaults)
        Show(LMp3EncodeSettings());
}

bool LMP3EncodeDlg::CheckVariableRates() {
    const int lowest = PDLGetInt(kLowestBitRate);
    const int highest = PDLGetInt(kHighestBitRate);
    if (highest > 160 && lowest < 32) {
        MessageBoxRun(Widget(), GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "Lectora",
                      "Your VBR Minimum and Maximum Bitrates are too far apart, which will cause "
                      "problems with the encoder. You must raise the minimum rate above 32 or the "
                      "maximum rate below 160.",
                      "");
        return false;
    }
    if (highest < lowest) {
        SetControlInvalid(kHighestBitRate,
                          "Your VBR Maximum Bitrate cannot be smaller than the Minimum Bitrate.",
                          "Lectora");
        return false;
    }
    return true;
}

bool LMP3EncodeDlg::CmOk() {
    const bool isConstant = GetCheck(kConstant);
    if (!isConstant && !CheckVariableRates())
        return false;
    settings_.constantBitRate = isConstant;
    // A stored rate that no list holds stays as it is until another is chosen.
    const auto take = [this](int list, std::uint16_t& rate) {
        if (PDLGetCurSel(list) >= 0)
            rate = static_cast<std::uint16_t>(PDLGetInt(list));
    };
    take(kConstantRate, settings_.cbrBitRate);
    take(kLowestBitRate, settings_.vbrMinBitRate);
    take(kHighestBitRate, settings_.vbrMaxBitRate);
    settings_.highQuality = GetCheck(kHighQuality);
    settings_.vbrQuality = static_cast<std::uint8_t>(std::max(PDLGetCurSel(kQuality), 0));
    settings_.errorProtection = GetCheck(kErrorProtection);
    settings_.channelMode = static_cast<std::uint8_t>(std::max(PDLGetCurSel(kChannelMode), 0));
    SaveMp3Settings(settings_);
    return true;
}
