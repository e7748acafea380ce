#include "foundation/date_time.h"

#include <glib.h>

#include <cstdio>
#include <memory>

namespace {

struct DateTimeRelease {
    void operator()(GDateTime* value) const { g_date_time_unref(value); }
};
using DateTimeOwner = std::unique_ptr<GDateTime, DateTimeRelease>;

constexpr int kFirstYearOf1900s = 70;
constexpr std::int32_t kSecondsADay = 24 * 60 * 60;

}  // namespace

LDateTime LDateTime::Now() {
    return LDateTime(g_get_real_time() / 1000000);
}

LDateTime LDateTime::FromLocal(int year, int month, int day, int hour, int minute, int second) {
    const DateTimeOwner local(g_date_time_new_local(year, month, day, hour, minute, second));
    return local ? LDateTime(g_date_time_to_unix(local.get())) : LDateTime();
}

std::string LDateTime::Text() const {
    if (IsZero())
        return std::string();
    const DateTimeOwner local(g_date_time_new_from_unix_local(seconds_));
    if (!local)
        return std::string();
    char text[64];
    std::snprintf(text, sizeof text, "%.2d/%.2d/%.2d-%.2d:%.2d:%.2d",
                  g_date_time_get_day_of_month(local.get()), g_date_time_get_month(local.get()),
                  g_date_time_get_year(local.get()) % 100, g_date_time_get_hour(local.get()),
                  g_date_time_get_minute(local.get()), g_date_time_get_second(local.get()));
    return text;
}

void LDateTime::SetText(const char* text) {
    int day = 0, month = 0, year = 0, hour = 0, minute = 0, second = 0;
    *this = LDateTime();
    if (!text ||
        std::sscanf(text, "%2d/%2d/%2d-%2d:%2d:%2d", &day, &month, &year, &hour, &minute,
                    &second) != 6 ||
        year < 0)
        return;
    *this = FromLocal(year + (year < kFirstYearOf1900s ? 2000 : 1900), month, day, hour, minute,
                      second);
}

std::string LDayTime::Text() const {
    char text[64];
    std::snprintf(text, sizeof text, "%.2d:%.2d:%.2d", seconds_ / 3600, seconds_ / 60 % 60,
                  seconds_ % 60);
    return text;
}

void LDayTime::SetText(const char* text) {
    int hour = 0, minute = 0, second = 0;
    seconds_ = 0;
    if (!text || std::sscanf(text, "%3d:%3d:%3d", &hour, &minute, &second) < 1)
        return;
    const std::int32_t total = hour * 3600 + minute * 60 + second;
    if (total >= 0 && total <= kSecondsADay)
        seconds_ = total;
}
