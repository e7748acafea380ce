// What the player panel shows: the item, its time and waveform, levels, speed, and trouble with the
// card.
#include <algorithm>

#include "playback/dialogs/player_panel.h"
#include "playback/dialogs/player_panel_ids.h"

using namespace PlayerPanel;

void LPlayerBaseDlg::ShowItemControls() {
    SetText(kItem, info_.ItemText().c_str());
    SetTextEditable(kItem, !info_.IsItemTextReadOnly());
    wave_.SetSource(OpenSource());
    ShowTempo();
    SetTime(time_, false);
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

LSoundTime LPlayerBaseDlg::ShownLength() const {
    return std::max(length_, info_.EstimatedLength());
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
    return sampleRate_ * (wind_.IsOn() ? wind_.Factor() : tempo_->Percent() / 100.0);
}

void LPlayerBaseDlg::ShowTempo() {
    SBSetPos(kTempo, tempo_->Percent());
    char text[32];
    g_snprintf(text, sizeof text, "%d.%d\u00d7", tempo_->Percent() / 100,
               tempo_->Percent() % 100 / 10);
    SetStaticText(kTempoTime, text);
}

void LPlayerBaseDlg::spntfLevel(const LDBMC& levels, int) {
    DBDisplaySetLevels(kMeter, levels);
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
