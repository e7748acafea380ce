// Clock times shown to the user, and frames in milliseconds.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>

constexpr std::size_t kSoundTimeTextSize = 262;  // sign, 260 characters, terminator

// Signed milliseconds, passed by value.
class LSoundTime {
public:
    constexpr LSoundTime() = default;
    constexpr explicit LSoundTime(std::int32_t milliseconds) : milliseconds_(milliseconds) {}

    // A rate below 1 gives 0. Results past 32 bits wrap, as a file of 25 days would be needed for
    // that.
    static constexpr LSoundTime FromFrames(std::int32_t frames, std::int32_t rate) {
        if (rate < 1)
            return LSoundTime();
        const std::int64_t milliseconds = std::int64_t{frames} * 1000 / rate;
        return LSoundTime(static_cast<std::int32_t>(milliseconds));
    }
    constexpr std::int32_t ToFrames(std::int32_t rate) const {
        return static_cast<std::int32_t>(std::int64_t{milliseconds_} * rate / 1000);
    }

    constexpr std::int32_t Milliseconds() const { return milliseconds_; }
    constexpr bool operator==(const LSoundTime&) const = default;
    constexpr auto operator<=>(const LSoundTime&) const = default;

    // Reads "h:mm:ss.fff" and shorter forms; a bare number is seconds. Unknown characters are
    // skipped, digits after the third decimal add nothing, "-" anywhere negates. Null reads as 0.
    void SetText(const char* text);

    // Each writes into a buffer of kSoundTimeTextSize characters, "-" first when negative. The
    // first three round to what they show, the others cut.
    void _GetText0(char* out) const;         // h:mm:ss
    void _GetText1(char* out) const;         // h:mm:ss.f
    void _GetText2(char* out) const;         // h:mm:ss.ff
    void _GetText(char* out) const;          // h:mm:ss.fff
    void _GetTextHMMSSFFF(char* out) const;  // h:mm:ss.fff
    void _GetTextHMMSSFF(char* out) const;   // h:mm:ss.ff
    void _GetTextHMMSSF(char* out) const;    // h:mm:ss.f
    void _GetTextMMSSF(
        char* out) const;  // mm:ss.f, whole hours dropped: for the short clips of the player panel
    void _GetTextMMSS(char* out) const;  // mm:ss, whole hours dropped

private:
    std::int32_t milliseconds_ = 0;
};
static_assert(sizeof(LSoundTime) == 4);
