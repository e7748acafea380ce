// Reading speed: plays a source faster or slower at its own pitch, changed live.
#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <vector>

#include "sound/sound_source.h"

namespace soundtouch {
class SoundTouch;
}

// The speed that listeners want, in percent of the speaker's own. Shared by whoever sets it (GUI
// thread) and the sources that follow it (player thread).
class LTempo {
public:
    static constexpr int kSlowestPercent = 50;
    static constexpr int kOwnPercent = 100;
    static constexpr int kFastestPercent = 600;

    // Cut to the range above.
    void Set(int percent);
    int Percent() const { return percent_.load(std::memory_order_relaxed); }

private:
    std::atomic<int> percent_{kOwnPercent};
};

// Position and end are the inner source's, so that times stay those of the text: the position is
// where the next frame of output comes from. A change of tempo is heard from the next Read on, but
// for what is in the works (some 80 ms of the source). As long as the tempo is the one that
// the inner source was spoken at (its TimeRate), mostly the speaker's own, it passes unchanged.
//
// Outermost of what a player wraps around a source: a converter of rate above it would count output
// frames and lose the text's time.
class LTempoSource final : public LSoundProcessBase {
public:
    LTempoSource(const LSoundSource& inner, std::shared_ptr<const LTempo> tempo);
    ~LTempoSource() override;

    void Read(int* buffer, int frames) override;
    int GetPositionSample() const override;
    void Seek(int frame) override;
    int ReadableFrames() const override;

private:
    bool Feed();
    void FollowTempo();
    int Ready() const;  // frames that have been made and not yet read
    double Pace() const { return static_cast<double>(percent_) / spokenPercent_; }

    std::shared_ptr<const LTempo> tempo_;
    const int spokenPercent_;
    std::unique_ptr<soundtouch::SoundTouch> stretcher_;
    int percent_ = spokenPercent_;
    bool stretches_ = false;  // since the last Seek the source no longer passes unchanged
    bool flushed_ = false;    // the inner source's last frame is in the stretcher
    std::vector<int> input_;
    std::vector<float> samples_;
};
