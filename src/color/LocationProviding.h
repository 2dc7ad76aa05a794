#pragma once

#include "base/Published.h"
#include "platform/LocationManager.h"

#include <optional>

namespace nocta {

/// What others need to know of the machine's coarse place: the last fix, whether it may be known,
/// and the manager that is asked for both. `LocationService` provides it.
class LocationProviding {
public:
    LocationProviding() = default;
    LocationProviding(const LocationProviding&) = delete;
    LocationProviding& operator=(const LocationProviding&) = delete;
    virtual ~LocationProviding() = default;

    virtual LocationManager& locationManager() = 0;

    /// None until the first fix; kept in memory alone.
    Published<std::optional<Location>> currentLocation;
    Published<AuthorizationStatus> authorizationStatus{AuthorizationStatus::notDetermined};
};

} // namespace nocta
