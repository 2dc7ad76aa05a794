#pragma once

#include "base/RunLoop.h"

namespace nocta {

/// Sunrise and sunset at a place, by the method of the Almanac for Computers (United States Naval
/// Observatory, 1990) with the official zenith of 90.833 degrees. It differs from the printed
/// method in one thing: the sun's place is computed once, for local noon, and serves both events.
/// It is a value without state, which its owner keeps and asks.
struct SunCalculator {
    /// Both on the calendar day that was asked for, in whole minutes.
    struct SunTimes {
        WallTime sunrise;
        WallTime sunset;
    };

    /// Of `date` only the calendar day matters. Latitude in degrees north, longitude in degrees
    /// east. Times are read on the clock with the zone's offset of `now`, so for a date on the
    /// other side of a daylight-saving change they come out an hour off. Where the sun does not
    /// cross the horizon on that day they are 06:00 and 18:00.
    SunTimes calculate(WallTime date, double latitude, double longitude, WallTime now) const;
};

} // namespace nocta
