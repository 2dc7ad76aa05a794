#pragma once

#include "base/Published.h"
#include "base/RunLoop.h"
#include "base/Timer.h"
#include "color/LocationProviding.h"
#include "color/SunCalculator.h"
#include "color/SunPosition.h"

#include <optional>

namespace nocta {

/// Keeps today's sunrise and sunset and publishes once a minute where the day stands: by the sun
/// calculator once there is a location, by 06:30 and 18:30 until then. The spans around sunrise and
/// sunset last 30 minutes each. Nothing is kept on disk. It lives as long as the process.
///
/// The wall clock alone counts, so a clock that is set, a zone that changes and a machine that
/// slept all show at the next tick, which is at most a minute of waking time away.
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

    /// For the given place, else the last known one, else the default times; then updates the
    /// position.
    void calculateTimes(std::optional<Location> location = std::nullopt);

    void updateSunPosition();

    /// Asks for a fresh fix where that is allowed; it comes through the location's subscription.
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
