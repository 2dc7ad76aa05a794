#pragma once

#include "base/RunLoop.h"

namespace nocta {

/// Sunrise and sunset at a location, with the method of the Almanac for Computers (United States
/// Naval Observatory, 1990) and the official zenith of 90.833 degrees. It differs from the printed
/// method in one respect: the position of the sun is computed only once, for local noon, and used
/// for both events. It has no state.
struct SunCalculator {
    /// Both on the requested calendar day, in whole minutes.
    struct SunTimes {
        WallTime sunrise;
        WallTime sunset;
    };

    /// Uses only the calendar day of `date`. Latitude in degrees north, longitude in degrees east.
    /// The local times use the zone's offset at `now`, so for a date on the other side of a
    /// daylight-saving change they are an hour off. If the sun does not cross the horizon on that
    /// day, they are 06:00 and 18:00.
    SunTimes calculate(WallTime date, double latitude, double longitude, WallTime now) const;
};

} // namespace nocta
