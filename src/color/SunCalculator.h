#pragma once

#include "base/RunLoop.h"

namespace nocta {

/// Calculates sunrise and sunset at a location with the method of the Almanac for Computers (United
/// States Naval Observatory, 1990) and the official zenith of 90.833 degrees. It differs from the
/// printed method in one respect: it computes the position of the sun only once, for local noon,
/// and uses this position for both events. The calculator is stateless.
struct SunCalculator {
    /// Both times are on the requested calendar day, in whole minutes.
    struct SunTimes {
        WallTime sunrise;
        WallTime sunset;
    };

    /// Uses only the calendar day of `date`. The latitude is in degrees north, the longitude in
    /// degrees east. The local times use the time zone's offset at `now`, so they are an hour off
    /// if a daylight-saving change lies between `now` and `date`. If the sun does not cross the
    /// horizon on that day, returns 06:00 and 18:00.
    SunTimes calculate(WallTime date, double latitude, double longitude, WallTime now) const;
};

} // namespace nocta
