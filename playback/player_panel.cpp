#include "playback/player_panel.h"

#include <gdk/gdkkeysyms.h>

#include <algorithm>

#include "playback/player_panel_ids.h"
#include "playback/settings_keys.h"
#include "sound/speed.h"

using namespace PlayerPanel;

namespace {

constexpr int kPlayerId = 1;
constexpr LSoundTime kWindRamp(8000);
constexpr int kPlayEndMilliseconds = 3000;
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
    device_.SetVolumeOverride(LDB(kPlayerVolume.Get()), LDB());
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

void LPlayerBaseDlg::ShowItemControls() {
    SetText(kItem, info_.ItemText().c_str());
    SetTextEditable(kItem, !info_.IsItemTextReadOnly());
    wave_.SetSource(OpenSource());
    ShowTempo();
    SetTime(time_, false);
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
    IsPlaying() && winding_ == Winding::kNone ? SetCoolButtonDown(kPlay) : SetCoolButtonUp(kPlay);
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
            device_.SetVolumeOverride(DBEditGetLevel(kVolume), LDB());
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
    device_.SetVolumeOverride(DBEditGetLevel(kVolume), LDB());
    if (IsPlaying())
        MoveTo(time_);  // on the new card
}

LSoundSource LPlayerBaseDlg::OpenSource() {
    LSoundSource source;
    info_.OpenSource(source);
    if (source->Status() == SoundStatus::kGood) {
        sampleRate_ = source->SampleRate();
        length_ = LSoundTime::FromFrames(source->GetEndSample(), sampleRate_);
    }
    return source;
}

bool LPlayerBaseDlg::StartAt(const LSoundSource& source, LSoundTime time) {
    if (source->Status() != SoundStatus::kGood)
        return false;
    if (time != LSoundTime())
        source->Seek(time.ToFrames(sampleRate_));
    trouble_ = PlayTrouble::kNone;
    SetRouteText("");
    return player_.Start(source);
}

void LPlayerBaseDlg::CmPlay() {
    if (player_.IsCued()) {
        player_.Play();
        return;
    }
    StopPlayer();
    player_.SetTempo(tempo_);
    if (!StartAt(OpenSource(), time_)) {
        trouble_ = PlayTrouble::kCannotOpen;
        EvEnded();
    }
}

void LPlayerBaseDlg::CmScrub() {
    if (!player_.IsLoaded())
        CmPlay();
    player_.Cue();
}

void LPlayerBaseDlg::CmStop() {
    StopPlayer();
    SetTime(LSoundTime(), false);
}

void LPlayerBaseDlg::CmStart() {
    MoveTo(LSoundTime());
}

void LPlayerBaseDlg::CmEnd() {
    OpenSource();
    MoveTo(length_);
}

void LPlayerBaseDlg::CmPlayEnd() {
    StopPlayer();
    const LSoundSource source = OpenSource();
    player_.SetTempo(tempo_);
    StartAt(source, LSoundTime(std::max(length_.Milliseconds() - kPlayEndMilliseconds, 0)));
}

void LPlayerBaseDlg::MoveTo(LSoundTime time) {
    SetTime(time, false);
    if (player_.IsLoaded())
        player_.Seek(time);
}

void LPlayerBaseDlg::CmSentence(int step) {
    if (const auto start = info_.FindSentence(time_, step))
        MoveTo(*start);
}

void LPlayerBaseDlg::CmBack() {
    Wind(false);
}

void LPlayerBaseDlg::CmFwd() {
    Wind(true);
}

void LPlayerBaseDlg::Wind(bool forwards) {
    if (forwards ? rewinding_ : forwarding_)
        return;
    if (rewinding_ || forwarding_)
        CmBackFwdStop();
    const bool wasPlaying = IsPlaying();
    const Winding winding = wasPlaying         ? Winding::kWasPlaying
                            : player_.IsCued() ? Winding::kWasCued
                                               : Winding::kWasIdle;
    StopPlayer();
    const LSoundSource source = OpenSource();
    if (source->Status() != SoundStatus::kGood)
        return;
    source->Seek(time_.ToFrames(sampleRate_));
    if (forwards)
        factors_ = wasPlaying ? WindFactors{1.5, 7.0} : WindFactors{0.1, 3.0};
    else
        factors_ = wasPlaying ? WindFactors{-0.5, -7.0} : WindFactors{-0.1, -3.0};
    windStart_ = g_get_monotonic_time();
    winding_ = winding;
    (forwards ? forwarding_ : rewinding_) = true;
    player_.SetTempo(nullptr);
    StartAt(LSPSpeed(factors_.start, factors_.end, kWindRamp).OpenSource(source), LSoundTime());
}

void LPlayerBaseDlg::CmBackFwdStop() {
    if (!rewinding_ && !forwarding_)
        return;
    StopPlayer();
    const Winding winding = winding_;
    winding_ = Winding::kNone;
    rewinding_ = forwarding_ = false;
    if (winding == Winding::kWasPlaying)
        CmPlay();
    else if (winding == Winding::kWasCued)
        CmScrub();
    else
        EvEnded();
}

void LPlayerBaseDlg::StopPlayer() {
    stopping_ = true;
    player_.Stop();
    stopping_ = false;
}

bool LPlayerBaseDlg::CmSpace() {
    if (player_.IsCued())
        CmPlay();
    else
        CmScrub();
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
            if (!rewinding_)
                CmBack();
            return true;
        case GDK_Right:
            if (!forwarding_)
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

void LPlayerBaseDlg::spntfPlay(int) {
    EnableControls();
}

void LPlayerBaseDlg::spntfCue(int) {
    ShowWave();
    EnableControls();
}

void LPlayerBaseDlg::spntfTime(LSoundTime time, int) {
    length_ = std::max(length_, player_.Length());
    SetTime(time, false);
}

void LPlayerBaseDlg::spntfLevel(const LDBMC& levels, int) {
    DBDisplaySetLevels(kMeter, levels);
}

void LPlayerBaseDlg::spntfStop(int) {
    ShowWave();
    if (!stopping_)
        EnableControls();
    if (stopping_ || rewinding_ || forwarding_)
        return;
    trouble_ = player_.Trouble();
    if (trouble_ == PlayTrouble::kCannotOpen && !routeText_.empty())
        SetRouteText(obstacle_ + ".");
    // The next play begins again.
    if (trouble_ == PlayTrouble::kNone)
        SetTime(LSoundTime(), false);
    EvEnded();
}

void LPlayerBaseDlg::EvTrouble(PlayTrouble trouble) {
    StopPlayer();
    winding_ = Winding::kNone;
    rewinding_ = forwarding_ = false;
    trouble_ = trouble;
    EvEnded();
}

void LPlayerBaseDlg::TakeRoute(const PlayRoute& route) {
    if (route.way == PlayRoute::Way::kAsked)
        return SetRouteText("");
    obstacle_ = "The sound card is not there";
    if (route.isBusy)
        obstacle_ = "The sound card is in use by " +
                    (route.holder.empty() ? "another program" : route.holder);
    SetRouteText(obstacle_ + (route.way == PlayRoute::Way::kAwaited
                                  ? "; trying again..."
                                  : "; playing through the desktop's sound server."));
}

void LPlayerBaseDlg::SetRouteText(const std::string& text) {
    if (text == routeText_)
        return;
    routeText_ = text;
    SetStaticText(kRoute, text.c_str());
    ShowControl(kRoute, !text.empty());
    EvRoute();
}

LSoundTime LPlayerBaseDlg::ShownLength() const {
    return std::max(length_, info_.EstimatedLength());
}

void LPlayerBaseDlg::SetTime(LSoundTime time, bool fromSlider) {
    time_ = std::max(time, LSoundTime());
    ShowTime();
    ShowWave();
    if (fromSlider)
        return;
    const int length = ShownLength().Milliseconds();
    SBSetPos(kPosition,
             length > 0 ? static_cast<int>(std::int64_t{time_.Milliseconds()} * 100 / length) : 0);
}

void LPlayerBaseDlg::ShowTime() {
    char text[kSoundTimeTextSize];
    time_._GetText2(text);
    std::string shown = text;
    const LSoundTime length = ShownLength();
    if (length > LSoundTime()) {
        length._GetText0(text);
        shown += length > length_ ? " of about " : " of ";
        shown += text;
    }
    SetStaticText(kTime, shown.c_str());
}

void LPlayerBaseDlg::ShowWave() {
    const int frame = time_.ToFrames(sampleRate_);
    if (IsPlaying())
        wave_.MoveOn(frame, sampleRate_, Pace());
    else
        wave_.ShowAround(frame, sampleRate_, player_.IsCued());
}

// Frames of the text a second.
double LPlayerBaseDlg::Pace() const {
    if (!rewinding_ && !forwarding_)
        return sampleRate_ * tempo_->Percent() / 100.0;
    const double ramped =
        static_cast<double>(g_get_monotonic_time() - windStart_) / 1000 / kWindRamp.Milliseconds();
    return sampleRate_ * (factors_.start + (factors_.end - factors_.start) * std::min(ramped, 1.0));
}

void LPlayerBaseDlg::ShowTempo() {
    SBSetPos(kTempo, tempo_->Percent());
    char text[32];
    g_snprintf(text, sizeof text, "%d.%d\u00d7", tempo_->Percent() / 100,
               tempo_->Percent() % 100 / 10);
    SetStaticText(kTempoTime, text);
}
