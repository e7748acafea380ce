#include "playback/sound_player.h"

#include <vector>

#include "sound/convert.h"

namespace {

// The player's own hold on a source. Counts of handles are not atomic: the thread of a run, which
// wraps what it plays, changes the count of this object only, while the caller drops its handle.
// The player's frames are this source's.
class OwnedSource final : public LSoundProcessBase {
public:
    explicit OwnedSource(const LSoundSource& inner) : LSoundProcessBase(inner) {}
    void Read(int* buffer, int frames) override { inner_->Read(buffer, frames); }
    int OriginFrame(int frame) const override { return frame; }
};

// Runs whose card has not let them go yet: each holds its thread and its card's descriptor, no
// source. They belong to no player, since a player may be gone before they are. Freed at the next
// start, once their card has let them go. One that never does stays until the program ends, which
// does not wait for it: the list is never destroyed, as its runs would wait for their threads.
std::vector<std::unique_ptr<PlayRun>>& RunsLeftBehind() {
    static auto* const runs = new std::vector<std::unique_ptr<PlayRun>>;
    return *runs;
}

void FreeRunsLetGo() {
    std::erase_if(RunsLeftBehind(), [](const auto& run) { return !run->IsRunning(); });
}

}  // namespace

// Without a listener the player listens to itself, which does nothing.
LSoundPlayer::LSoundPlayer(LSoundPlayerNotify* listener, int id, LSoundPlayDevice device)
    : listener_(listener != nullptr ? *listener : *this),
      id_(id),
      device_(device),
      halts_(std::make_shared<unsigned>(0U)) {}

LSoundPlayer::~LSoundPlayer() {
    isStarting_ = true;
    Stop();
}

bool LSoundPlayer::Start(const LSoundSource& source) {
    if (isStarting_)
        return false;
    LSoundSource taken(new OwnedSource(source));  // the caller's handle may go with a listener
    if (IsLoaded()) {
        const Moment moment(*this);
        isStarting_ = true;
        Stop();
        if (!moment.HasPlayer())
            return false;
        isStarting_ = false;
    }
    if (taken->Status() != SoundStatus::kGood)
        return false;
    if (taken->PeakMagnitude() > kMaxPcm16Peak)
        taken = LSPPeakLimit(kMaxPcm16Peak).OpenSource(taken);
    if (taken->Status() != SoundStatus::kGood)
        return false;
    source_ = taken;
    taken.Close();  // the run's thread counts handles from here on
    timeRate_ = source_->TimeRate();
    position_ = source_->GetPositionSample();
    state_ = State::kLoaded;
    const LSoundTime time = PositionTime();
    StartRun();
    const Moment moment(*this);
    listener_.spntfPlay(id_);
    if (moment.Holds())
        listener_.spntfTime(time, id_);
    return true;
}

void LSoundPlayer::Play() {
    if (!IsLoaded())
        return;
    state_ = State::kLoaded;
    if (run_ == nullptr)
        StartRun();
    listener_.spntfPlay(id_);
}

void LSoundPlayer::Cue() {
    if (state_ != State::kLoaded || !TellSilence() || state_ != State::kLoaded)
        return;
    Halt();
    source_->Seek(position_);
    position_ = source_->GetPositionSample();
    state_ = State::kCued;
    const LSoundTime time = PositionTime();
    const Moment moment(*this);
    listener_.spntfCue(id_);
    if (moment.Holds())
        listener_.spntfTime(time, id_);
}

// The state still reads cued although sound comes again: Play after such a seek must announce
// itself.
void LSoundPlayer::Seek(int frame) {
    if (!IsLoaded())
        return;
    Halt();
    source_->Seek(frame);
    position_ = frame;
    StartRun();
    listener_.spntfTime(TimeOf(frame), id_);
}

void LSoundPlayer::Stop() {
    if (!IsLoaded() || !TellSilence() || !IsLoaded())
        return;
    Halt();
    source_.Close();
    state_ = State::kIdle;
    timeRate_ = 0;
    position_ = 0;
    listener_.spntfStop(id_);
}

int LSoundPlayer::EndSample() const {
    if (run_ != nullptr)
        return run_->EndFrame();
    return IsLoaded() ? source_->GetEndSample() : 0;
}

void LSoundPlayer::StartRun() {
    FreeRunsLetGo();
    trouble_ = PlayTrouble::kNone;
    run_ = std::make_unique<PlayRun>(source_, device_, !wasOnServer_, tempo_, fade_,
                                     [this] { QueueNotify(); });
    run_->Start();
}

// From here on the source is this thread's again, and the run has nothing to tell.
void LSoundPlayer::Halt() {
    ++*halts_;
    if (run_ == nullptr)
        return;
    run_->Halt();
    const PlayNews news = run_->TakeNews();
    position_ = news.frame;
    wasOnServer_ = news.route.way == PlayRoute::Way::kServer;
    if (run_->HasFinished())
        run_.reset();
    else
        RunsLeftBehind().push_back(std::move(run_));
}

// So that a meter falls. False when the listener has deleted the player.
bool LSoundPlayer::TellSilence() {
    if (toldChannels_ == 0)
        return true;
    const Moment moment(*this);
    const LDBMC silence(std::exchange(toldChannels_, std::uint8_t{0}));
    listener_.spntfLevel(silence, id_);
    return moment.HasPlayer();
}

void LSoundPlayer::EvNotify() {
    if (run_ == nullptr)
        return;
    const PlayNews news = run_->TakeNews();
    const Moment moment(*this);
    if (news.hasRoute && onRoute_) {
        const auto handler = onRoute_;  // may be replaced, or destroyed with the player
        handler(news.route);
        if (!moment.Holds())
            return;
    }
    if (news.hasEnded) {
        EvEnded(news);
    } else if (news.hasBlock) {
        position_ = news.frame;
        listener_.spntfTime(PositionTime(), id_);
        if (!moment.Holds())
            return;
        toldChannels_ = news.levels.Channels();
        listener_.spntfLevel(news.levels, id_);
    }
    if (!news.hasFailed || !moment.Holds())
        return;
    trouble_ = news.trouble;
    const auto handler = onTrouble_;
    if (handler)
        handler(trouble_);
}

void LSoundPlayer::EvEnded(const PlayNews& news) {
    const Moment moment(*this);
    trouble_ = news.trouble;
    if (!TellSilence() || !moment.Holds())
        return;
    position_ = news.endFrame;
    listener_.spntfTime(PositionTime(), id_);
    if (moment.Holds())
        Stop();
}
