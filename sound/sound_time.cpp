#include "sound/sound_time.h"

#include <cstdio>

namespace {

struct ClockParts {
    std::int64_t hours;
    int minutes;
    int seconds;
    int milliseconds;
};

// Writes the sign and splits the absolute time, after adding half of the shown precision.
ClockParts Split(std::int32_t milliseconds, int rounding, char*& out) {
    std::int64_t time = milliseconds;
    if (time < 0) {
        *out++ = '-';
        time = -time;
    }
    time += rounding;
    return {time / 3600000, static_cast<int>(time / 60000 % 60), static_cast<int>(time / 1000 % 60),
            static_cast<int>(time % 1000)};
}

void WriteClock(char* out, std::int32_t milliseconds, int rounding, int decimals) {
    const ClockParts parts = Split(milliseconds, rounding, out);
    const int written =
        std::snprintf(out, kSoundTimeTextSize - 1, "%ld:%.2ld:%.2d", static_cast<long>(parts.hours),
                      static_cast<long>(parts.minutes), parts.seconds);
    if (decimals == 0)
        return;
    const int divisor = decimals == 1 ? 100 : decimals == 2 ? 10 : 1;
    std::snprintf(out + written, kSoundTimeTextSize - 1 - static_cast<std::size_t>(written),
                  ".%.*d", decimals, parts.milliseconds / divisor);
}

}  // namespace

void LSoundTime::SetText(const char* text) {
    // Unsigned, so that absurdly long numbers wrap instead of being undefined.
    std::uint32_t result = 0;
    std::uint32_t field = 0;
    std::uint32_t multiplier = 1000;
    bool isNegative = false;
    for (; text != nullptr && *text != '\0'; ++text) {
        const char character = *text;
        if (character >= '0' && character <= '9') {
            const auto digit = static_cast<std::uint32_t>(character - '0');
            if (multiplier == 1000) {
                result += digit * 1000 + field * 9;
                field = field * 10 + digit * 1000;
            } else {
                result += digit * multiplier;
                multiplier /= 10;
            }
        } else if (character == ':') {
            result *= 60;
            field = 0;
        } else if (character == '.' && multiplier == 1000) {
            multiplier = 100;
        } else if (character == '-') {
            isNegative = true;
        }
    }
    milliseconds_ = static_cast<std::int32_t>(isNegative ? 0 - result : result);
}

void LSoundTime::_GetText0(char* out) const {
    WriteClock(out, milliseconds_, 500, 0);
}
void LSoundTime::_GetText1(char* out) const {
    WriteClock(out, milliseconds_, 50, 1);
}
void LSoundTime::_GetText2(char* out) const {
    WriteClock(out, milliseconds_, 5, 2);
}
void LSoundTime::_GetText(char* out) const {
    WriteClock(out, milliseconds_, 0, 3);
}
void LSoundTime::_GetTextHMMSSFFF(char* out) const {
    WriteClock(out, milliseconds_, 0, 3);
}
void LSoundTime::_GetTextHMMSSFF(char* out) const {
    WriteClock(out, milliseconds_, 0, 2);
}
void LSoundTime::_GetTextHMMSSF(char* out) const {
    WriteClock(out, milliseconds_, 0, 1);
}

void LSoundTime::_GetTextMMSSF(char* out) const {
    const ClockParts parts = Split(milliseconds_, 0, out);
    std::snprintf(out, kSoundTimeTextSize - 1, "%.2d:%.2d.%.1d", parts.minutes, parts.seconds,
                  parts.milliseconds / 100);
}

void LSoundTime::_GetTextMMSS(char* out) const {
    const ClockParts parts = Split(milliseconds_, 0, out);
    std::snprintf(out, kSoundTimeTextSize - 1, "%.2d:%.2d", parts.minutes, parts.seconds);
}
