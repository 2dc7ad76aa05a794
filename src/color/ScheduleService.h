#pragma once

#include "base/Published.h"
#include "base/RunLoop.h"
#include "base/Timer.h"
#include "color/LocationProviding.h"
#include "color/SunCalculator.h"
#include "color/SunPosition.h"

#include <optional>

namespace nocta {

/// Keeps today's sunrise and sunset and publishes the position of the sun once a minute. It uses
/// the sun calculator once there is a location, and 06:30 and 18:30 until then. The transitions at
/// sunrise and sunset last 30 minutes each. Nothing is stored on disk. It lives as long as the
/// process.
///
/// It reads only the wall clock, so a new clock time, a new time zone or a sleep of the machine
/// takes effect at the next tick, which comes after at most a minute of waking time.
class ScheduleService {
public:
    ScheduleService(LocationProviding& locationService, RunLoop& runLoop);
    ScheduleService(const ScheduleService&) = delete;
    ScheduleService& operator=(const ScheduleService&) = delete;

    static ScheduleService& shared();

    Published<std::optional<WallTime>> sunriseTime;
    Published<std::optional<WallTime>> sunsetTime;
    Published<SunPosition> currentSunPosition;

    void start();

    /// Uses the given location, else the last known one, else the default times; then updates the
    /// position.
    void calculateTimes(std::optional<Location> location = std::nullopt);

    void updateSunPosition();

    /// Requests a new fix if that is allowed; it arrives through the subscription to the location.
    void refreshLocation();

private:
    void useDefaultTimes();

    LocationProviding& locationService_;
    SunCalculator sunCalculator_;
    RunLoop& runLoop_;
    std::optional<WallTime> lastLocationRefresh_;
    std::optional<WallTime> lastCalculationDate_;
    Timer updateTimer_;
    Cancellables cancellables_;
};

} // namespace nocta
