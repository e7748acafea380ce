// Opening any sound file that can be read.
#pragma once

#include <optional>
#include <string>

#include "formats/sound_types.h"
#include "formats/wave_format.h"
#include "sound/sound_source.h"

// How to read a file that does not say so itself. What is not set comes from the type: 8000 Hz mono
// for .ul, .al and .vox, 44100 Hz stereo 16-bit for .raw.
struct RawReading {
    std::optional<int> rate;
    std::optional<int> channels;
    std::optional<SampleEncoding> encoding;

    bool IsAsked() const { return rate || channels || encoding; }
};

struct SoundInput {
    SoundType type = SoundType::kWav;
    SampleEncoding encoding = SampleEncoding::kPcm16;  // of files that do not tell
    LSoundSource source;                               // good when error is empty
    LSoundSource file;                                 // the same before any cut
    int missingFrames = 0;       // that the header announces and the file does not hold, at the end
    bool isUnannounced = false;  // the header says that there is no sound, but there is
    std::string error;           // without the path
};

// The type comes from the extension; a file of another or no extension is headerless when raw says
// how to read it.
SoundInput OpenSoundInput(const std::string& path, const RawReading& raw);

// Why a good input cannot be converted: a rate outside what the converters are good for, which only
// damaged or made-up files have. Empty when it can.
std::string RateProblem(const SoundInput& input);

// What went wrong while the input was read, in words; empty when nothing did.
std::string ReadingProblem(const SoundInput& input);

// A part of a source: frames [start, end) of it, as a source of its own. The inner source stands at
// start already.
class SectionSource final : public LSoundProcessBase {
public:
    SectionSource(const LSoundSource& inner, int start, int end);
    void Read(int* buffer, int frames) override;
    int GetPositionSample() const override;
    int GetEndSample() const override { return end_ - start_; }
    void Seek(int frame) override { inner_->Seek(frame + start_); }
    bool IsStreaming() const override { return false; }

private:
    int start_;
    int end_;
};

// Cuts input.source down to [start, end) frames, both within [0, its end]. Sound that is decoded
// from what went before (GSM, ADPCM) is decoded from the beginning, so that a part sounds as it
// does in the whole.
void CutInput(SoundInput& input, int start, int end);
