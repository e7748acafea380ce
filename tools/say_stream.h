// Sound on standard output.
#pragma once

#include "sound/sound_sink.h"

// WAV as it can be piped into a player: 16 bits, behind a header whose sizes say "unknown". The
// header is written at once. Nobody seeks in it.
class WaveStreamSink final : public LSoundSinkBase {
public:
    WaveStreamSink(int rate, unsigned char channels);

    bool KeepsSixteenBits() const override { return true; }
    void Write(const int* buffer, int frames) override;

private:
    void Put(const void* data, std::size_t size);
};
