#pragma once

#include "base/Published.h"
#include "base/RunLoop.h"
#include "base/Timer.h"
#include "color/LocationProviding.h"
#include "color/SunCalculator.h"
#include "color/SunPosition.h"

#include <optional>

namespace nocta {

/// Keeps today's sunrise and sunset and publishes the position of the sun once a minute. Once the
/// location is known, it uses the sun calculator; until then, it uses 06:30 and 18:30. The
/// transitions at sunrise and sunset last 30 minutes each. The service stores nothing on disk. The
/// service exists for the lifetime of the process.
///
/// It reads only the wall clock. If the clock or the time zone changes, or the machine sleeps, the
/// next tick corrects the position, at most a minute after the change or after waking.
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

    /// Uses the given location, or else the last known location, or else the default times. Then it
    /// updates the position of the sun.
    void calculateTimes(std::optional<Location> location = std::nullopt);

    void updateSunPosition();

    /// Requests a new fix if the user has allowed it. The fix arrives through the subscription to
    /// location updates.
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
