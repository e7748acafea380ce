// The player thread: everything here runs on it.
#include <algorithm>
#include <cerrno>

#include "playback/sound_player.h"
#include "sound/convert.h"

namespace {

constexpr int kMinBlockFrames = 20;
constexpr int kBlocksPerSecond = 4;
constexpr int kRealTimePriority = 91;
constexpr int kMaxWaitMilliseconds = 100;
constexpr unsigned int kResumeWaitMilliseconds = 1000;
constexpr int kFrontChannels = 2;

std::int16_t To16Bits(int sample) {
    return static_cast<std::int16_t>((sample + 8) >> 4);
}

}  // namespace

void LSoundPlayer::ThreadFunction() {
    if (source_->SampleRate() < 1)
        return;
    PcmOut pcm;
    if (!OpenCard(pcm))
        return;
    MatchCard(pcm);
    blockFrames_ =
        std::clamp(source_->SampleRate() / kBlocksPerSecond, kMinBlockFrames, kMaxBlockFrames);
    const auto frames = static_cast<std::size_t>(blockFrames_);
    block_.resize(frames * source_->Channels());
    pcmBlock_.resize(frames * pcm.Channels());
    ring_ = BlockRing();
    firstBlock_ = true;
    PlayLoop(pcm);
}

bool LSoundPlayer::OpenCard(PcmOut& pcm) {
    if (pcm.Open(card_) < 0) {
        shared_.trouble.store(PlayTrouble::CannotOpen);
        shared_.ended.store(true);
        QueueNotify();
        return false;
    }
    if (pcm.SetParameters(source_->SampleRate(), source_->Channels()) < 0) {
        SetStopFlag();
        pcm.Close();
        FailSilently(PlayTrouble::CannotSetUp);
        return false;
    }
    return true;
}

void LSoundPlayer::MatchCard(const PcmOut& pcm) {
    if (pcm.Rate() == source_->SampleRate() && pcm.Channels() == source_->Channels())
        return;
    LSPConvertSourceRateChannels(pcm.Rate(), pcm.Channels(), source_);
    // Positions count in frames of the converted source from here on.
    shared_.position.store(source_->GetPositionSample());
    shared_.rate.store(source_->SampleRate());
}

void LSoundPlayer::PlayLoop(PcmOut& pcm) {
    while (!IsStopping()) {
        if (!PlayStep(pcm))
            return;
        Publish();
    }
}

// One block, or one wait. False ends playback.
bool LSoundPlayer::PlayStep(PcmOut& pcm) {
    const int position = source_->GetPositionSample();
    const std::int64_t remaining = std::int64_t{source_->GetEndSample()} - position;
    if (remaining < 1 && !source_->IsStreaming())
        return AwaitEnd(pcm);
    if (remaining < 1) {
        RaisePriorityOnce();
        source_->WaitForStreamingData(kMaxWaitMilliseconds);
        return true;
    }
    const auto frames = static_cast<int>(std::min<std::int64_t>(blockFrames_, remaining));
    const BlockResult result = PlayBlock(pcm, position, frames);
    if (result == BlockResult::Lost && !IsStopping())
        FailSilently(PlayTrouble::DeviceLost);
    return result != BlockResult::Lost;
}

// Everything is handed over: waits until it is heard as well.
bool LSoundPlayer::AwaitEnd(PcmOut& pcm) {
    const snd_pcm_sframes_t delay = pcm.Delay();
    if (delay < 1) {
        shared_.ended.store(true);
        QueueNotify();
        return false;
    }
    const long milliseconds = std::clamp(delay * 1000L / source_->SampleRate(), 1L,
                                         static_cast<long>(kMaxWaitMilliseconds));
    StopSignal().WaitSignal(static_cast<unsigned int>(milliseconds));
    return true;
}

LSoundPlayer::BlockResult LSoundPlayer::PlayBlock(PcmOut& pcm, int position, int frames) {
    source_->Read(block_.data(), frames);
    // A rate converter overshoots; beyond full scale samples would wrap around to loud clicks.
    if (source_->PeakMagnitude() > kMaxPcm16Peak)
        LSoundPeakLimit(block_.data(), frames * source_->Channels());
    ConvertBlock(frames, pcm.Channels());
    const BlockResult result = WriteBlock(pcm, frames);
    if (result == BlockResult::Written) {
        ring_.Add(position, frames, GetBufferLevels(block_.data(), frames, source_->Channels()));
        RaisePriorityOnce();
    }
    return result;
}

// Cards of more channels than the converters know get the sound in front, fewer get the first ones.
void LSoundPlayer::ConvertBlock(int frames, int cardChannels) {
    const int sourceChannels = source_->Channels();
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

LSoundPlayer::BlockResult LSoundPlayer::WriteBlock(PcmOut& pcm, int frames) {
    // A signal or an underrun in the middle cuts a write short.
    const std::int16_t* at = pcmBlock_.data();
    while (frames > 0 && !IsStopping()) {
        const snd_pcm_sframes_t written = pcm.Write(at, frames);
        if (written < 0)
            return Recover(pcm, static_cast<int>(written));
        at += written * pcm.Channels();
        frames -= static_cast<int>(written);
    }
    return BlockResult::Written;
}

LSoundPlayer::BlockResult LSoundPlayer::Recover(PcmOut& pcm, int error) {
    if (error == -EAGAIN)
        return BlockResult::Dropped;
    if (error == -ESTRPIPE) {
        int resumed = pcm.Resume();
        while (resumed == -EAGAIN && !StopSignal().WaitSignal(kResumeWaitMilliseconds))
            resumed = pcm.Resume();
        if (resumed >= 0)
            return BlockResult::Dropped;
        error = -EPIPE;
    }
    if (error == -EPIPE && pcm.Prepare() >= 0)
        return BlockResult::Dropped;
    return BlockResult::Lost;
}

void LSoundPlayer::RaisePriorityOnce() {
    if (firstBlock_)
        SetPriority(kRealTimePriority);
    firstBlock_ = false;
}

void LSoundPlayer::Publish() {
    const BlockRecord* const newest = ring_.TakeNewest();
    if (newest == nullptr)
        return;
    shared_.position.store(newest->position);
    shared_.channels.store(newest->levels.Channels());
    for (int channel = 0; channel < newest->levels.Channels(); ++channel)
        shared_.levels[static_cast<std::size_t>(channel)].store(
            static_cast<std::int8_t>(newest->levels[channel].Value()));
    shared_.updatePending.store(true);
    QueueNotify();
}

// Ends without a word to the listener; the owner's trouble handler hears of it.
void LSoundPlayer::FailSilently(PlayTrouble trouble) {
    shared_.trouble.store(trouble);
    shared_.troublePending.store(true);
    QueueNotify();
}
