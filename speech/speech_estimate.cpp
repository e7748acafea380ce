#include "speech/speech_estimate.h"

#include <sys/statvfs.h>

#include <algorithm>
#include <cstdio>

#include "speech/utf8_reader.h"

namespace {

// Prose takes 56 to 75 ms a letter or blank in most languages with the common voices.
constexpr double kSecondsPerLetter = 0.064;
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

// Of a letter of English, as eSpeak NG was measured to speak the scripts.
constexpr std::size_t kQuarters = 4;
struct Script {
    char32_t first;
    char32_t last;
    std::size_t quarters;
};
constexpr Script kScriptPaces[] = {
    {0x0590, 0x05FF, 5},    // Hebrew, whose vowels are not written
    {0x0600, 0x06FF, 6},    // Arabic
    {0x3000, 0x30FF, 8},    // Japanese syllables
    {0x3400, 0x9FFF, 19},   // ideographs
    {0xAC00, 0xD7AF, 9},    // Korean syllables
    {0x20000, 0x3FFFF, 19}  // rare ideographs
};

std::size_t QuartersOf(char32_t character) {
    if (character < kScriptPaces[0].first)
        return kQuarters;
    for (const Script& script : kScriptPaces)
        if (character >= script.first && character <= script.last)
            return script.quarters;
    return kQuarters;
}

}  // namespace

std::size_t LettersIn(std::string_view text) {
    std::size_t quarters = 0;
    for (Utf8Reader reader(text); !reader.AtEnd();)
        quarters += QuartersOf(reader.Next());
    return quarters / kQuarters;
}

std::size_t OwnLetters(std::size_t letters, std::string_view text) {
    const auto own = static_cast<double>(std::ranges::count_if(
        text, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; }));
    const auto all = static_cast<double>(std::max<std::size_t>(LettersIn(text), 1));
    return static_cast<std::size_t>(static_cast<double>(letters) * std::min(own / all, 1.0));
}

SpeechEstimate EstimateSpeech(std::size_t letters) {
    const double seconds = kSecondsPerLetter * static_cast<double>(letters);
    return {seconds, static_cast<long long>(seconds * kBytesPerSecond)};
}

std::size_t LargestTextForOneFile() {
    return static_cast<std::size_t>(kMargin * kMostSeconds / kSecondsPerLetter);
}

std::string SavingProblem(std::string_view text, const std::string& folder) {
    const std::size_t letters = LettersIn(text);
    const SpeechEstimate estimate = EstimateSpeech(letters);
    if (letters > LargestTextForOneFile())
        return "The speech would last about " + Hours(estimate.seconds) +
               ", more than one sound file can hold: the first " +
               std::to_string(OwnLetters(LargestTextForOneFile(), text)) +
               " letters of the text fit.";
    struct statvfs disk = {};
    if (::statvfs(folder.c_str(), &disk) != 0)
        return {};  // the writing will tell what is wrong
    const double free = static_cast<double>(disk.f_bavail) * static_cast<double>(disk.f_frsize);
    if (static_cast<double>(estimate.bytes) <= free)
        return {};
    return "The speech needs about " + Megabytes(static_cast<double>(estimate.bytes)) +
           ", but only " + Megabytes(free) + " are free on the disk: the first " +
           std::to_string(OwnLetters(
               static_cast<std::size_t>(free / kBytesPerSecond / kSecondsPerLetter), text)) +
           " letters of the text fit.";
}
