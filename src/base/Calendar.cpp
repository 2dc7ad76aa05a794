#include "base/Calendar.h"

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
    tzset();
    std::optional<WallTime> instant;
    // Left to find out for itself, the library would take of an hour that comes twice now the one
    // and now the other, by what it was asked before.
    for (const int isDaylightSaving : {1, 0}) {
        std::tm local{};
        local.tm_year = day.year - firstYear;
        local.tm_mon = day.month - 1;
        local.tm_mday = day.day;
        local.tm_hour = hour;
        local.tm_min = minute;
        local.tm_isdst = isDaylightSaving;
        local.tm_wday = -1; // set by a call that succeeds
        const auto time = std::mktime(&local);
        if (local.tm_wday != -1) {
            instant = WallTime(std::chrono::seconds(time));
        }
        if (local.tm_wday != -1 && local.tm_hour == hour && local.tm_min == minute) {
            break;
        }
    }
    return instant;
}

std::chrono::seconds Calendar::offsetFromGMT(WallTime instant) {
    return std::chrono::seconds(localTime(instant).tm_gmtoff);
}

} // namespace nocta
