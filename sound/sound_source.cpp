#include "sound/sound_source.h"

#include <time.h>

#include <algorithm>
#include <cstddef>

LSoundSourceBase::LSoundSourceBase(int rate, unsigned char channels, int peakMagnitude) {
    SetFormat(rate, channels, peakMagnitude);
}

LSoundSourceBase::~LSoundSourceBase() = default;

void LSoundSourceBase::SetFormat(int rate, unsigned char channels, int peakMagnitude) {
    sampleRate_ = rate;
    peakMagnitude_ = peakMagnitude;
    channels_ = channels;
    if (sampleRate_ < 1) {
        sampleRate_ = 44100;
        status_ = SoundStatus::kInvalidFormat;
    }
    if (channels_ == 0) {
        channels_ = 1;
        status_ = SoundStatus::kInvalidFormat;
    }
}

void LSoundSourceBase::Seek(int) {}

int LSoundSourceBase::ReadableFrames() const {
    return std::max(0, GetEndSample() - GetPositionSample());
}

bool LSoundSourceBase::IsStreaming() const {
    return false;
}

void LSoundSourceBase::WaitForStreamingData(int milliseconds) {
    if (milliseconds < 1)
        return;
    timespec time{};
    time.tv_sec = milliseconds / 1000;
    time.tv_nsec = milliseconds % 1000 * 1000000L;
    nanosleep(&time, nullptr);  // waking early only makes the caller look again sooner
}

LSoundSourceError::LSoundSourceError(std::uint8_t status) : LSoundSourceBase(11025, 1, 2097152) {
    status_ = status;
}

void LSoundSourceError::Read(int* buffer, int frames) {
    std::fill_n(buffer, std::max(frames, 0), 0);
}

LSoundSource::LSoundSource() : LSoundSource(new LSoundSourceError) {}

LSoundSource::LSoundSource(LSoundSourceBase* object)
    : object_(object != nullptr ? object : new LSoundSourceError) {
    ++object_->references_;
}

LSoundSource::LSoundSource(const LSoundSource& other) : object_(other.object_) {
    ++object_->references_;
}

LSoundSource& LSoundSource::operator=(const LSoundSource& other) {
    LSoundSourceBase* const old = object_;
    ++other.object_->references_;
    object_ = other.object_;
    Release(old);
    return *this;
}

LSoundSource::~LSoundSource() {
    Release(object_);
}

void LSoundSource::Close() {
    *this = LSoundSource();
}

LSoundSource FailedSource(std::uint8_t status) {
    return LSoundSource(new LSoundSourceError(status));
}

void LSoundSource::Release(LSoundSourceBase* object) {
    if (--object->references_ == 0)
        delete object;
}

LSoundProcessBase::LSoundProcessBase(const LSoundSource& inner)
    : LSoundSourceBase(inner->SampleRate(), inner->Channels(), inner->PeakMagnitude()),
      inner_(inner) {
    if (inner_->Status() != SoundStatus::kGood)
        status_ = SoundStatus::kInnerNotGood;
}

int LSoundProcessBase::TimeRate() const {
    return static_cast<int>(std::int64_t{inner_->TimeRate()} * sampleRate_ /
                            std::max(inner_->SampleRate(), 1));
}
