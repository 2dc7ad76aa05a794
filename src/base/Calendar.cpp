#include "base/Calendar.h"

#include <cerrno>
#include <ctime>

namespace nocta {

namespace {

constexpr int firstYear = 1900;

std::tm localTime(WallTime instant) {
    tzset(); // a zone that was changed since
    const auto seconds = std::chrono::floor<std::chrono::seconds>(instant.time_since_epoch());
    const auto time = static_cast<std::time_t>(seconds.count());
    std::tm local{};
    localtime_r(&time, &local);
    return local;
}

} // namespace

CalendarDay Calendar::dayOf(WallTime instant) {
    const auto local = localTime(instant);
    return {.year = local.tm_year + firstYear, .month = local.tm_mon + 1, .day = local.tm_mday};
}

int Calendar::dayOfYear(WallTime instant) {
    return localTime(instant).tm_yday + 1;
}

std::optional<WallTime> Calendar::instantAt(CalendarDay day, int hour, int minute) {
    std::tm local{};
    local.tm_year = day.year - firstYear;
    local.tm_mon = day.month - 1;
    local.tm_mday = day.day;
    local.tm_hour = hour;
    local.tm_min = minute;
    local.tm_isdst = -1; // the library finds out
    local.tm_wday = -1;  // set by a call that succeeds
    tzset();
    const auto time = std::mktime(&local);
    if (local.tm_wday == -1) {
        return std::nullopt;
    }
    return WallTime(std::chrono::seconds(time));
}

std::chrono::seconds Calendar::offsetFromGMT(WallTime instant) {
    return std::chrono::seconds(localTime(instant).tm_gmtoff);
}

} // namespace nocta
