#include "books/book_seam.h"

#include <algorithm>
#include <numeric>

#include "books/book_estimate.h"
#include "books/codec_frames.h"
#include "formats/mp3_sink.h"
#include "formats/opus_sink.h"

namespace {

struct CodecManner {
    int frame;     // samples at the encoder's rate; 0: lossless
    int settling;  // frames until it is as if it had run for long
    int ahead;     // frames that it looks ahead
};

// Opus decoders take 80 ms to forget where they began, which is what takes longest.
CodecManner MannerOf(SoundType type, int encodedRate) {
    switch (type) {
        case SoundType::kMp3:
            return {encodedRate >= 32000 ? 1152 : 576, 6, 3};
        case SoundType::kOpus:
            return {960, 8, 2};
        case SoundType::kM4b:
            return {1024, 4, 3};
        default:
            return {0, 0, 0};
    }
}

}  // namespace

int EncodedRate(SoundType type, int kilobits, int rate) {
    if (type == SoundType::kOpus)
        return kOpusRate;
    if (type == SoundType::kM4b)
        return AacRate(rate);
    if (type != SoundType::kMp3)
        return rate;
    LMp3EncodeSettings settings;
    settings.cbrBitRate =
        static_cast<std::uint16_t>(kilobits > 0 ? kilobits : SpeechKilobits(type, rate));
    return Mp3EncodedRate(settings, rate);
}

BookSeam::BookSeam(SoundType type, int kilobits, int speechRate) {
    const int encodedRate = EncodedRate(type, kilobits, speechRate);
    const CodecManner manner = MannerOf(type, encodedRate);
    if (manner.frame == 0)
        return;
    // The fewest frames that are a whole number of speech frames.
    const std::int64_t scaled = std::int64_t{manner.frame} * speechRate;
    frames_ = encodedRate / std::gcd(scaled, std::int64_t{encodedRate});
    step_ = frames_ * scaled / encodedRate;
    shortest_ = (manner.settling + manner.ahead) * scaled / encodedRate + 1;
    settling_ = manner.settling;
}

std::int64_t BookSeam::Lead(std::int64_t begin) const {
    if (step_ == 0)
        return 0;
    return begin - std::max<std::int64_t>(begin - shortest_, 0) / step_ * step_;
}

std::int64_t BookSeam::LongestLead() const {
    return shortest_ + step_;
}

std::int64_t BookSeam::FramesBefore(std::int64_t begin) const {
    return step_ == 0 ? 0 : (begin - Lead(begin)) / step_ * frames_;
}

std::int64_t BookSeam::FirstFrame(std::int64_t begin) const {
    // What stands before it may be shorter than an encoder takes to settle: then its lead is all of
    // that, and the section before it gives nothing.
    const std::int64_t before = FramesBefore(begin);
    return before == 0 ? 0 : before + settling_;
}
