// A card's playback stream: blocking, interleaved, signed 16-bit little-endian.
#pragma once

#include <alsa/asoundlib.h>

#include <cstdint>
#include <utility>

// Owns the stream. One thread; every call but IsOpen needs an open stream.
class PcmOut {
public:
    PcmOut() = default;
    PcmOut(PcmOut&& other) noexcept { *this = std::move(other); }
    PcmOut& operator=(PcmOut&& other) noexcept;
    PcmOut(const PcmOut&) = delete;
    PcmOut& operator=(const PcmOut&) = delete;
    ~PcmOut() { Close(); }

    // 0 or a negative errno. A card that another program holds answers -EBUSY at once.
    int Open(int card);
    bool IsOpen() const { return pcm_ != nullptr; }
    void Close();  // drops what the card has not played yet

    // Asks for about rate and channels; the card may grant others. 0 or a negative errno.
    int SetParameters(int rate, std::uint8_t channels);
    int Rate() const { return static_cast<int>(rate_); }
    std::uint8_t Channels() const { return static_cast<std::uint8_t>(channels_); }

    // Frames taken, or a negative errno. Blocks while the card's buffer is full.
    snd_pcm_sframes_t Write(const std::int16_t* block, int frames);
    int Prepare() { return snd_pcm_prepare(pcm_); }
    int Resume() { return snd_pcm_resume(pcm_); }
    // Frames written but not yet heard; 0 when the card does not tell.
    snd_pcm_sframes_t Delay();

private:
    snd_pcm_t* pcm_ = nullptr;
    unsigned int rate_ = 0;
    unsigned int channels_ = 0;
};
