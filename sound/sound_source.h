// The pull side of the sound pipeline.
//
// A *sample* is one signed 32-bit integer of one channel: a 16-bit value times 16, full scale
// +-524288. A *frame* holds one sample for each channel, interleaved. Every count below is in
// frames: Read(buffer, 100) of a stereo source writes 200 integers. No single call asks for more
// than kMaxBlockFrames.
#pragma once

#include <cstdint>

constexpr int kMaxBlockFrames = 8192;
constexpr int kMaxPcm16Peak = 524272;  // 32767 * 16, the largest value a 16-bit source delivers

// Values of a source's status byte; everything but kGood means "reads as silence, do not play".
namespace SoundStatus {
constexpr std::uint8_t kGood = 0;
constexpr std::uint8_t kPlaceholder = 1;    // closed handle, or a raw codec nobody knows
constexpr std::uint8_t kInnerNotGood = 2;   // a wrapper around a source that was not good
constexpr std::uint8_t kInvalidFormat = 3;  // malformed file, or a format replaced by a default
constexpr std::uint8_t kCannotOpen = 4;
constexpr std::uint8_t kUnsupported = 5;  // well-formed, but in a format that is not read here
}  // namespace SoundStatus

// Abstract source. Counted by LSoundSource handles; the count is not atomic, so an object and
// everything it reaches belong to one thread at a time.
class LSoundSourceBase {
public:
    // rate in frames a second, peakMagnitude the largest absolute sample that Read can deliver. A
    // rate below 1 becomes 44100 and 0 channels become 1, both with status kInvalidFormat.
    LSoundSourceBase(int rate, unsigned char channels, int peakMagnitude);
    virtual ~LSoundSourceBase();
    LSoundSourceBase(const LSoundSourceBase&) = delete;
    LSoundSourceBase& operator=(const LSoundSourceBase&) = delete;

    // Fills buffer with the next frames * Channels() samples and advances; past the end it delivers
    // silence.
    virtual void Read(int* buffer, int frames) = 0;
    virtual int GetPositionSample() const = 0;  // frames; negative while in a lead-in of silence
    virtual int GetEndSample() const = 0;       // frames
    virtual void Seek(int frame);
    // Frames that Read can deliver before it runs past what is there. More or fewer than from
    // position to end where a source plays faster or slower than its own time.
    virtual int ReadableFrames() const;
    // True while the end is not yet known because data is still being produced.
    virtual bool IsStreaming() const;
    // Blocks until more data may be available; the base just sleeps.
    virtual void WaitForStreamingData(int milliseconds);

    // Where a frame of this source comes from: its number, in frames of the source that all
    // conversion began with. Positions of different rates are compared by it.
    virtual int OriginFrame(int frame) const { return frame; }

    // Frames in a second of its own time: fewer than in a second of sound where a speaker was made
    // to speak faster, and more where slower.
    virtual int TimeRate() const { return sampleRate_; }

    // errno of the first read that the system refused, 0 when there was none. Read delivers silence
    // then, so programs ask here before they call what they read whole.
    virtual int ReadError() const { return readError_; }

    // Frames that the source was said to have, by its header mostly, and that are not there: more
    // than 0 when a file was cut short.
    virtual int FramesMissing() const { return 0; }

    int SampleRate() const { return sampleRate_; }
    int PeakMagnitude() const { return peakMagnitude_; }
    unsigned char Channels() const { return channels_; }
    std::uint8_t Status() const { return status_; }

protected:
    // The constructor's rules, for a source that learns its format later.
    void SetFormat(int rate, unsigned char channels, int peakMagnitude);
    void NoteReadError(int error) {
        if (readError_ == 0)
            readError_ = error;
    }

    std::int32_t sampleRate_ = 0;
    std::int32_t peakMagnitude_ = 0;
    std::uint8_t channels_ = 0;
    std::uint8_t status_ = SoundStatus::kGood;

private:
    friend class LSoundSource;
    std::uint16_t references_ = 0;
    int readError_ = 0;
};

// What a closed or failed handle points at: 11025 Hz mono silence of length 0.
class LSoundSourceError final : public LSoundSourceBase {
public:
    explicit LSoundSourceError(std::uint8_t status = SoundStatus::kPlaceholder);
    void Read(int* buffer, int frames) override;
    int GetPositionSample() const override { return 0; }
    int GetEndSample() const override { return 0; }
};

// Counted reference to a source; never null.
class LSoundSource {
public:
    LSoundSource();                                   // an error placeholder
    explicit LSoundSource(LSoundSourceBase* object);  // takes a reference; object is from new
    LSoundSource(const LSoundSource& other);
    LSoundSource& operator=(const LSoundSource& other);
    ~LSoundSource();

    // Drops the reference and points at a fresh placeholder.
    void Close();

    LSoundSourceBase* operator->() const { return object_; }
    LSoundSourceBase& operator*() const { return *object_; }
    LSoundSourceBase* Get() const { return object_; }

private:
    static void Release(LSoundSourceBase* object);
    LSoundSourceBase* object_;
};

// An error placeholder.
LSoundSource FailedSource(std::uint8_t status);

// A source that transforms another: rate, channels and peak come from the inner source unless the
// derived class changes them, and everything but Read forwards.
class LSoundProcessBase : public LSoundSourceBase {
public:
    explicit LSoundProcessBase(const LSoundSource& inner);
    int GetPositionSample() const override { return inner_->GetPositionSample(); }
    int GetEndSample() const override { return inner_->GetEndSample(); }
    void Seek(int frame) override { inner_->Seek(frame); }
    bool IsStreaming() const override { return inner_->IsStreaming(); }
    int OriginFrame(int frame) const override { return inner_->OriginFrame(frame); }
    int TimeRate() const override;
    int ReadError() const override { return inner_->ReadError(); }
    void WaitForStreamingData(int milliseconds) override {
        inner_->WaitForStreamingData(milliseconds);
    }

protected:
    LSoundSource inner_;
};
