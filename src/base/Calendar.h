#pragma once

#include "base/RunLoop.h"

#include <chrono>
#include <compare>
#include <optional>

namespace nocta {

/// A day of the local calendar.
struct CalendarDay {
    int year = 0;
    int month = 1; ///< 1–12
    int day = 1;   ///< 1–31

    auto operator<=>(const CalendarDay&) const = default;
};

/// The user's calendar and time zone. Each call asks the C library again, so that a change of the
/// zone takes effect while the program runs. It reads no clock.
struct Calendar {
    static CalendarDay dayOf(WallTime instant);

    /// 1 for the first of January.
    static int dayOfYear(WallTime instant);

    /// The instant of a local time, with 0 seconds. If the clock shows the time twice, it means the
    /// first. If the clock skips the time, it moves forward by the length of the gap: when the
    /// clock goes from 02:00 to 03:00, 02:30 means 03:30. None if the C library cannot represent
    /// the instant.
    static std::optional<WallTime> instantAt(CalendarDay day, int hour, int minute);

    /// By how much local time is ahead of GMT at an instant.
    static std::chrono::seconds offsetFromGMT(WallTime instant);
};

} // namespace nocta
