#include "app/saving/speech_size.h"

#include <algorithm>

namespace {

// Bytes of text a second: English voices read 11, slow ones fewer.
constexpr double kUsualPace = 11.0;
constexpr double kSlowestPace = 8.0;
constexpr int kEngineRate = 16000;
constexpr double kMostFrames = 0x7FFFFFFF;
constexpr double kMostFileBytes = 0xFFFFFF00;  // sizes in sound files have 32 bits

// Seconds.
double LongestSound(int rate, int channels) {
    return std::min(kMostFrames / rate, kMostFileBytes / (2.0 * rate * channels));
}

}  // namespace

SpeechSize EstimateSpeechSize(std::size_t textBytes, int rate, int channels) {
    const double seconds = static_cast<double>(textBytes) / kUsualPace;
    const double longest = std::min(LongestSound(rate, channels), LongestSound(kEngineRate, 1));
    return {static_cast<long long>(seconds * kEngineRate * 2),
            static_cast<long long>(seconds * 2.0 * rate * channels), seconds <= longest,
            static_cast<std::size_t>(longest * kSlowestPace)};
}

bool FitsIntoFile(double seconds, int rate, int channels) {
    return seconds <= LongestSound(rate, channels);
}
