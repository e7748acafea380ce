#include "sound/pitch.h"

#include <SoundTouch.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "sound/stretching.h"

namespace {

constexpr int kOwn = 100;
constexpr std::size_t kShiftedFrames = 4096;

class SoundInMemory final : public LSoundSourceBase {
public:
    SoundInMemory(const LSoundSource& like, std::vector<int> samples)
        : LSoundSourceBase(like->SampleRate(), like->Channels(), like->PeakMagnitude()),
          samples_(std::move(samples)) {}

    void Read(int* buffer, int frames) override {
        const int there = std::clamp(GetEndSample() - position_, 0, frames);
        const auto first = samples_.begin() + std::ptrdiff_t{position_} * Channels();
        std::fill(std::copy_n(first, std::ptrdiff_t{there} * Channels(), buffer),
                  buffer + std::ptrdiff_t{frames} * Channels(), 0);
        position_ += there;
    }
    int GetPositionSample() const override { return position_; }
    int GetEndSample() const override {
        return static_cast<int>(samples_.size() / static_cast<std::size_t>(Channels()));
    }
    void Seek(int frame) override { position_ = std::clamp(frame, 0, GetEndSample()); }

private:
    const std::vector<int> samples_;
    int position_ = 0;
};

std::vector<int> SamplesOf(const LSoundSource& sound) {
    const int frames = sound->GetEndSample();
    std::vector<int> samples(static_cast<std::size_t>(frames) * sound->Channels());
    sound->Seek(0);
    for (int at = 0; at < frames; at += kMaxBlockFrames)
        sound->Read(&samples[static_cast<std::size_t>(at) * sound->Channels()],
                    std::min(kMaxBlockFrames, frames - at));
    return samples;
}

// As many samples as before.
std::vector<int> AtPitch(const std::vector<int>& samples, const LSoundSource& sound, int percent) {
    soundtouch::SoundTouch shifter;
    const std::size_t channels = sound->Channels();
    shifter.setSampleRate(static_cast<unsigned>(sound->SampleRate()));
    shifter.setChannels(static_cast<unsigned>(channels));
    SetForSpeech(shifter);
    shifter.setPitch(percent / 100.0);
    std::vector<float> block(kShiftedFrames * channels);
    std::vector<int> shifted;
    shifted.reserve(samples.size());
    const auto take = [&] {
        for (unsigned got = 1; got > 0;) {
            got = shifter.receiveSamples(block.data(), kShiftedFrames);
            for (std::size_t i = 0; i < got * channels && shifted.size() < samples.size(); ++i)
                shifted.push_back(
                    std::clamp(static_cast<int>(std::lround(block[i] * kStretchScale)),
                               -sound->PeakMagnitude(), sound->PeakMagnitude()));
        }
    };
    for (std::size_t at = 0; at < samples.size();) {
        const std::size_t count = std::min(block.size(), samples.size() - at);
        for (std::size_t i = 0; i < count; ++i)
            block[i] = static_cast<float>(samples[at + i]) / kStretchScale;
        shifter.putSamples(block.data(), static_cast<unsigned>(count / channels));
        at += count;
        take();
    }
    shifter.flush();
    take();
    shifted.resize(samples.size());
    return shifted;
}

}  // namespace

LSoundSource AtPitchAndVolume(const LSoundSource& sound, int pitchPercent, int volumePercent) {
    if (pitchPercent == kOwn && volumePercent == kOwn)
        return sound;
    std::vector<int> samples = SamplesOf(sound);
    if (pitchPercent != kOwn)
        samples = AtPitch(samples, sound, pitchPercent);
    for (int& sample : samples)
        sample = static_cast<int>(std::int64_t{sample} * volumePercent / kOwn);
    return LSoundSource(new SoundInMemory(sound, std::move(samples)));
}
