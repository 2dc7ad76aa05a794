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

/// The user's calendar and time zone, as the C library knows them at the moment of each call: a
/// change of the zone while the program runs counts at once. It reads no clock.
struct Calendar {
    static CalendarDay dayOf(WallTime instant);

    /// 1 for the first of January.
    static int dayOfYear(WallTime instant);

    /// The instant of a local time, its seconds 0. A time that the clock shows twice means the
    /// first of the two. A time that the clock skips moves forward by the length of the gap: where
    /// the clock goes from 02:00 to 03:00, 02:30 means 03:30. None where the C library has no such
    /// instant.
    static std::optional<WallTime> instantAt(CalendarDay day, int hour, int minute);

    /// What local time is ahead of GMT at an instant.
    static std::chrono::seconds offsetFromGMT(WallTime instant);
};

} // namespace nocta
