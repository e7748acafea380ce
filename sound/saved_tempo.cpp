#include "sound/saved_tempo.h"

#include <cmath>
#include <memory>

#include "sound/tempo.h"

namespace {

class SavedTempo final : public LSoundProcessBase {
public:
    SavedTempo(const LSoundSource& played, int percent)
        : LSoundProcessBase(played),
          end_(static_cast<int>(std::ceil((played->GetEndSample() - played->GetPositionSample()) *
                                          100.0 / percent))) {}

    void Read(int* buffer, int frames) override {
        inner_->Read(buffer, frames);
        position_ += frames;
    }
    int GetPositionSample() const override { return position_; }
    int GetEndSample() const override { return end_; }
    void Seek(int) override {}
    int TimeRate() const override { return sampleRate_; }

private:
    int end_;
    int position_ = 0;
};

}  // namespace

LSoundSource AtTempo(const LSoundSource& source, int percent) {
    auto tempo = std::make_shared<LTempo>();
    tempo->Set(percent);
    if (tempo->Percent() == LTempo::kOwnPercent)
        return source;
    const LSoundSource played(new LTempoSource(source, tempo));
    return LSoundSource(new SavedTempo(played, tempo->Percent()));
}
