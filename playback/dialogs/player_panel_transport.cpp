// The player panel's transport: what plays, from where, and what the player says of it.
#include <algorithm>

#include "playback/dialogs/player_panel.h"

namespace {

constexpr int kPlayEndMilliseconds = 3000;

}  // namespace

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
    Wind(PlayerWind::Way::kBack);
}

void LPlayerBaseDlg::CmFwd() {
    Wind(PlayerWind::Way::kForward);
}

void LPlayerBaseDlg::Wind(PlayerWind::Way way) {
    if (wind_.IsOn() && !wind_.Is(way))
        return;
    CmBackFwdStop();
    const auto before = IsPlaying()        ? PlayerWind::Before::kPlaying
                        : player_.IsCued() ? PlayerWind::Before::kCued
                                           : PlayerWind::Before::kIdle;
    StopPlayer();
    const LSoundSource source = OpenSource();
    if (source->Status() != SoundStatus::kGood)
        return;
    source->Seek(time_.ToFrames(sampleRate_));
    player_.SetTempo(nullptr);
    StartAt(wind_.Begin(way, before, source), LSoundTime());
}

void LPlayerBaseDlg::CmBackFwdStop() {
    if (!wind_.IsOn())
        return;
    StopPlayer();
    switch (wind_.End()) {
        case PlayerWind::Before::kPlaying:
            CmPlay();
            break;
        case PlayerWind::Before::kCued:
            CmScrub();
            break;
        case PlayerWind::Before::kIdle:
            EvEnded();
            break;
    }
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

void LPlayerBaseDlg::spntfStop(int) {
    ShowWave();
    if (!stopping_)
        EnableControls();
    if (stopping_ || wind_.IsOn())
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
    wind_.End();
    trouble_ = trouble;
    EvEnded();
}
