#include "playback/sound_player.h"

#include "sound/convert.h"

namespace {

// The player's own hold on a source. Counts of handles are not atomic: the player thread, which
// wraps what it plays, changes the count of this object only, while the caller drops its handle.
class OwnedSource final : public LSoundProcessBase {
public:
    explicit OwnedSource(const LSoundSource& inner) : LSoundProcessBase(inner) {}
    void Read(int* buffer, int frames) override { inner_->Read(buffer, frames); }
};

}  // namespace

// Without a listener the player listens to itself, which does nothing.
LSoundPlayer::LSoundPlayer(LSoundPlayerNotify* listener, int id, LSoundPlayDevice device)
    : listener_(listener != nullptr ? *listener : *this), id_(id), device_(device) {}

LSoundPlayer::~LSoundPlayer() {
    Stop();
    Halt();
}

bool LSoundPlayer::Start(const LSoundSource& source) {
    if (IsLoaded())
        Unload();
    if (source->Status() != SoundStatus::kGood)
        return false;
    source_ = LSoundSource(new OwnedSource(source));
    if (source_->PeakMagnitude() > kMaxPcm16Peak)
        source_ = LSPPeakLimit(kMaxPcm16Peak).OpenSource(source_);
    if (source_->Status() != SoundStatus::kGood) {
        source_.Close();
        return false;
    }
    const int position = source_->GetPositionSample();
    shared_.position.store(position);
    shared_.rate.store(source_->SampleRate());
    ClearAnnouncements();
    SetState(kLoaded);
    const LSoundTime time = TimeOf(position);
    StartThread();
    listener_.spntfPlay(id_);
    listener_.spntfTime(time, id_);
    return true;
}

void LSoundPlayer::Play() {
    if (!IsLoaded())
        return;
    if (IsCued()) {
        SetState(state_ & ~kCued);
        StartThread();
    }
    SetState(state_ & ~kResumePending);
    listener_.spntfPlay(id_);
}

void LSoundPlayer::Cue() {
    if (!IsLoaded())
        return;
    if (IsCued()) {
        SetState(state_ & ~kResumePending);
        return;
    }
    Halt();
    source_->Seek(shared_.position.load());
    const int position = source_->GetPositionSample();
    shared_.position.store(position);
    ClearAnnouncements();
    SetState(kLoaded | kCued);
    listener_.spntfCue(id_);
    listener_.spntfTime(TimeOf(position), id_);
}

// The cued bit stays although the thread runs again: Play after such a seek must announce itself.
void LSoundPlayer::Seek(int frame) {
    if (!IsLoaded())
        return;
    Halt();
    source_->Seek(frame);
    shared_.position.store(frame);
    const LSoundTime time = TimeOf(frame);
    StartThread();
    listener_.spntfTime(time, id_);
}

void LSoundPlayer::Stop() {
    if (IsLoaded())
        Unload();
}

void LSoundPlayer::SetState(int state) {
    state_ = state;
}

void LSoundPlayer::StartThread() {
    card_ = device_.Card();
    shared_.trouble.store(PlayTrouble::None);
    LThread::Start(0);
}

void LSoundPlayer::Halt() {
    StopThreadSoon();
    Join();
}

void LSoundPlayer::Unload() {
    Halt();
    source_.Close();
    SetState(0);
    ClearAnnouncements();
    shared_.position.store(0);
    listener_.spntfStop(id_);
}

void LSoundPlayer::ClearAnnouncements() {
    shared_.ended.store(false);
    shared_.updatePending.store(false);
    shared_.troublePending.store(false);
}

LSoundTime LSoundPlayer::TimeOf(int frame) const {
    return LSoundTime::FromFrames(frame, shared_.rate.load());
}

LDBMC LSoundPlayer::Levels() const {
    LDBMC levels(static_cast<std::uint8_t>(shared_.channels.load()));
    for (int channel = 0; channel < levels.Channels(); ++channel)
        levels[channel] = LDB(shared_.levels[static_cast<std::size_t>(channel)].load());
    return levels;
}

void LSoundPlayer::EvNotify() {
    if (shared_.ended.load()) {
        // The thread leaves the source alone once it has announced the end.
        listener_.spntfTime(TimeOf(source_->GetEndSample()), id_);
        if (shared_.ended.load() && IsLoaded())
            Unload();
    } else if (shared_.updatePending.exchange(false)) {
        listener_.spntfTime(TimeOf(shared_.position.load()), id_);
        listener_.spntfLevel(Levels(), id_);
    }
    if (shared_.troublePending.exchange(false) && onTrouble_) {
        const auto handler = onTrouble_;  // may be replaced, or destroyed with the player
        handler(shared_.trouble.load());
    }
}
