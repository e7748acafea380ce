// Doubles of the sound pipeline's three ends: a source over a vector, a sink that keeps what it
// gets, and a progress object that records what a run tells its user.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "foundation/processes/process_result.h"
#include "foundation/threads/progress.h"
#include "foundation/threads/signal_object.h"
#include "sound/sound_sink.h"
#include "sound/sound_source.h"

// Interleaved samples in memory. Made with new and owned by handles; keep a plain pointer beside
// the handle to look at the recorded calls.
class MemorySource : public LSoundSourceBase {
public:
    MemorySource(std::vector<int> samples, int rate, unsigned char channels = 1,
                 int peakMagnitude = kMaxPcm16Peak)
        : LSoundSourceBase(rate, channels, peakMagnitude), samples_(std::move(samples)) {}

    void Read(int* buffer, int frames) override {
        readSizes.push_back(frames);
        framesTooEarly +=
            isStreaming_ ? std::max<std::int64_t>(position_ + frames - available_, 0) : 0;
        for (int frame = 0; frame < frames; ++frame, ++position_) {
            for (int channel = 0; channel < Channels(); ++channel)
                *buffer++ = SampleAt(position_, channel);
        }
    }
    int GetPositionSample() const override { return static_cast<int>(position_); }
    int GetEndSample() const override { return isStreaming_ ? available_ : TotalFrames(); }
    void Seek(int frame) override {
        seeks.push_back(frame);
        position_ = frame;
    }
    bool IsStreaming() const override { return isStreaming_; }
    // Lets another portion arrive; the stream ends when all of it has.
    void WaitForStreamingData(int milliseconds) override {
        waits.push_back(milliseconds);
        available_ = std::min(available_ + portion_, TotalFrames());
        isStreaming_ = available_ < TotalFrames();
    }

    // From now on only `available` frames exist (the rest reads as silence), and each wait brings
    // `portion` more.
    void SetStreaming(int available, int portion) {
        isStreaming_ = true;
        available_ = available;
        portion_ = portion;
    }
    void SetStatus(std::uint8_t status) { status_ = status; }
    int TotalFrames() const { return static_cast<int>(samples_.size()) / Channels(); }

    std::vector<int> readSizes;
    std::vector<int> seeks;
    std::vector<int> waits;
    std::int64_t framesTooEarly = 0;  // read before they had arrived

private:
    int SampleAt(std::int64_t frame, int channel) const {
        if (frame < 0 || frame >= GetEndSample())
            return 0;
        return samples_[static_cast<std::size_t>(frame * Channels() + channel)];
    }

    std::vector<int> samples_;
    std::int64_t position_ = 0;
    bool isStreaming_ = false;
    int available_ = 0;
    int portion_ = 0;
};

// Keeps every sample and the size of every block.
class RecordingSink : public LSoundSinkBase {
public:
    RecordingSink(int rate, unsigned char channels) : LSoundSinkBase(rate, channels) {}

    void Write(const int* buffer, int frames) override {
        samples.insert(samples.end(), buffer, buffer + frames * Channels());
        blockFrames.push_back(frames);
        framesWritten_ += frames;
    }
    void Seek(int frame) override { seeks.push_back(frame); }
    void SetStatus(std::uint8_t status) { status_ = status; }
    void FailWrites(int error) { NoteWriteError(error); }

    std::vector<int> samples;
    std::vector<int> blockFrames;
    std::vector<int> seeks;
};

// Nothing ever waits: the waits answer what the test has set.
class RecordingProgress : public LProgress {
public:
    bool IsShown() const override { return isShown; }
    void SetFirstLabel(const char* text) override { firstLabels.emplace_back(text); }
    void SetSecondLabel(const char* text) override { secondLabels.emplace_back(text); }
    void SetFraction(double fraction) override { fractions.push_back(fraction); }
    bool IsToStop() override { return stopTests++ >= stopAfter; }
    LProcessResult ProcessWaitSignal(LSignalObjectRef, unsigned int milliseconds) override {
        waits.push_back(milliseconds);
        return IsToStop() ? kProcessStopped : waitResult;
    }
    LProcessResult ProcessWait(unsigned int milliseconds) override {
        waits.push_back(milliseconds);
        return IsToStop() ? kProcessStopped : kProcessDone;
    }

    bool isShown = true;
    int stopAfter = 1 << 30;  // the number of stop tests that still answer "go on"
    LProcessResult waitResult = kProcessDone;

    int stopTests = 0;
    std::vector<std::string> firstLabels;
    std::vector<std::string> secondLabels;
    std::vector<double> fractions;
    std::vector<unsigned int> waits;
};

// Reads everything between a source's position and its end, in calls of `chunk` frames.
inline std::vector<int> ReadAll(LSoundSource& source, int chunk = kMaxBlockFrames) {
    std::vector<int> samples;
    const int channels = source->Channels();
    std::vector<int> block(static_cast<std::size_t>(chunk * channels));
    while (true) {
        const int remaining = source->GetEndSample() - source->GetPositionSample();
        if (remaining < 1)
            return samples;
        const int frames = std::min(remaining, chunk);
        source->Read(block.data(), frames);
        samples.insert(samples.end(), block.begin(), block.begin() + frames * channels);
    }
}

// Reads exactly `frames` frames, in calls of `chunk` frames.
inline std::vector<int> ReadFrames(LSoundSource& source, int frames, int chunk = kMaxBlockFrames) {
    std::vector<int> samples(static_cast<std::size_t>(frames * source->Channels()));
    for (int done = 0; done < frames; done += chunk)
        source->Read(samples.data() + done * source->Channels(), std::min(chunk, frames - done));
    return samples;
}
