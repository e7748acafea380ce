// The dialogs that set up file formats.
#include <gtest/gtest.h>

#include "formats/dialogs/aiff_settings_dialog.h"
#include "formats/dialogs/au_settings_dialog.h"
#include "formats/dialogs/mp3_encode_dialog.h"
#include "formats/dialogs/raw_settings_dialog.h"
#include "formats/dialogs/wave_encode_dialog.h"
#include "foundation/settings/settings.h"
#include "tests/gui/gui_fixtures.h"

namespace {

enum : int { kSettings = 101, kFormat = 103, kRate = 105, kChannels = 107, kDefaults = 110 };
enum : int { kMp3Constant = 103, kMp3Variable = 107, kMp3Lowest = 108, kMp3Highest = 110 };
enum : int { kRawCodecList = 101, kRawRate = 103, kRawChannels = 105 };

void Show(LDialog& dialog, void (*generator)(LDialogGenContext&)) {
    EXPECT_TRUE(dialog.Open(nullptr, {"Settings", false, generator}, false));
}

// What the lists show, one after the other.
std::string Shown(const LDialog& dialog, const std::vector<int>& lists) {
    std::string shown;
    for (const int list : lists)
        shown += dialog.PDLGetText(list) + " ";
    return shown;
}

TEST(WaveEncodeDialog, FillsTheRecordByPresetOrChoice) {
    const struct {
        int preset, format, rate, channels;
        std::tuple<int, int, unsigned> chosen;  // tag, channels, rate
    } cases[] = {
        {0, 0, 0, 0, {1, 2, 44100}}, {1, 0, 0, 0, {1, 2, 44100}}, {2, 0, 0, 0, {1, 2, 22050}},
        {3, 0, 0, 0, {1, 1, 8000}},  {4, 1, 2, 2, {1, 2, 8000}},  {4, 0, 12, 1, {1, 1, 196000}},
        {4, 0, 0, 0, {1, 2, 11025}},  // Auto leaves the record's rate
        {4, 2, 7, 2, {49, 1, 8000}},  // GSM has one rate
    };
    for (const auto& c : cases) {
        LUserSettingSetString("Settings", "WavFormatPreset", "");
        LWaveFileFormat format(11025, 1, "PCM");
        LWaveEncodeDlg dialog(format);
        Show(dialog, DlgGenLWaveEncodeDlg);
        EXPECT_FALSE(dialog.IsControlEnabled(kRate));
        dialog.PDLSetCurSel(kSettings, c.preset);
        dialog.PDLSetCurSel(kRate, c.rate);
        dialog.PDLSetCurSel(kChannels, c.channels);
        dialog.PDLSetCurSel(kFormat, c.format);
        EXPECT_EQ(dialog.IsControlEnabled(kFormat), c.preset == 4);
        EXPECT_EQ(dialog.IsControlEnabled(kRate + 1), c.preset == 4 && c.format != 2);
        EXPECT_TRUE(dialog.CmOk());
        EXPECT_EQ(std::tuple(format.tag, format.channels, format.samplesPerSecond), c.chosen);
        EXPECT_EQ(format.bitsPerSample, 16);
        EXPECT_EQ(LUserSettingGetInt("Settings", "WavFormatPreset", -1), c.preset);
    }
}

TEST(WaveEncodeDialog, ShowsTheRecordWhenCustomAndCancelsWithoutTrace) {
    LUserSettingSetString("Settings", "WavFormatPreset", "4");
    LWaveFileFormat format(22050, 2, "ULAW");
    LWaveEncodeDlg dialog(format);
    const UserScript user({[&] {
        EXPECT_EQ(Shown(dialog, {kFormat, kRate, kChannels}), "GSM 22050 2 ") << "GSM: not PCM";
        gtk_button_clicked(ButtonOf(dialog, kDefaults));
        EXPECT_EQ(dialog.PDLGetCurSel(kSettings), 0);
        EXPECT_EQ(dialog.PDLGetText(kRate), "Auto");
        dialog.DoCANCELButton();
    }});
    EXPECT_FALSE(dialog.Run(nullptr));
    EXPECT_EQ(format.samplesPerSecond, 22050u);
    EXPECT_EQ(LUserSettingGet("Settings", "WavFormatPreset"), "4");
}

TEST(RawSettingsDialog, AcceptsRatesFrom6000To196000) {
    LRawSettings settings{44100, 2, kRawMuLaw};
    LRawSettingsDialog dialog(settings, "GuiTestRaw");
    EXPECT_FALSE(dialog.Open(nullptr)) << "nothing offers it";
    Show(dialog, DlgGenRawSettings);
    EXPECT_EQ(Shown(dialog, {kRawCodecList, kRawRate, kRawChannels}), "G711 uLaw 44100 Stereo ");
    dialog.PDLSetCurSel(kRawCodecList, kRawFloat);
    dialog.PDLSetCurSel(kRawChannels, 0);
    for (const char* refused : {"5999", "196001", "", "4294973296"}) {
        dialog.PDLSetText(kRawRate, refused);
        EXPECT_FALSE(dialog.CmOk()) << refused;
    }
    EXPECT_EQ(settings.codec, kRawMuLaw);
    for (const char* accepted : {"6000", "196000"}) {
        dialog.PDLSetText(kRawRate, accepted);
        EXPECT_TRUE(dialog.CmOk()) << accepted;
        EXPECT_EQ(LUserSettingGet("GuiTestRaw", "SampleRate"), accepted);
    }
    EXPECT_EQ(settings.codec, kRawFloat);
    EXPECT_EQ(settings.channels, 1);
}

TEST(Mp3Dialog, StoresWhatTheEncoderCanBear) {
    LMp3EncodeSettings settings;
    LMP3EncodeDlg dialog(settings);
    Show(dialog, DlgGenMP3Encode);
    EXPECT_EQ(dialog.PDLGetText(kMp3Constant + 1), "128");
    EXPECT_FALSE(dialog.IsControlEnabled(kMp3Lowest));
    gtk_button_clicked(ButtonOf(dialog, kMp3Variable));
    EXPECT_FALSE(dialog.IsControlEnabled(kMp3Constant + 1));
    EXPECT_TRUE(dialog.IsControlEnabled(kMp3Lowest));
    const struct {
        int lowest, highest;
        bool accepted;
    } cases[] = {{128, 112, false}, {128, 128, true}, {32, 320, true}};
    for (const auto& c : cases) {
        dialog.PDLSetInt(kMp3Lowest, c.lowest);
        dialog.PDLSetInt(kMp3Highest, c.highest);
        EXPECT_EQ(dialog.CmOk(), c.accepted) << c.highest;
        EXPECT_EQ(LoadMp3Settings().vbrMaxBitRate == c.highest, c.accepted) << c.highest;
    }
    EXPECT_EQ(settings.vbrMinBitRate, 32);
    EXPECT_FALSE(LoadMp3Settings().constantBitRate);
}

TEST(AuAndAiffDialogs, KeepTheirChoicesInTheSettings) {
    LAuSettingsDlg au;
    LAIFFSettingsDlg aiff;
    EXPECT_FALSE(aiff.Open(nullptr)) << "nothing offers it";
    const struct {
        LDialog& dialog;
        void (*generator)(LDialogGenContext&);
        const char* section;
        int rate;  // id of its list; two above the channels, two below the codec of AU
    } cases[] = {{au, DlgGenAuEncode, "AuEncoder", 103},
                 {aiff, DlgGenAIFFEncode, "AIFFEncode", 101}};
    for (const auto& c : cases) {
        for (const char* key : {"SampleRate", "Channels", "CodecIndex"})
            LUserSettingSetString(c.section, key, nullptr);
        const auto shown = [&] { return Shown(c.dialog, {c.rate, c.rate + 2}); };
        Show(c.dialog, c.generator);
        EXPECT_EQ(shown(), "44100 Stereo ");
        c.dialog.PDLSetCurSel(c.rate - 2, 3);
        c.dialog.PDLSetCurSel(c.rate, 1);
        c.dialog.PDLSetCurSel(c.rate + 2, 0);
        EXPECT_TRUE(c.dialog.CmOk());
        EXPECT_EQ(LUserSettingGet(c.section, "SampleRate"), "8000");
        EXPECT_EQ(LUserSettingGet(c.section, "Channels"), "1");
        c.dialog.Close(0);
        Show(c.dialog, c.generator);
        EXPECT_EQ(shown(), "8000 Mono ");
        gtk_button_clicked(ButtonOf(c.dialog, kDefaults));
        EXPECT_EQ(shown(), "44100 Stereo ");
    }
    EXPECT_EQ(LUserSettingGet("AuEncoder", "CodecIndex"), "3");
}

}  // namespace
