#include "base/Calendar.h"

#include <ctime>

namespace nocta {

namespace {

constexpr int firstYear = 1900;

constexpr std::time_t secondsPerDay = 86400;

std::tm localTime(std::time_t time) {
    tzset(); // the time zone may have changed since the last call
    std::tm local{};
    localtime_r(&time, &local);
    return local;
}

std::tm localTime(WallTime instant) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(instant.time_since_epoch());
    return localTime(static_cast<std::time_t>(seconds.count()));
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
    const auto asGMT = timegm(&local);
    if (asGMT == -1) { // an error: a valid instant here is a multiple of 60
        return std::nullopt;
    }
    // An offset is shorter than a day, so these two are the offsets before and after any change
    // near the local time. mktime would use its daylight-saving flag to choose between them, but
    // some zones set that flag in winter, and some changes of the offset do not affect it.
    const auto offsetAt = [](std::time_t time) { return localTime(time).tm_gmtoff; };
    const auto before = offsetAt(asGMT - secondsPerDay);
    const auto after = offsetAt(asGMT + secondsPerDay);
    const auto exists = [&](long offset) { return offsetAt(asGMT - offset) == offset; };
    // The offset from before the change selects the first of two instants with the same local time.
    // It also moves a local time that does not exist forward by the length of the gap.
    const auto offset = exists(before) || !exists(after) ? before : after;
    return WallTime(std::chrono::seconds(asGMT - offset));
}

std::chrono::seconds Calendar::offsetFromGMT(WallTime instant) {
    return std::chrono::seconds(localTime(instant).tm_gmtoff);
}

} // namespace nocta
