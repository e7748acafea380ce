// Date and time values as stored texts. Local time throughout.
#pragma once

#include <cstdint>
#include <string>

// A moment in seconds since 1970 (UTC); 0 is "no time" and has the empty text.
class LDateTime {
public:
    constexpr LDateTime() = default;
    constexpr explicit LDateTime(std::int64_t unixSeconds) : seconds_(unixSeconds) {}

    static LDateTime Now();
    // Local calendar date and time of day; "no time" when there is no such moment.
    static LDateTime FromLocal(int year, int month, int day, int hour, int minute, int second);

    constexpr std::int64_t UnixSeconds() const { return seconds_; }
    constexpr bool IsZero() const { return seconds_ == 0; }
    constexpr bool operator==(const LDateTime&) const = default;
    constexpr auto operator<=>(const LDateTime&) const = default;

    // "dd/mm/yy-hh:mm:ss". Reading takes years below 70 as 20yy; a text of another form reads as
    // "no time".
    std::string Text() const;
    void SetText(const char* text);

private:
    std::int64_t seconds_ = 0;
};

// A time of day in seconds since midnight.
class LDayTime {
public:
    constexpr LDayTime() = default;
    constexpr explicit LDayTime(std::int32_t seconds) : seconds_(seconds) {}

    constexpr std::int32_t Seconds() const { return seconds_; }
    constexpr bool operator==(const LDayTime&) const = default;
    constexpr auto operator<=>(const LDayTime&) const = default;

    std::string Text() const;        // "hh:mm:ss"
    void SetText(const char* text);  // missing parts are 0, junk reads as midnight

private:
    std::int32_t seconds_ = 0;
};
