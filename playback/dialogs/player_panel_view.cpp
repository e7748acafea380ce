// What the player panel shows: the item, its time and waveform, levels, speed, and trouble with the
// card.
#include "gui/widgets/ticking_text.h"
#include "playback/dialogs/player_panel.h"
#include "playback/dialogs/player_panel_ids.h"

using namespace PlayerPanel;

void LPlayerBaseDlg::EvChange(LPlayerChange change) {
    switch (change) {
        case LPlayerChange::kItem:
            ShowItem();
            break;
        case LPlayerChange::kTime:
            ShowTime();
            break;
        case LPlayerChange::kLevels:
            DBDisplaySetLevels(kMeter, transport_.Levels());
            break;
        case LPlayerChange::kRoute:
            ShowRoute();
            break;
        case LPlayerChange::kTempo:
            ShowTempo();
            break;
        case LPlayerChange::kVolume:
            // Set by somebody else; what is being typed here is left alone.
            if (DBEditGetLevel(kVolume) != transport_.Volume())
                DBEditSetLevel(kVolume, transport_.Volume());
            break;
        case LPlayerChange::kPlays:
        case LPlayerChange::kPaused:
        case LPlayerChange::kStopped:
        case LPlayerChange::kEnded:
            ShowWave();
            break;
    }
    // The time is told four times a second, and changes no control.
    if (change != LPlayerChange::kTime && change != LPlayerChange::kLevels)
        EnableControls();
}

void LPlayerBaseDlg::ShowItem() {
    const LPlayerBaseInfo& info = transport_.Info();
    SetText(kItem, info.ItemText().c_str());
    SetTextEditable(kItem, !info.IsItemTextReadOnly());
    wave_.SetSource(transport_.OpenSource());
    ShowTempo();
    ShowTime();
}

void LPlayerBaseDlg::ShowTime() {
    char text[kSoundTimeTextSize];
    transport_.Time()._GetText2(text);
    std::string shown = text;
    // Four times a second is more than a screen reader takes in beside other news.
    std::string told = IsPlaying() ? shown.substr(0, shown.find('.')) : shown;
    const LSoundTime length = transport_.Length();
    if (length > LSoundTime()) {
        length._GetText0(text);
        const std::string whole =
            (transport_.IsLengthKnown() ? " of " : " of about ") + std::string(text);
        shown += whole;
        told += whole;
    }
    SetTickingText(GetControlByID(kTime), shown, told);
    ShowWave();
    if (!isSliderMoving_)
        ShowPosition();
}

void LPlayerBaseDlg::ShowPosition() {
    const std::int64_t length = transport_.Length().Milliseconds();
    const std::int64_t time = transport_.Time().Milliseconds();
    SBSetPos(kPosition, length > 0 ? static_cast<int>(time * 100 / length) : 0);
}

void LPlayerBaseDlg::ShowWave() {
    const int rate = transport_.TimeRate();
    const int frame = transport_.Frame();
    if (IsPlaying())
        wave_.MoveOn(frame, rate, transport_.Pace());
    else
        wave_.ShowAround(frame, rate, transport_.IsPaused());
}

void LPlayerBaseDlg::ShowTempo() {
    const int percent = transport_.TempoPercent();
    SBSetPos(kTempo, percent);
    char text[32];
    g_snprintf(text, sizeof text, "%d.%d\u00d7", percent / 100, percent % 100 / 10);
    SetStaticText(kTempoTime, text);
}

void LPlayerBaseDlg::ShowRoute() {
    SetStaticText(kRoute, transport_.RouteText().c_str());
    ShowControl(kRoute, !transport_.RouteText().empty() && HasRoomFor(kRoute));
}
