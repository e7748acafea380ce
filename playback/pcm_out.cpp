#include "playback/pcm_out.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "foundation/threads/timed_poll.h"
#include "playback/alsa_card.h"

namespace {

constexpr snd_pcm_uframes_t kPeriodFrames = 8192;
constexpr unsigned int kPeriods = 2;

struct ParametersFree {
    void operator()(snd_pcm_hw_params_t* parameters) const { snd_pcm_hw_params_free(parameters); }
};

}  // namespace

int PcmOut::Open(const std::string& alsaName) {
    QuietAlsa();
    Close();
    isCard_ = alsaName != kSoundServer;
    const int error =
        snd_pcm_open(&pcm_, alsaName.c_str(), SND_PCM_STREAM_PLAYBACK, SND_PCM_NONBLOCK);
    if (error < 0)
        pcm_ = nullptr;
    return std::min(error, 0);
}

void PcmOut::Close() {
    if (pcm_ != nullptr)
        snd_pcm_close(std::exchange(pcm_, nullptr));
}

int PcmOut::SetParameters(int rate, std::uint8_t channels) {
    snd_pcm_hw_params_t* allocated = nullptr;
    if (const int error = snd_pcm_hw_params_malloc(&allocated); error < 0)
        return error;
    const std::unique_ptr<snd_pcm_hw_params_t, ParametersFree> owner(allocated);
    snd_pcm_hw_params_t* const wanted = owner.get();
    rate_ = static_cast<unsigned int>(rate);
    channels_ = channels;
    snd_pcm_uframes_t period = kPeriodFrames;
    unsigned int periods = kPeriods;
    int direction = 0;
    int error = snd_pcm_hw_params_any(pcm_, wanted);
    if (error >= 0)
        error = snd_pcm_hw_params_set_access(pcm_, wanted, SND_PCM_ACCESS_RW_INTERLEAVED);
    if (error >= 0)
        error = snd_pcm_hw_params_set_format(pcm_, wanted, SND_PCM_FORMAT_S16_LE);
    // ALSA's own rate converter keeps the last part of a sound back for a period that never fills.
    if (error >= 0 && !isCard_)
        error = snd_pcm_hw_params_set_rate_resample(pcm_, wanted, 0);
    // The plug-ins of sound servers refuse a channel count that comes after the sizes.
    if (error >= 0 && !isCard_)
        error = snd_pcm_hw_params_set_channels_near(pcm_, wanted, &channels_);
    if (error >= 0)
        error = snd_pcm_hw_params_set_rate_near(pcm_, wanted, &rate_, &direction);
    direction = 0;
    if (error >= 0)
        error = snd_pcm_hw_params_set_period_size_near(pcm_, wanted, &period, &direction);
    direction = 0;
    if (error >= 0)
        error = snd_pcm_hw_params_set_periods_near(pcm_, wanted, &periods, &direction);
    snd_pcm_uframes_t buffer = period * periods / 4;
    if (error >= 0)
        error = snd_pcm_hw_params_set_buffer_size_near(pcm_, wanted, &buffer);
    if (error >= 0 && isCard_)
        error = snd_pcm_hw_params_set_channels_near(pcm_, wanted, &channels_);
    if (error >= 0)
        error = snd_pcm_hw_params(pcm_, wanted);
    if (error >= 0)
        polled_.resize(1 +
                       static_cast<std::size_t>(std::max(snd_pcm_poll_descriptors_count(pcm_), 0)));
    return std::min(error, 0);
}

snd_pcm_sframes_t PcmOut::Write(const std::int16_t* block, int frames) {
    return snd_pcm_writei(pcm_, block, static_cast<snd_pcm_uframes_t>(frames));
}

bool PcmOut::WaitForRoom(int stopFd, int milliseconds) {
    polled_[0] = {stopFd, POLLIN, 0};
    pollfd* const card = polled_.data() + 1;
    const auto entries = static_cast<unsigned int>(polled_.size() - 1);
    const int filled = snd_pcm_poll_descriptors(pcm_, card, entries);
    if (TimedPoll(polled_.data(), 1 + static_cast<nfds_t>(std::max(filled, 0)), milliseconds) < 1)
        return false;
    // It is told that it was heard, or its descriptor would stay readable. Not every plug-in tells
    // in the events that it has failed: the next write finds out what there is.
    unsigned short events = 0;
    snd_pcm_poll_descriptors_revents(pcm_, card, entries, &events);
    return polled_[0].revents == 0;
}
