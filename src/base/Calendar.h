#pragma once

#include "base/RunLoop.h"

#include <chrono>
#include <compare>
#include <optional>

namespace nocta {

/// A day in the local calendar.
struct CalendarDay {
    int year = 0;
    int month = 1; ///< 1–12
    int day = 1;   ///< 1–31

    auto operator<=>(const CalendarDay&) const = default;
};

/// The user's calendar and time zone. Every call reads the time zone again, so that a change to the
/// zone takes effect while the program runs. `Calendar` does not read a clock.
struct Calendar {
    static CalendarDay dayOf(WallTime instant);

    /// Returns 1 for January 1.
    static int dayOfYear(WallTime instant);

    /// Returns the instant of a local time, with 0 seconds. If the local time occurs twice, returns
    /// the first instant. If the clock skips the local time, moves it forward by the length of the
    /// gap: when the clock goes from 02:00 to 03:00, 02:30 means 03:30. Returns `std::nullopt` if
    /// the C library cannot represent the instant.
    static std::optional<WallTime> instantAt(CalendarDay day, int hour, int minute);

    /// Returns how far local time is ahead of GMT at an instant.
    static std::chrono::seconds offsetFromGMT(WallTime instant);
};

} // namespace nocta
