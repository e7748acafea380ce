#include "app/saving/speech_size.h"

#include <algorithm>

#include "speech/speech_estimate.h"

namespace {

constexpr double kSlowestPace = 8.0;  // letters a second
constexpr int kEngineRate = 16000;
constexpr double kMostFrames = 0x7FFFFFFF;
constexpr double kMostFileBytes = 0xFFFFFF00;  // sizes in sound files have 32 bits

// Seconds.
double LongestSound(int rate, int channels) {
    return std::min(kMostFrames / rate, kMostFileBytes / (2.0 * rate * channels));
}

}  // namespace

SpeechSize EstimateSpeechSize(std::size_t letters, int rate, int channels) {
    const double seconds = EstimateSpeech(letters).seconds;
    const double longest = std::min(LongestSound(rate, channels), LongestSound(kEngineRate, 1));
    return {static_cast<long long>(seconds * kEngineRate * 2),
            static_cast<long long>(seconds * 2.0 * rate * channels), seconds <= longest,
            static_cast<std::size_t>(longest * kSlowestPace)};
}

bool FitsIntoFile(double seconds, int rate, int channels) {
    return seconds <= LongestSound(rate, channels);
}
