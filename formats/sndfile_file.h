// Sound files that our own readers do not know, through libsndfile: FLAC, Ogg, RF64, WAV of 24 and
// 32 bits, of floats and of telephone codecs, and more. FLAC is written, too.
#pragma once

#include <sndfile.h>

#include <memory>
#include <string>

#include "sound/sound_sink.h"
#include "sound/sound_source.h"

struct SndfileCloser {
    void operator()(SNDFILE* file) const { sf_close(file); }
};
using SndfileHandle = std::unique_ptr<SNDFILE, SndfileCloser>;

class LSndfileSource final : public LSoundSourceBase {
public:
    LSndfileSource(SndfileHandle file, const SF_INFO& info);

    void Read(int* buffer, int frames) override;
    int GetPositionSample() const override { return position_; }
    int GetEndSample() const override { return end_; }
    void Seek(int frame) override;
    int FramesMissing() const override { return missing_; }

    std::string FormatName() const;  // "FLAC (Free Lossless Audio Codec), Signed 16 bit PCM"

private:
    SndfileHandle file_;
    int format_;
    bool isFloat_;  // decoded as numbers around 1
    int end_;
    int position_ = 0;
    int missing_ = 0;
};

// kCannotOpen, or kUnsupported for whatever the library does not read.
LSoundSource OpenSndfileSource(const char* path);

// 16 bits a sample.
LSoundSink OpenFlacSink(const char* path, int rate, unsigned char channels);

// What a file holds, by its first bytes, as one would call it: "MPEG-4 sound"; empty when unknown.
std::string ForeignSoundName(const char* path);
