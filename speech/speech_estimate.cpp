#include "speech/speech_estimate.h"

#include <sys/statvfs.h>

#include <cstdio>

namespace {

// English prose with the common voices takes 65 to 75 ms a letter or blank.
constexpr double kSecondsPerLetter = 0.07;
constexpr double kBytesPerSecond = 2 * 16000;
constexpr double kMostSeconds = 0x7FFFFFFF / 16000.0;  // of a 32-bit frame count
constexpr double kMargin = 0.9;

std::string Hours(double seconds) {
    char text[32];
    std::snprintf(text, sizeof text, "%.0f hours", seconds / 3600);
    return text;
}

std::string Megabytes(double bytes) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f MB", bytes / 1e6);
    return text;
}

}  // namespace

std::size_t LettersIn(std::string_view text) {
    std::size_t letters = 0;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        const bool isFurther = (byte & 0xC0U) == 0x80U;
        const bool isSyllable = byte >= 0xE3 && byte <= 0xED;  // U+3000 to U+DFFF
        letters += isFurther ? 0 : isSyllable ? 3 : 1;
    }
    return letters;
}

SpeechEstimate EstimateSpeech(std::size_t letters) {
    const double seconds = kSecondsPerLetter * static_cast<double>(letters);
    return {seconds, static_cast<long long>(seconds * kBytesPerSecond)};
}

std::size_t LargestTextForOneFile() {
    return static_cast<std::size_t>(kMargin * kMostSeconds / kSecondsPerLetter);
}

std::string SavingProblem(std::size_t letters, const std::string& folder) {
    const SpeechEstimate estimate = EstimateSpeech(letters);
    if (letters > LargestTextForOneFile())
        return "The speech would last about " + Hours(estimate.seconds) +
               ", more than one sound file can hold: the first " +
               std::to_string(LargestTextForOneFile()) + " letters of the text fit.";
    struct statvfs disk = {};
    if (::statvfs(folder.c_str(), &disk) != 0)
        return {};  // the writing will tell what is wrong
    const double free = static_cast<double>(disk.f_bavail) * static_cast<double>(disk.f_frsize);
    if (static_cast<double>(estimate.bytes) <= free)
        return {};
    return "The speech needs about " + Megabytes(static_cast<double>(estimate.bytes)) +
           ", but only " + Megabytes(free) + " are free on the disk: the first " +
           std::to_string(static_cast<long long>(free / kBytesPerSecond / kSecondsPerLetter)) +
           " letters of the text fit.";
}
