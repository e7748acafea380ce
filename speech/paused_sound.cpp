#include "speech/paused_sound.h"

#include <algorithm>
#include <cstddef>

#include "sound/sound_time.h"

namespace {

class PausedSound final : public LSoundProcessBase {
public:
    PausedSound(const LSoundSource& sound, int milliseconds)
        : LSoundProcessBase(sound),
          position_(sound->GetPositionSample()),
          pause_(LSoundTime(milliseconds).ToFrames(sound->SampleRate())) {}

    void Read(int* buffer, int frames) override {
        const int sounding = std::clamp(inner_->GetEndSample() - position_, 0, frames);
        if (sounding > 0)
            inner_->Read(buffer, sounding);
        std::fill_n(buffer + static_cast<std::size_t>(sounding) * Channels(),
                    static_cast<std::size_t>(frames - sounding) * Channels(), 0);
        position_ += frames;
    }
    int GetPositionSample() const override { return position_; }
    int GetEndSample() const override { return inner_->GetEndSample() + pause_; }
    void Seek(int frame) override {
        position_ = frame;
        inner_->Seek(std::min(frame, inner_->GetEndSample()));
    }

private:
    int position_;
    const int pause_;
};

}  // namespace

LSoundSource WithPause(const LSoundSource& sound, int milliseconds) {
    return milliseconds > 0 ? LSoundSource(new PausedSound(sound, milliseconds)) : sound;
}
