// Sound that becomes silence, and comes back, without a click.
#pragma once

#include <atomic>
#include <cstdint>

// Shared by who wants it (GUI thread) and the one who plays (player thread). It is paced by what is
// played: while nothing is, nothing fades.
class LFade {
public:
    void Out(
        int milliseconds);  // from here to silence; a fade that is under way keeps its loudness
    void Back();            // to full loudness, within a moment
    bool IsOut() const { return outMilliseconds_.load(std::memory_order_relaxed) > 0; }

    // The player's: of interleaved samples, in place. They are heard behind the unheard frames: a
    // fade out is so much shorter, and its silence is heard when it was asked for.
    void Apply(int* samples, int frames, int channels, int rate, std::int64_t unheard);

private:
    std::atomic<int> outMilliseconds_{0};  // from full loudness to silence; 0: back
    // The player thread's, from one run to the next.
    float level_ = 1;  // 1 is full
    int asked_ = 0;    // outMilliseconds_, when it was looked at last
    int out_ = 0;      // what the card has not played taken off that
};
