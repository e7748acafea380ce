#include "playback/dialogs/player_panel.h"

#include <gdk/gdkkeysyms.h>

#include "playback/dialogs/play_device_list.h"
#include "playback/dialogs/player_panel_ids.h"
#include "playback/settings_keys.h"

using namespace PlayerPanel;

namespace {

constexpr int kPlayerId = 1;
constexpr int kTempoStep = 10;

std::string NameOf(LSoundPlayDevice device) {
    char name[kTextBufferSize];
    device.GetDeviceName(name);
    return name;
}

}  // namespace

LPlayerBaseDlg::LPlayerBaseDlg(LPlayerBaseInfo& info)
    : info_(info),
      tempo_(std::make_shared<LTempo>()),
      player_(this, kPlayerId, LSoundPlayDevice()) {
    player_.SetTroubleHandler([this](PlayTrouble trouble) { EvTrouble(trouble); });
    player_.SetRouteHandler([this](const PlayRoute& route) { TakeRoute(route); });
    SetHelpPage("player");
}

// The player stops with a notification, which must still find this class.
LPlayerBaseDlg::~LPlayerBaseDlg() {
    StopPlayer();
}

void LPlayerBaseDlg::Prepare() {
    if (isPrepared_)
        return;
    isPrepared_ = true;
    const std::string kept = kPlayerDevice.Get();
    device_ = LSoundPlayDevice(kept.c_str());
    const bool isMissing =
        !kept.empty() && kept != NameOf(device_) && kept != kPlayerDevice.defaultValue;
    missingDevice_ = isMissing ? kept : "";
    player_.SetDevice(device_);
    SetVolume(LDB(kPlayerVolume.Get()));
    ReadTempo();
}

void LPlayerBaseDlg::InitDialog() {
    Prepare();
    DBDisplaySetLevels(kMeter, LDBMC(8, LDB(-36)));
    DBDisplaySetLevels(kMeter, LDBMC(1));
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
        {kRepeatSentence, "Repeat Sentence (Ctrl+Down)", kRepeatSentence, 0},
        {kNextSentence, "Next Sentence (Ctrl+Right)", kNextSentence, 0},
        {kNextTrack, "Next Track (PgDn)", kNextTrack, 0},
    };
    for (const Button& button : kButtons) {
        if (button.upCommand != 0)
            CoolButtonInitUpDown(button.id, button.id, "", button.command, button.upCommand);
        else
            CoolButtonInit(button.id, button.id, "");
        SetTooltip(button.id, button.tooltip);
    }
    TBSetRange(kPosition, 0, 100);
    HandleHSBChange(kPosition, kPositionMoved);
    HandleHSBChange(kTempo, kTempoMoved);
    SetTooltip(kTempo,
               "How many times as fast as the voice itself. Faster (Ctrl+Up), slower (Ctrl+-)");
    DBEditSetLevel(kVolume, LDB(kPlayerVolume.Get()));
    HandleDBEditChange(kVolume, kVolumeChanged);
    LSoundPlayDeviceInit(*this, kDevice, device_);
    HandlePDLSelChange(kDevice, kDeviceChosen);
    SetTooltip(kDevice, "\"default\" is the desktop's own sound server");
    wave_.Attach(GetControlByID(kWave));
    wave_.seek = [this](std::int64_t frame) {
        MoveTo(LSoundTime::FromFrames(static_cast<std::int32_t>(frame), sampleRate_));
    };
    SetStaticText(kRoute, routeText_.c_str());
    ShowControl(kRoute, !routeText_.empty());
    ShowItemControls();
    FocusControl(kPlay);
}

void LPlayerBaseDlg::ShowItem() {
    StopPlayer();
    StoreTempo();
    ReadTempo();
    time_ = length_ = LSoundTime();
    ShowItemControls();
}

void LPlayerBaseDlg::DestroyDialog() {
    StopPlayer();
    wave_.LetGo();
    // A card that is unplugged today plays again when it is back, unless another was chosen.
    kPlayerDevice.Set(missingDevice_.empty() ? NameOf(device_).c_str() : missingDevice_.c_str());
    kPlayerVolume.Set(DBEditGetLevel(kVolume).Value());
    StoreTempo();
    isPrepared_ = false;
}

void LPlayerBaseDlg::ReadTempo() {
    voice_ = info_.VoiceName();
    tempo_->Set(PlayerTempo(voice_.c_str()).Get());
}

void LPlayerBaseDlg::StoreTempo() {
    PlayerTempo(voice_.c_str()).Set(tempo_->Percent());
}

void LPlayerBaseDlg::EnableControls() {
    EnableControl(kStop, player_.IsLoaded());
    const bool hasSentences = info_.FindSentence(LSoundTime(), 0).has_value();
    for (const int id : {kPreviousSentence, kRepeatSentence, kNextSentence})
        ShowControl(id, hasSentences);
    ShowControl(kNextTrack, info_.HasNextItem());
    IsPlaying() && !wind_.IsOn() ? SetCoolButtonDown(kPlay) : SetCoolButtonUp(kPlay);
    player_.IsCued() ? SetCoolButtonDown(kScrub) : SetCoolButtonUp(kScrub);
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
        case kPositionMoved:
            SetTime(LSoundTime(static_cast<int>(std::int64_t{SBGetPos(kPosition)} *
                                                ShownLength().Milliseconds() / 100)),
                    true);
            if (player_.IsLoaded())
                player_.Seek(time_);
            break;
        case kDeviceChosen:
            TakeDevice();
            break;
        case kVolumeChanged:
            SetVolume(DBEditGetLevel(kVolume));
            break;
        case kTempoMoved:
            tempo_->Set(SBGetPos(kTempo));
            ShowTempo();
            break;
        default:
            break;
    }
}

void LPlayerBaseDlg::TakeDevice() {
    device_ = LSoundPlayDeviceChosen(*this, kDevice);
    missingDevice_.clear();
    player_.SetDevice(device_);
    SetVolume(DBEditGetLevel(kVolume));
    if (IsPlaying())
        MoveTo(time_);  // on the new card
}

void LPlayerBaseDlg::SetVolume(LDB volume) {
    LSoundPlayDeviceTell(Widget(), device_, device_.SetVolumeOverride(volume, LDB()));
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
        {kKeyControl | GDK_Down, kRepeatSentence},
        {kKeyControl | GDK_Right, kNextSentence},
    };
    switch (key) {
        case kKeyAlt | GDK_F9:
            CmPlayEnd();
            return true;
        case GDK_F10:
            return CmSpace();
        case GDK_space:
            // A name that is being edited takes its blanks.
            return !(IsTextEditable(kItem) && gtk_widget_has_focus(GetControlByID(kItem))) &&
                   CmSpace();
        case GDK_Escape:
            if (!player_.IsLoaded())
                return false;  // there is nothing to stop: the panel closes
            CmStop();
            EnableControls();
            return true;
        // A key that is held repeats its press, which must not begin the winding anew.
        case GDK_Left:
            if (!wind_.Is(PlayerWind::Way::kBack))
                CmBack();
            return true;
        case GDK_Right:
            if (!wind_.Is(PlayerWind::Way::kForward))
                CmFwd();
            return true;
        case GDK_KP_Enter:
            DeliverCommand(kCommandOk);
            return true;
        case kKeyControl | GDK_Up:
        case kKeyControl | GDK_minus:
            tempo_->Set(tempo_->Percent() +
                        (key == (kKeyControl | GDK_Up) ? kTempoStep : -kTempoStep));
            ShowTempo();
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
