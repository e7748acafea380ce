// The dialogs that set up file formats.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "formats/dialogs/aiff_settings_dialog.h"
#include "formats/dialogs/au_settings_dialog.h"
#include "formats/dialogs/mp3_encode_dialog.h"
#include "formats/dialogs/raw_settings_dialog.h"
#include "formats/dialogs/wave_encode_dialog.h"
#include "formats/wave_file.h"
#include "foundation/settings.h"
#include "tests/gui/gui_fixtures.h"

namespace {

enum : int { kSettings = 101, kFormat = 103, kRate = 105, kChannels = 107, kDefaults = 110 };
enum : int { kMp3Constant = 103, kMp3Variable = 107, kMp3Lowest = 108, kMp3Highest = 110 };
enum : int { kRawCodecList = 101, kRawRate = 103, kRawChannels = 105 };

TEST(WaveEncodeDialog, FillsTheRecordByPresetOrChoice) {
    const struct {
        int preset, format, rate, channels;
        unsigned tag, channelCount, samplesPerSecond;
    } cases[] = {
        {0, 0, 0, 0, 1, 2, 44100}, {1, 0, 0, 0, 1, 2, 44100}, {2, 0, 0, 0, 1, 2, 22050},
        {3, 0, 0, 0, 1, 1, 8000},  {4, 1, 2, 2, 1, 2, 8000},  {4, 0, 12, 1, 1, 1, 196000},
        {4, 0, 0, 0, 1, 2, 11025},  // Auto leaves the record's rate
        {4, 2, 7, 2, 49, 1, 8000},  // GSM has one rate
    };
    for (const auto& c : cases) {
        LUserSettingSetString("Settings", "WavFormatPreset", "");
        LWaveFileFormat format(11025, 1, "PCM");
        LWaveEncodeDlg dialog(format);
        UserScript user({[&] {
            EXPECT_EQ(dialog.PDLGetCurSel(kSettings), 0);
            EXPECT_FALSE(dialog.IsControlEnabled(kRate));
            dialog.PDLSetCurSel(kSettings, c.preset);
            dialog.PDLSetCurSel(kRate, c.rate);
            dialog.PDLSetCurSel(kChannels, c.channels);
            dialog.PDLSetCurSel(kFormat, c.format);
            EXPECT_EQ(dialog.IsControlEnabled(kFormat), c.preset == 4);
            EXPECT_EQ(dialog.IsControlEnabled(kRate + 1), c.preset == 4 && c.format != 2);
            dialog.DoOKButton();
        }});
        EXPECT_TRUE(dialog.Run(nullptr));
        EXPECT_EQ(format.tag, c.tag);
        EXPECT_EQ(format.channels, c.channelCount);
        EXPECT_EQ(format.samplesPerSecond, c.samplesPerSecond);
        EXPECT_EQ(format.bitsPerSample, 16);
        EXPECT_EQ(LUserSettingGetInt("Settings", "WavFormatPreset", -1), c.preset);
    }
}

TEST(WaveEncodeDialog, ShowsTheRecordWhenCustomAndCancelsWithoutTrace) {
    LUserSettingSetString("Settings", "WavFormatPreset", "4");
    LWaveFileFormat format(22050, 2, "ULAW");
    LWaveEncodeDlg dialog(format);
    UserScript user({[&] {
        EXPECT_EQ(dialog.PDLGetText(kFormat), "GSM");  // whatever is not PCM
        EXPECT_EQ(dialog.PDLGetText(kRate), "22050");
        EXPECT_EQ(dialog.PDLGetText(kChannels), "2");
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
    const struct {
        const char* typed;
        bool accepted;
    } cases[] = {{"5999", false},       {"196001", false}, {"", false},
                 {"4294973296", false}, {"6000", true},    {"196000", true}};
    for (const auto& c : cases) {
        LRawSettings settings{44100, 2, kRawMuLaw};
        LRawSettingsDialog dialog(settings, "GuiTestRaw");
        EXPECT_FALSE(dialog.Open(nullptr));
        EXPECT_FALSE(dialog.IsOpen());
        bool stillOpen = false;
        UserScript user({[&] {
                             EXPECT_EQ(dialog.PDLGetText(kRawCodecList), "G711 uLaw");
                             EXPECT_EQ(dialog.PDLGetText(kRawRate), "44100");
                             EXPECT_EQ(dialog.PDLGetText(kRawChannels), "Stereo");
                             dialog.PDLSetCurSel(kRawCodecList, kRawFloat);
                             dialog.PDLSetCurSel(kRawChannels, 0);
                             dialog.PDLSetText(kRawRate, c.typed);
                             dialog.DoOKButton();
                         },
                         [&] {
                             stillOpen = dialog.IsOpen();
                             dialog.DoCANCELButton();
                         }});
        LDialog& shown = dialog;
        EXPECT_EQ(shown.Open(nullptr, {"Raw", false, DlgGenRawSettings}, true), c.accepted)
            << c.typed;
        EXPECT_EQ(settings.codec, c.accepted ? kRawFloat : kRawMuLaw);
        EXPECT_EQ(settings.channels, c.accepted ? 1 : 2);
        if (c.accepted) {
            EXPECT_EQ(LUserSettingGet("GuiTestRaw", "SampleRate"), c.typed);
        } else {
            EXPECT_TRUE(stillOpen);
        }
    }
}

TEST(Mp3Dialog, StoresWhatTheEncoderCanBear) {
    const struct {
        const char* lowest;
        const char* highest;
        const char* accepted;  // the highest rate that is stored at last
    } cases[] = {{"128", "112", "128"}, {"32", "320", "320"}};
    for (const auto& c : cases) {
        LMp3EncodeSettings settings;
        SaveMp3Settings(settings);
        LMP3EncodeDlg dialog(settings);
        UserScript user({[&] {
                             EXPECT_EQ(dialog.PDLGetText(kMp3Constant + 1), "128");
                             EXPECT_FALSE(dialog.IsControlEnabled(kMp3Lowest));
                             gtk_button_clicked(ButtonOf(dialog, kMp3Variable));
                             EXPECT_FALSE(dialog.IsControlEnabled(kMp3Constant + 1));
                             dialog.PDLSetText(kMp3Lowest, c.lowest);
                             dialog.PDLSetText(kMp3Highest, c.highest);
                             EXPECT_TRUE(dialog.IsControlEnabled(kMp3Lowest));
                             dialog.DoOKButton();
                         },
                         [&] {
                             if (!dialog.IsOpen())
                                 return;
                             dialog.PDLSetText(kMp3Highest, c.accepted);
                             dialog.DoOKButton();
                         }});
        EXPECT_TRUE(dialog.Run(nullptr));
        EXPECT_EQ(std::to_string(LoadMp3Settings().vbrMaxBitRate), c.accepted);
        EXPECT_EQ(std::to_string(settings.vbrMinBitRate), c.lowest);
        EXPECT_FALSE(LoadMp3Settings().constantBitRate);
    }
}

TEST(AuAndAiffDialogs, KeepTheirChoicesInTheSettings) {
    for (const char* section : {"AuEncoder", "AIFFEncode"}) {
        for (const char* key : {"SampleRate", "Channels", "CodecIndex"})
            LUserSettingSetString(section, key, nullptr);
    }
    LAuSettingsDlg au;
    LAIFFSettingsDlg aiff;
    EXPECT_FALSE(aiff.Open(nullptr));
    EXPECT_FALSE(aiff.IsOpen());
    LDialog& aiffShown = aiff;
    const struct {
        std::function<bool()> open;
        LDialog& dialog;
        int codec, rate, channels;  // control ids, -1 for none
        const char* section;
    } cases[] = {
        {[&] { return au.Run(nullptr); }, au, 101, 103, 105, "AuEncoder"},
        {[&] {
             return aiffShown.Open(nullptr, {"AIFF", false, DlgGenAIFFEncode}, true);
         },
         aiff, -1, 101, 103, "AIFFEncode"},
    };
    for (const auto& c : cases) {
        UserScript user({[&] {
            EXPECT_EQ(c.dialog.PDLGetText(c.rate), "44100");
            EXPECT_EQ(c.dialog.PDLGetText(c.channels), "Stereo");
            c.dialog.PDLSetCurSel(c.codec, 3);
            c.dialog.PDLSetCurSel(c.rate, 1);
            c.dialog.PDLSetCurSel(c.channels, 0);
            c.dialog.DoOKButton();
        }});
        EXPECT_TRUE(c.open());
        EXPECT_EQ(LUserSettingGet(c.section, "SampleRate"), "8000");
        EXPECT_EQ(LUserSettingGet(c.section, "Channels"), "1");
        UserScript again({[&] {
            EXPECT_EQ(c.dialog.PDLGetText(c.rate) + c.dialog.PDLGetText(c.channels), "8000Mono");
            gtk_button_clicked(ButtonOf(c.dialog, kDefaults));
            EXPECT_EQ(c.dialog.PDLGetText(c.rate) + c.dialog.PDLGetText(c.channels), "44100Stereo");
            c.dialog.DoCANCELButton();
        }});
        EXPECT_FALSE(c.open());
        EXPECT_EQ(LUserSettingGet(c.section, "SampleRate"), "8000");
    }
    EXPECT_EQ(LUserSettingGet("AuEncoder", "CodecIndex"), "3");
}

}  // namespace
