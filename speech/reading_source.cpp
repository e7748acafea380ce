#include "speech/reading_source.h"

#include <algorithm>

ReadingSource::ReadingSource(const LSoundSource& file, std::shared_ptr<SpeechTrack> track,
                             int speed)
    : LSoundSourceBase(file->SampleRate(), file->Channels(), file->PeakMagnitude()),
      file_(file),
      track_(std::move(track)),
      timeRate_((SampleRate() * 100 + speed / 2) / speed) {}

void ReadingSource::Read(int* buffer, int frames) {
    // Asked in this order: what is complete by now does not grow afterwards.
    const bool isStreaming = IsStreaming();
    const int there = track_->Frames() - GetPositionSample();
    const int count = isStreaming ? std::clamp(there, 0, frames) : frames;
    file_->Read(buffer, count);
    std::fill(buffer + static_cast<std::ptrdiff_t>(count) * Channels(),
              buffer + static_cast<std::ptrdiff_t>(frames) * Channels(), 0);
    track_->SetListener(GetPositionSample());
}

void ReadingSource::Seek(int frame) {
    // What is not there yet cannot be skipped to.
    file_->Seek(IsStreaming() ? std::min(frame, track_->Frames()) : frame);
    track_->SetListener(GetPositionSample());
}

void ReadingSource::WaitForStreamingData(int milliseconds) {
    track_->WaitBeyond(GetPositionSample(), milliseconds);
}
