#include "playback/dialogs/player_panel.h"

#include <gdk/gdkkeysyms.h>

#include "gui/accessible.h"
#include "playback/dialogs/play_device_list.h"
#include "playback/dialogs/player_panel_ids.h"

using namespace PlayerPanel;

namespace {

constexpr int kTempoStep = 10;

}  // namespace

LPlayerBaseDlg::LPlayerBaseDlg(LPlayerTransport& transport) : transport_(transport) {
    SetHelpPage("player");
}

void LPlayerBaseDlg::InitDialog() {
    transport_.Prepare();
    DBDisplaySetLevels(kMeter, LDBMC(8, LDB(-36)));
    DBDisplaySetLevels(kMeter, LDBMC(1));
    NameButtons();
    TBSetRange(kPosition, 0, 100);
    KeepValueQuiet(GetControlByID(kPosition));
    HandleHSBChange(kPosition, kPositionMoved);
    HandleHSBChange(kTempo, kTempoMoved);
    SetTooltip(
        kTempo,
        "How many times as fast as the voice itself. Faster (Alt+Page Up), slower (Alt+Page Down)");
    DBEditSetLevel(kVolume, transport_.Volume());
    HandleDBEditChange(kVolume, kVolumeChanged);
    if (HasRoomFor(kDevice)) {
        LSoundPlayDeviceInit(*this, kDevice, transport_.Device());
        HandlePDLSelChange(kDevice, kDeviceChosen);
    }
    SetTooltip(kDevice, "\"The desktop's sound server\" plays where other programs do");
    wave_.Attach(GetControlByID(kWave));
    wave_.seek = [this](std::int64_t frame) {
        transport_.MoveTo(transport_.TimeOf(static_cast<std::int32_t>(frame)));
    };
    ShowRoute();
    ShowItem();
    if (GTK_IS_DIALOG(Widget()))  // else the focus of another window
        FocusControl(kPlay);
    changes_.Begin(transport_.Changes(), [this](LPlayerChange change) { EvChange(change); });
    LSoundPlayDeviceTell(Widget(), transport_.Device(), transport_.MixerAnswer());
}

void LPlayerBaseDlg::NameButtons() {
    struct Button {
        int id;
        const char* tooltip;
        int command;
        int upCommand;
    };
    constexpr Button kButtons[] = {
        {kPlay, "Play (F9)", kPlay, 0},
        {kScrub, "Scrub (Space)", kScrub, 0},
        {kStop, "Stop (Esc)", kStop, 0},
        {kStart, "Go to Start (Home)", kStart, 0},
        {kRewind, "Rewind (<-)", kRewindDown, kRewindUp},
        {kForward, "Forward (->)", kForwardDown, kForwardUp},
        {kEnd, "Go to End (End)", kEnd, 0},
        {kPreviousSentence, "Previous Sentence (Ctrl+Left)", kPreviousSentence, 0},
        {kRepeatSentence, "Repeat Sentence (Ctrl+R)", kRepeatSentence, 0},
        {kNextSentence, "Next Sentence (Ctrl+Right)", kNextSentence, 0},
        {kNextTrack, "Next Track (PgDn)", kNextTrack, 0},
        {kTakeOut, "Take the Player out of the Window", kTakeOut, 0},
        {kPutBack, "Put the Player into the Window", kPutBack, 0},
        {kUnfold, "Volume and Device", kUnfold, 0},
    };
    for (const Button& button : kButtons) {
        if (button.upCommand != 0)
            CoolButtonInitUpDown(button.id, button.id, "", button.command, button.upCommand);
        else
            CoolButtonInit(button.id, button.id, "");
        SetTooltip(button.id, button.tooltip);
    }
}

void LPlayerBaseDlg::DestroyDialog() {
    changes_.End();
    wave_.LetGo();
    transport_.KeepSettings();
}

void LPlayerBaseDlg::EnableControls() {
    EnableControl(kStop, IsLoaded());
    const LPlayerBaseInfo& info = transport_.Info();
    const bool hasSentences = info.FindSentence(LSoundTime(), 0).has_value();
    for (const int id : {kPreviousSentence, kRepeatSentence, kNextSentence})
        ShowControl(id, hasSentences && HasRoomFor(id));
    ShowControl(kNextTrack, info.HasNextItem());
    IsPlaying() && !transport_.Winding().IsOn() ? SetCoolButtonDown(kPlay) : SetCoolButtonUp(kPlay);
    transport_.IsPaused() ? SetCoolButtonDown(kScrub) : SetCoolButtonUp(kScrub);
}

void LPlayerBaseDlg::Command(int command) {
    switch (command) {
        case kPlay:
            CmPlay();
            break;
        case kScrub:
            CmScrub();
            break;
        case kStop:
            CmStop();
            break;
        case kStart:
            CmStart();
            break;
        case kEnd:
            CmEnd();
            break;
        case kRewindDown:
            CmBack();
            break;
        case kForwardDown:
            CmFwd();
            break;
        case kRewindUp:
        case kForwardUp:
            CmBackFwdStop();
            break;
        case kPreviousSentence:
            CmSentence(-1);
            break;
        case kRepeatSentence:
            CmSentence(0);
            break;
        case kNextSentence:
            CmSentence(1);
            break;
        case kNextTrack:
            transport_.NextItem();
            break;
        case kPositionMoved:
            CmPositionMoved();
            break;
        case kDeviceChosen:
            TakeDevice();
            break;
        case kVolumeChanged:
            SetVolume(DBEditGetLevel(kVolume));
            break;
        case kTempoMoved:
            ChangeTempo(SBGetPos(kTempo));
            break;
        default:
            break;
    }
}

void LPlayerBaseDlg::CmPositionMoved() {
    isSliderMoving_ = true;
    transport_.MoveTo(LSoundTime(static_cast<int>(std::int64_t{SBGetPos(kPosition)} *
                                                  transport_.Length().Milliseconds() / 100)));
    isSliderMoving_ = false;
}

void LPlayerBaseDlg::TakeDevice() {
    transport_.SetDevice(LSoundPlayDeviceChosen(*this, kDevice));
    SetVolume(DBEditGetLevel(kVolume));
}

void LPlayerBaseDlg::SetVolume(LDB volume) {
    const MixerResult result = transport_.SetVolume(volume);
    LSoundPlayDeviceTell(Widget(), transport_.Device(), result);
}

void LPlayerBaseDlg::ChangeTempo(int percent) {
    transport_.SetTempo(percent);
}

bool LPlayerBaseDlg::CmSpace() {
    transport_.TogglePause();
    return true;
}

bool LPlayerBaseDlg::EvKeyDown(unsigned int key) {
    struct Row {
        LKeyCode key;
        int command;
    };
    constexpr Row kRows[] = {
        {GDK_F9, kPlay},
        {GDK_Home, kStart},
        {GDK_End, kEnd},
        {kKeyControl | GDK_Left, kPreviousSentence},
        {kKeyControl | GDK_R, kRepeatSentence},
        {kKeyControl | GDK_Right, kNextSentence},
    };
    switch (key) {
        case kKeyAlt | GDK_F9:
            CmPlayEnd();
            return true;
        case GDK_F10:
        case GDK_space:
            return CmSpace();
        case GDK_Escape:
            if (!IsLoaded())
                return false;  // there is nothing to stop: the panel closes
            CmStop();
            EnableControls();
            return true;
        // A key that is held repeats its press, which must not begin the winding anew.
        case GDK_Left:
            if (!transport_.Winding().Is(PlayerWind::Way::kBack))
                CmBack();
            return true;
        case GDK_Right:
            if (!transport_.Winding().Is(PlayerWind::Way::kForward))
                CmFwd();
            return true;
        case GDK_KP_Enter:
            DeliverCommand(kCommandOk);
            return true;
        case kKeyAlt | GDK_Page_Up:
        case kKeyAlt | GDK_Page_Down:
            ChangeTempo(transport_.TempoPercent() +
                        (key == (kKeyAlt | GDK_Page_Up) ? kTempoStep : -kTempoStep));
            return true;
        default:
            break;
    }
    for (const Row& row : kRows) {
        if (row.key == key) {
            DeliverCommand(row.command);
            return true;
        }
    }
    return LKeyDialog::EvKeyDown(key);
}

bool LPlayerBaseDlg::EvKeyUp(unsigned int key) {
    if ((key & 0xFFFF) != GDK_Left && (key & 0xFFFF) != GDK_Right)
        return false;
    CmBackFwdStop();
    EnableControls();
    return true;
}
