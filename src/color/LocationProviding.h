#pragma once

#include "base/Published.h"
#include "platform/LocationManager.h"

#include <optional>

namespace nocta {

/// Gives other services the coarse location, the permission, and the manager that provides both.
/// `LocationService` implements it.
class LocationProviding {
public:
    LocationProviding() = default;
    LocationProviding(const LocationProviding&) = delete;
    LocationProviding& operator=(const LocationProviding&) = delete;
    virtual ~LocationProviding() = default;

    virtual LocationManager& locationManager() = 0;

    /// `std::nullopt` until the first fix. The location is kept only in memory.
    Published<std::optional<Location>> currentLocation;
    Published<AuthorizationStatus> authorizationStatus{AuthorizationStatus::notDetermined};
};

} // namespace nocta
