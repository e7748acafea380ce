// The sound of a reading while it is being made.
#pragma once

#include <memory>

#include "sound/sound_source.h"
#include "speech/speech_track.h"

// Reads a WAV file that grows as the track tells. Where it runs dry it delivers silence and stands
// still, so that no word is lost to a reader that does not wait. One thread at a time, as every
// source; the track is shared with the reading.
class ReadingSource final : public LSoundSourceBase {
public:
    // speed: that of the voices, in percent of their own.
    ReadingSource(const LSoundSource& file, std::shared_ptr<SpeechTrack> track, int speed);

    void Read(int* buffer, int frames) override;
    int GetPositionSample() const override { return file_->GetPositionSample(); }
    int GetEndSample() const override { return track_->Frames(); }  // by now
    void Seek(int frame) override;
    bool IsStreaming() const override { return !track_->IsComplete(); }
    void WaitForStreamingData(int milliseconds) override;
    int TimeRate() const override { return timeRate_; }
    int ReadError() const override { return file_->ReadError(); }

private:
    LSoundSource file_;
    std::shared_ptr<SpeechTrack> track_;
    const int timeRate_;
};
