// A card's playback stream: interleaved, signed 16-bit little-endian. No call waits for the card
// but WaitForRoom, which ends early for a stop signal.
#pragma once

#include <alsa/asoundlib.h>
#include <poll.h>

#include <cstdint>
#include <string>
#include <vector>

// Owns the stream. One thread; every call needs an open stream but Open and Close.
class PcmOut {
public:
    PcmOut() = default;
    PcmOut(const PcmOut&) = delete;
    PcmOut& operator=(const PcmOut&) = delete;
    ~PcmOut() { Close(); }

    // 0 or a negative errno. A card that another program holds answers -EBUSY at once.
    int Open(const std::string& alsaName);
    void Close();  // drops what the card has not played yet

    // Asks for about rate and channels; the card may grant others. 0 or a negative errno.
    int SetParameters(int rate, std::uint8_t channels);
    bool IsCard() const { return isCard_; }  // else a sound server
    int Rate() const { return static_cast<int>(rate_); }
    std::uint8_t Channels() const { return static_cast<std::uint8_t>(channels_); }

    // Frames taken, fewer than asked for when the card's buffer is full; -EAGAIN when none fit, or
    // another negative errno.
    snd_pcm_sframes_t Write(const std::int16_t* block, int frames);
    // Until the card has something to tell, room or an error mostly (true), stopFd is readable, or
    // the time has passed.
    bool WaitForRoom(int stopFd, int milliseconds);
    // Frames written but not yet heard, or a negative errno: -EPIPE when the stream has stopped,
    // -EIO from the plug-in of a sound server that has not heard from its server yet.
    int Delay(snd_pcm_sframes_t& frames) { return snd_pcm_delay(pcm_, &frames); }
    int Prepare() { return snd_pcm_prepare(pcm_); }
    int Resume() { return snd_pcm_resume(pcm_); }

private:
    snd_pcm_t* pcm_ = nullptr;
    bool isCard_ = false;
    unsigned int rate_ = 0;
    unsigned int channels_ = 0;
    std::vector<pollfd> polled_;  // the stop signal's entry first, then the card's
};
