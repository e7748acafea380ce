#include "playback/player_transport.h"

#include <algorithm>
#include <limits>

#include "foundation/files/text_buffer.h"
#include "playback/settings_keys.h"

namespace {

constexpr int kPlayerId = 1;
constexpr int kPlayEndMilliseconds = 3000;

std::string NameOf(LSoundPlayDevice device) {
    char name[kTextBufferSize];
    device.GetDeviceName(name);
    return name;
}

}  // namespace

LPlayerTransport::LPlayerTransport(LPlayerBaseInfo& info)
    : info_(info), player_(this, kPlayerId, LSoundPlayDevice()) {
    player_.SetFade(fade_);
    player_.SetTroubleHandler([this](PlayTrouble trouble) { EvTrouble(trouble); });
    player_.SetRouteHandler([this](const PlayRoute& route) { TakeRoute(route); });
}

// The player stops with a notification, which must still find this class.
LPlayerTransport::~LPlayerTransport() {
    Silence();
}

void LPlayerTransport::Prepare() {
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

void LPlayerTransport::KeepSettings() {
    if (!isPrepared_)
        return;
    isPrepared_ = false;
    // A card that is unplugged today plays again when it is back, unless another was chosen.
    kPlayerDevice.Set(missingDevice_.empty() ? NameOf(device_).c_str() : missingDevice_.c_str());
    kPlayerVolume.Set(volume_.Value());
    StoreTempo();
}

void LPlayerTransport::ReadTempo() {
    voice_ = info_.VoiceName();
    tempo_->Set(PlayerTempo(voice_.c_str()).Get());
}

int LPlayerTransport::TempoOf(const std::string& voice) const {
    return isPrepared_ && voice == voice_ ? tempo_->Percent() : PlayerTempo(voice.c_str()).Get();
}

void LPlayerTransport::StoreTempo() {
    PlayerTempo(voice_.c_str()).Set(tempo_->Percent());
}

void LPlayerTransport::Halt() {
    Silence();
    wind_.End();
}

void LPlayerTransport::TakeItem() {
    Halt();
    StoreTempo();
    ReadTempo();
    length_ = LSoundTime();
    time_ = info_.SourceBegin();
    Tell(LPlayerChange::kItem);
}

LSoundSource LPlayerTransport::OpenSource() {
    LSoundSource source;
    info_.OpenSource(source);
    if (source->Status() == SoundStatus::kGood) {
        timeRate_ = source->TimeRate();
        length_ = TimeOf(source->GetEndSample());
    }
    return source;
}

int LPlayerTransport::FrameAt(LSoundTime time) const {
    const int within = std::max(time, info_.SourceBegin()).Milliseconds();
    return LSoundTime(within - info_.SourceBegin().Milliseconds()).ToFrames(timeRate_);
}

LSoundTime LPlayerTransport::TimeOf(int frame) const {
    return Later(LSoundTime::FromFrames(frame, timeRate_));
}

// A time of the source as one of the item.
LSoundTime LPlayerTransport::Later(LSoundTime time) const {
    constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
    const std::int64_t sum = std::int64_t{info_.SourceBegin().Milliseconds()} + time.Milliseconds();
    return LSoundTime(static_cast<std::int32_t>(std::min(sum, kMost)));
}

bool LPlayerTransport::Start(const LSoundSource& source) {
    if (source->Status() != SoundStatus::kGood)
        return false;
    trouble_ = PlayTrouble::kNone;
    SetRouteText("");
    return player_.Start(source);
}

void LPlayerTransport::Play() {
    if (player_.IsCued()) {
        player_.Play();
        return;
    }
    Silence();
    player_.SetTempo(tempo_);
    PlayFrom(OpenSource(), time_);
}

void LPlayerTransport::PlayFrom(const LSoundSource& source, LSoundTime time) {
    if (time != info_.SourceBegin())
        source->Seek(FrameAt(time));
    if (Start(source))
        return;
    trouble_ = PlayTrouble::kCannotOpen;
    Tell(LPlayerChange::kEnded);
}

void LPlayerTransport::Pause() {
    if (!player_.IsLoaded())
        Play();
    player_.Cue();
}

void LPlayerTransport::TogglePause() {
    if (player_.IsCued())
        Play();
    else
        Pause();
}

void LPlayerTransport::Stop() {
    Halt();
    SetTime(LSoundTime());
    Tell(LPlayerChange::kStopped);
}

void LPlayerTransport::PlayEnd() {
    Silence();
    const LSoundSource source = OpenSource();
    player_.SetTempo(tempo_);
    PlayFrom(source, LSoundTime(std::max(length_.Milliseconds() - kPlayEndMilliseconds, 0)));
}

// A player that is moved while it is paused sounds, and still reads paused: Play makes that true.
void LPlayerTransport::MoveTo(LSoundTime time) {
    SetTime(time);
    if (!player_.IsLoaded())
        return;
    player_.Seek(Frame());
    if (player_.IsCued())
        player_.Play();
}

void LPlayerTransport::MoveToEnd() {
    OpenSource();
    MoveTo(length_);
}

void LPlayerTransport::MoveToSentence(int step) {
    if (const auto start = info_.FindSentence(time_, step))
        MoveTo(*start);
}

void LPlayerTransport::Wind(PlayerWind::Way way) {
    if (wind_.IsOn() && !wind_.Is(way))
        return;
    EndWind();
    const auto before = IsPlaying()        ? PlayerWind::Before::kPlaying
                        : player_.IsCued() ? PlayerWind::Before::kCued
                                           : PlayerWind::Before::kIdle;
    Silence();
    const LSoundSource source = OpenSource();
    if (source->Status() != SoundStatus::kGood) {
        Tell(LPlayerChange::kEnded);
        return;
    }
    source->Seek(Frame());
    player_.SetTempo(nullptr);
    Start(wind_.Begin(way, before, source));
}

void LPlayerTransport::EndWind() {
    if (!wind_.IsOn())
        return;
    Silence();
    switch (wind_.End()) {
        case PlayerWind::Before::kPlaying:
            Play();
            break;
        case PlayerWind::Before::kCued:
            Pause();
            break;
        case PlayerWind::Before::kIdle:
            Tell(LPlayerChange::kEnded);
            break;
    }
}

void LPlayerTransport::SetDevice(LSoundPlayDevice device) {
    device_ = device;
    missingDevice_.clear();
    player_.SetDevice(device);
    if (IsPlaying())
        MoveTo(time_);  // on the new card
}

MixerResult LPlayerTransport::SetVolume(LDB volume) {
    volume_ = volume;
    mixerAnswer_ = mixer_.Set(device_, volume);
    Tell(LPlayerChange::kVolume);
    return mixerAnswer_;
}

void LPlayerTransport::SetTempo(int percent) {
    tempo_->Set(percent);
    Tell(LPlayerChange::kTempo);
}

LSoundTime LPlayerTransport::Length() const {
    return std::max(length_, info_.EstimatedLength());
}

bool LPlayerTransport::IsLengthKnown() const {
    return Length() <= length_ && info_.SourceBegin() == LSoundTime();
}

double LPlayerTransport::Pace() const {
    return timeRate_ * (wind_.IsOn() ? wind_.Factor() : tempo_->Percent() / 100.0);
}

void LPlayerTransport::Tell(LPlayerChange change) {
    EvChange(change);
    changes_.Tell(change);
}

void LPlayerTransport::SetTime(LSoundTime time) {
    time_ = std::max(time, LSoundTime());
    Tell(LPlayerChange::kTime);
}

void LPlayerTransport::Silence() {
    isSilencing_ = true;
    player_.Stop();
    isSilencing_ = false;
}

void LPlayerTransport::spntfPlay(int) {
    Tell(LPlayerChange::kPlays);
}

void LPlayerTransport::spntfCue(int) {
    Tell(LPlayerChange::kPaused);
}

void LPlayerTransport::spntfTime(LSoundTime time, int) {
    length_ = std::max(length_, Later(player_.Length()));
    SetTime(Later(time));
}

void LPlayerTransport::spntfLevel(const LDBMC& levels, int) {
    levels_ = levels;
    Tell(LPlayerChange::kLevels);
}

void LPlayerTransport::spntfStop(int) {
    if (isSilencing_)
        return;
    // A wind that reaches an end waits there for its button.
    if (wind_.IsOn())
        return Tell(LPlayerChange::kTime);
    trouble_ = player_.Trouble();
    if (trouble_ == PlayTrouble::kCannotOpen && !routeText_.empty())
        SetRouteText(obstacle_ + ".");
    // The next play begins again.
    if (trouble_ == PlayTrouble::kNone)
        SetTime(LSoundTime());
    Tell(LPlayerChange::kEnded);
}

void LPlayerTransport::EvTrouble(PlayTrouble trouble) {
    Halt();
    trouble_ = trouble;
    Tell(LPlayerChange::kEnded);
}

void LPlayerTransport::TakeRoute(const PlayRoute& route) {
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

void LPlayerTransport::SetRouteText(const std::string& text) {
    if (text == routeText_)
        return;
    routeText_ = text;
    Tell(LPlayerChange::kRoute);
}
