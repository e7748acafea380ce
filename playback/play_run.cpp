#include "playback/play_run.h"

#include <algorithm>
#include <cerrno>

#include "playback/card_holder.h"
#include "sound/convert.h"

namespace {

constexpr int kMinBlockFrames = 20;
constexpr int kBlocksPerSecond = 4;
constexpr int kRealTimePriority = 91;
constexpr int kMaxWaitMilliseconds = 100;
constexpr int kRefusedWaitMilliseconds = 10;
// Often enough to see a card stop before its time, and then give it again what was lost.
constexpr int kDrainWaitMilliseconds = 20;
constexpr unsigned int kResumeWaitMilliseconds = 1000;
constexpr std::chrono::seconds kBusyPatience(2);
constexpr unsigned int kBusyWaitMilliseconds = 100;
// A source waits without regard to the stop signal, and Halt waits for it.
constexpr int kStreamingWaitMilliseconds = 10;
constexpr unsigned int kHaltMilliseconds = 15;
// A growing source is read in small portions only when the card has less than this left.
constexpr int kScarcePerSecond = 10;
constexpr int kFrontChannels = 2;

std::int16_t To16Bits(int sample) {
    return static_cast<std::int16_t>((sample + 8) >> 4);
}

CardClock::Time Now() {
    return std::chrono::steady_clock::now();
}

}  // namespace

PlayRun::PlayRun(const LSoundSource& source, LSoundPlayDevice device, bool waitsForCard,
                 std::shared_ptr<const LTempo> tempo, std::shared_ptr<LFade> fade,
                 std::function<void()> notify)
    : device_(device),
      waitsForCard_(waitsForCard),
      rate_(source->SampleRate()),
      channels_(source->Channels()),
      tempo_(std::move(tempo)),
      fade_(std::move(fade)),
      notify_(std::move(notify)),
      original_(source),
      source_(source) {
    nextFrame_ = source->GetPositionSample();
    news_.frame = nextFrame_;
    news_.endFrame = source->GetEndSample();
}

PlayRun::~PlayRun() {
    StopThreadSoon();
    Join();
}

void PlayRun::Halt() {
    StopThreadSoon();
    if (IsRunning())
        finished_.Ref().WaitSignal(kHaltMilliseconds);
    const std::scoped_lock lock(sourceMutex_, newsMutex_);
    isTakenBack_ = true;
    source_.Close();
    original_.Close();
}

PlayNews PlayRun::TakeNews() {
    const std::lock_guard lock(newsMutex_);
    PlayNews news = news_;
    news_.hasBlock = news_.hasEnded = news_.hasFailed = news_.hasRoute = false;
    return news;
}

int PlayRun::EndFrame() {
    const std::lock_guard lock(newsMutex_);
    return news_.endFrame;
}

// Everything below runs on the thread.

void PlayRun::ThreadFunction() {
    if (OpenCard() && MatchCard()) {
        while (!IsStopping() && Step()) {
        }
        // What was heard until now, for a pause.
        snd_pcm_sframes_t delay = 0;
        if (IsStopping() && pcm_.Delay(delay) >= 0)
            clock_.NoteDelay(delay, Now());
        const BlockRecord* const heard = ring_.Follow(clock_.Heard());
        Tell([&](PlayNews& news) { news.frame = heard != nullptr ? heard->frame : nextFrame_; });
    }
    pcm_.Close();
    finished_.Signal();
}

bool PlayRun::OpenCard() {
    const PlayTrouble trouble = TryDevice(device_);
    if (trouble == PlayTrouble::kNone || IsStopping())
        return !IsStopping();
    if (!device_.IsSoundServer() &&
        TryDevice(LSoundPlayDevice::SoundServer()) == PlayTrouble::kNone) {
        TellRoute(PlayRoute::Way::kServer, isBusy_);
        return true;
    }
    if (trouble == PlayTrouble::kCannotSetUp)
        return Fail(trouble);
    TellEnd(trouble);
    return false;
}

PlayTrouble PlayRun::TryDevice(LSoundPlayDevice device) {
    const std::string name = device.AlsaName();
    int error = pcm_.Open(name);
    // Who holds a card often lets it go in a moment, a run left behind among them.
    isBusy_ = isBusy_ || error == -EBUSY;
    if (error == -EBUSY && !device.IsSoundServer() && waitsForCard_) {
        const CardClock::Time limit = Now() + kBusyPatience;
        TellRoute(PlayRoute::Way::kAwaited, true);
        while (error == -EBUSY && Now() < limit && !StopSignal().WaitSignal(kBusyWaitMilliseconds))
            error = pcm_.Open(name);
        if (error >= 0)
            TellRoute(PlayRoute::Way::kAsked, false);
    }
    if (error < 0)
        return PlayTrouble::kCannotOpen;
    return pcm_.SetParameters(rate_, channels_) < 0 ? PlayTrouble::kCannotSetUp
                                                    : PlayTrouble::kNone;
}

void PlayRun::TellRoute(PlayRoute::Way way, bool isBusy) {
    const std::string holder = isBusy ? CardHolder(device_.Card()) : "";
    Tell([&](PlayNews& news) {
        news.hasRoute = true;
        news.route = {way, isBusy, holder.empty() ? news.route.holder : holder};
    });
}

bool PlayRun::MatchCard() {
    const std::lock_guard lock(sourceMutex_);
    if (isTakenBack_)
        return false;
    if (pcm_.Rate() != source_->SampleRate() || pcm_.Channels() != source_->Channels()) {
        LSPConvertSourceRateChannels(pcm_.Rate(), pcm_.Channels(), source_);
        // In the middle of a sound the filter must know what came before.
        if (original_->GetPositionSample() > 0)
            source_->Seek(source_->GetPositionSample());
    }
    // Outermost: its position stays that of the sound at its own speed.
    if (tempo_ != nullptr)
        source_ = LSoundSource(new LTempoSource(source_, tempo_));
    blockFrames_ =
        std::clamp(source_->SampleRate() / kBlocksPerSecond, kMinBlockFrames, kMaxBlockFrames);
    const auto frames = static_cast<std::size_t>(blockFrames_);
    block_.resize(frames * source_->Channels());
    pcmBlock_.resize(frames * pcm_.Channels());
    clock_.Begin(pcm_.Rate(), Now());
    return true;
}

// Hands over what fits, or waits. False ends playback.
bool PlayRun::Step() {
    if (!FollowCard())
        return false;
    const Supply supply = pendingFrames_ > 0 ? Supply::kBlock : NextBlock();
    if (supply == Supply::kOver && clock_.Unheard() == 0) {
        TellEnd(PlayTrouble::kNone);
        return false;
    }
    if (pendingFrames_ > 0 && hasRoom_ && !WriteBlock())
        return false;
    if (clock_.StandsStill(Now()))
        return Fail(PlayTrouble::kDeviceLost);
    return (supply == Supply::kBlock && pendingFrames_ == 0) || Wait(supply);
}

PlayRun::Supply PlayRun::NextBlock() {
    if (ring_.IsFull())
        return Supply::kFull;
    const std::lock_guard lock(sourceMutex_);
    if (isTakenBack_)
        return Supply::kFull;
    // Asked before the end: what arrives in between is seen at the next turn.
    const bool isStreaming = source_->IsStreaming();
    const int position = source_->GetPositionSample();
    const int remaining = source_->ReadableFrames();
    nextFrame_ =
        remaining < 1 && !isStreaming ? original_->GetEndSample() : source_->OriginFrame(position);
    if (remaining < 1)
        return isStreaming ? Supply::kDry : Supply::kOver;
    if (isStreaming && remaining < blockFrames_ &&
        clock_.Unheard() > pcm_.Rate() / kScarcePerSecond)
        return Supply::kDry;
    ReadBlock(position, std::min(blockFrames_, remaining));
    return Supply::kBlock;
}

void PlayRun::ReadBlock(int position, int frames) {
    source_->Read(block_.data(), frames);
    // A rate converter overshoots; beyond full scale samples would wrap around to loud clicks.
    if (source_->PeakMagnitude() > kMaxPcm16Peak)
        LSoundPeakLimit(block_.data(), frames * source_->Channels());
    if (fade_ != nullptr)
        fade_->Apply(block_.data(), frames, source_->Channels(), source_->SampleRate(),
                     clock_.Unheard());
    ring_.Add({clock_.Written(), frames, position, nextFrame_,
               GetBufferLevels(block_.data(), frames, source_->Channels())});
    ConvertBlock(frames);
    pendingFrames_ = frames;
    pendingFrom_ = 0;
    const int end = original_->GetEndSample();
    const std::lock_guard lock(newsMutex_);
    news_.endFrame = end;
}

// Cards of more channels than the converters know get the sound in front, fewer get the first ones.
void PlayRun::ConvertBlock(int frames) {
    const int sourceChannels = source_->Channels();
    const int cardChannels = pcm_.Channels();
    const int* in = block_.data();
    std::int16_t* out = pcmBlock_.data();
    if (sourceChannels == cardChannels) {
        std::transform(in, in + frames * sourceChannels, out, To16Bits);
        return;
    }
    for (int frame = 0; frame < frames; ++frame, in += sourceChannels) {
        for (int channel = 0; channel < cardChannels; ++channel) {
            const int from = sourceChannels == 1 && channel < kFrontChannels ? 0 : channel;
            *out++ = from < sourceChannels ? To16Bits(in[from]) : std::int16_t{0};
        }
    }
}

bool PlayRun::WriteBlock() {
    const std::ptrdiff_t from = std::ptrdiff_t{pendingFrom_} * pcm_.Channels();
    const snd_pcm_sframes_t written = pcm_.Write(pcmBlock_.data() + from, pendingFrames_);
    if (written == -EAGAIN) {
        isRefused_ = isRoomTold_;
        hasRoom_ = isRoomTold_ = false;
        return true;
    }
    if (written < 0)
        return Recover(static_cast<int>(written));
    const auto frames = static_cast<int>(written);
    clock_.Wrote(frames, Now());
    pendingFrom_ += frames;
    pendingFrames_ -= frames;
    hasRoom_ = pendingFrames_ == 0;
    isRoomTold_ = false;
    RaisePriorityOnce();
    return true;
}

// Learns what is being heard, and tells when that is another block.
bool PlayRun::FollowCard() {
    snd_pcm_sframes_t delay = 0;
    // A thread that is held up on the way must not take an old answer for a new one.
    const CardClock::Time asked = Now();
    const int error = pcm_.Delay(delay);
    // A sound server that is lost fails to take sound, or stands still.
    const bool isUnknown = error == -EIO && !pcm_.IsCard();
    if (error < 0 && !isUnknown)
        return Recover(error);
    if (error >= 0)
        clock_.NoteDelay(delay, asked);
    if (!pcm_.IsCard() && pendingFrames_ == 0 && clock_.IsLeftOver(Now()))
        clock_.Empty(Now());
    if (clock_.Unheard() == 0 && pendingFrames_ == 0)
        clock_.Rest(Now());
    const BlockRecord* const record = ring_.Follow(clock_.Heard());
    if (record != nullptr && record->first != toldFirst_ && record->first < clock_.Written()) {
        toldFirst_ = record->first;
        Publish(*record);
    }
    return true;
}

void PlayRun::Publish(const BlockRecord& record) {
    Tell([&](PlayNews& news) {
        news.hasBlock = true;
        news.frame = record.frame;
        news.levels = record.levels;
    });
}

// Until there is something to hand over or to tell.
bool PlayRun::Wait(Supply supply) {
    const BlockRecord* const heard = ring_.Follow(clock_.Heard());
    const int change = heard != nullptr ? clock_.MillisecondsUntil(heard->first + heard->frames)
                                        : kMaxWaitMilliseconds;
    const int milliseconds = std::min(change, kMaxWaitMilliseconds);
    if (supply == Supply::kDry) {
        RaisePriorityOnce();
        const std::lock_guard lock(sourceMutex_);
        if (!isTakenBack_)
            source_->WaitForStreamingData(kStreamingWaitMilliseconds);
    } else if (supply == Supply::kBlock && !isRefused_) {
        hasRoom_ = isRoomTold_ = pcm_.WaitForRoom(StopSignal().ReadFd(), milliseconds);
    } else {
        const int limit = isRefused_ ? kRefusedWaitMilliseconds : kDrainWaitMilliseconds;
        StopSignal().WaitSignal(static_cast<unsigned int>(std::min(milliseconds, limit)));
        hasRoom_ = true;
        isRefused_ = false;
    }
    return true;
}

// After an error of the card. False when it is lost.
bool PlayRun::Recover(int error) {
    if (error == -EINTR || error == -EAGAIN)
        return true;
    if (error == -ESTRPIPE) {
        if (Resume())
            return true;
        error = -EPIPE;
    }
    if (IsStopping())
        return true;
    const bool hadRunDry = clock_.HadRunDry(Now());
    // A server that is gone lets itself be prepared again and again, but takes nothing.
    const bool isInVain = clock_.Written() == preparedAt_;
    if (error != -EPIPE || isInVain || pcm_.Prepare() < 0)
        return Fail(PlayTrouble::kDeviceLost);
    preparedAt_ = clock_.Written();
    if (!hadRunDry)
        GoBackToHeard();
    clock_.Empty(Now());
    hasRoom_ = true;
    return true;
}

// True when the card goes on with what it holds.
bool PlayRun::Resume() {
    int resumed = pcm_.Resume();
    while (resumed == -EAGAIN && !clock_.StandsStill(Now()) &&
           !StopSignal().WaitSignal(kResumeWaitMilliseconds))
        resumed = pcm_.Resume();
    if (resumed >= 0)
        clock_.Rest(Now());
    return resumed >= 0;
}

// The card stopped with sound in its buffer, which is lost: that is given to it again.
void PlayRun::GoBackToHeard() {
    const BlockRecord* const heard = ring_.Follow(clock_.Heard());
    if (heard == nullptr || heard->position == wentBackTo_)
        return;  // a card that stops there whatever it is given
    wentBackTo_ = heard->position;
    const std::lock_guard lock(sourceMutex_);
    if (isTakenBack_)
        return;
    source_->Seek(heard->position);
    ring_.Clear();
    pendingFrames_ = 0;
}

void PlayRun::RaisePriorityOnce() {
    if (isFirstBlock_)
        SetPriority(kRealTimePriority);
    isFirstBlock_ = false;
}

void PlayRun::TellEnd(PlayTrouble trouble) {
    const int end = nextFrame_;
    Tell([&](PlayNews& news) {
        news.hasEnded = true;
        news.trouble = trouble;
        if (trouble == PlayTrouble::kNone)
            news.frame = news.endFrame = end;
    });
}

// Ends without a word to the listener; the owner's trouble handler hears of it.
bool PlayRun::Fail(PlayTrouble trouble) {
    if (!IsStopping())
        Tell([&](PlayNews& news) {
            news.hasFailed = true;
            news.trouble = trouble;
        });
    return false;
}

void PlayRun::Tell(const std::function<void(PlayNews&)>& change) {
    const std::lock_guard lock(newsMutex_);
    change(news_);
    if (!isTakenBack_ && (news_.hasBlock || news_.hasEnded || news_.hasFailed || news_.hasRoute))
        notify_();
}
