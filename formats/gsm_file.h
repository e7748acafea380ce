// Headerless files of 33-byte GSM 06.10 frames: 8000 Hz, mono, 160 samples a frame.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "formats/gsm_decoder.h"
#include "formats/gsm_encoder.h"
#include "foundation/files/unique_fd.h"
#include "sound/sound_sink.h"
#include "sound/sound_source.h"

constexpr int kGsmRate = 8000;
constexpr int kGsmPeak = 1048544;

class LGSMFileSink final : public LSoundSinkBase {
public:
    // Empties or creates the file; status 1 when it cannot be opened.
    explicit LGSMFileSink(const char* path);
    ~LGSMFileSink() override;
    void Write(const int* buffer, int frames) override;
    void WriteFrame(const int* samples160);  // not counted as written

protected:
    void Complete() override;  // pads a partial frame with silence and writes it

private:
    void Put(const unsigned char* bytes, std::size_t size);
    const int* EncodeWholeFrames(const int* buffer, int count);

    LGSMEncoder encoder_;
    UniqueFd file_;
    int pending_[gsm::kFrameSamples];
    int pendingCount_ = 0;
};

// The length is taken from the file's size at opening; a trailing partial frame does not count. A
// negative position is kept, but the sound starts at once: there is no lead-in.
class LGSMFileSource final : public LSoundSourceBase {
public:
    explicit LGSMFileSource(UniqueFd file);  // a regular file
    void Read(int* buffer, int frames) override;
    int GetPositionSample() const override { return position_; }
    int GetEndSample() const override { return length_; }
    // Decoding starts anew at the frame that holds the sample, so its first milliseconds differ
    // from straight reading.
    void Seek(int frame) override;

private:
    static constexpr std::size_t kInputBytes = kGsmNormalBytes * 512;

    // The next coded frame of the file, or null at the end.
    const unsigned char* NextCodedFrame();
    void DropInput() { inputAt_ = inputEnd_ = 0; }

    LGSMDecoder decoder_;
    UniqueFd file_;
    int position_ = 0;
    int length_;
    int nextCodedFrame_ = 0;
    int decoded_[gsm::kFrameSamples];
    int decodedAt_ = gsm::kFrameSamples;  // the samples before it were handed out
    std::unique_ptr<unsigned char[]> input_;
    std::size_t inputAt_ = 0;
    std::size_t inputEnd_ = 0;
};

class LGSMFile {
public:
    static LSoundSource OpenSource(const char* path);  // status 4 when it cannot be opened
    static LSoundSink OpenSink(const char* path);      // status 1 when it cannot be opened
};
