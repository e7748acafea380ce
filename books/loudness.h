// How loud speech is (EBU R 128), and making it as loud as it should be.
#pragma once

#include <ebur128.h>

#include <memory>
#include <vector>

#include "books/book_levels.h"
#include "sound/sound_source.h"

constexpr double kBookLoudness = -19;  // LUFS, of one channel
constexpr double kSilence = -70;       // below which nothing counts

// Of sound of the source's rate and channels.
class LoudnessMeter {
public:
    explicit LoudnessMeter(const LSoundSourceBase& source);

    void Add(const int* samples, int frames);
    double Loudness() const;  // LUFS
    double Seconds() const { return static_cast<double>(frames_) / rate_; }

private:
    struct Closer {
        void operator()(ebur128_state* meter) const { ebur128_destroy(&meter); }
    };

    std::unique_ptr<ebur128_state, Closer> meter_;
    std::vector<int> scaled_;
    int rate_;
    unsigned char channels_;
    long long frames_ = 0;
};

// The source by stretches louder, its peaks kept 1 dB below full scale and a little more, so that
// what lies between the samples stays below that, too. There is at least one stretch, which begins
// at 0.
LSoundSource Louder(const LSoundSource& source, std::vector<LevelStretch> levels);
