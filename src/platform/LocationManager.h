#pragma once

#include <span>
#include <string_view>

namespace nocta {

/// A coarse location: degrees north and east.
struct Location {
    double latitude = 0;
    double longitude = 0;
    bool operator==(const Location&) const = default;
};

enum class AuthorizationStatus {
    notDetermined = 0,
    restricted = 1,
    denied = 2,
    authorized = 3,
    authorizedWhenInUse = 4,
};

/// Receives the results of the location manager. Every function is called from the run loop.
class LocationManagerDelegate {
public:
    virtual ~LocationManagerDelegate() = default;

    /// The newest location is the last one.
    virtual void didUpdateLocations(std::span<const Location> locations) = 0;
    virtual void didFailWithError(std::string_view description) = 0;

    /// Called once after the delegate is set, and at each change.
    virtual void didChangeAuthorization() = 0;
};

/// The desktop's location service, accurate to a kilometer. Stands for CLLocationManager.
class LocationManager {
public:
    virtual ~LocationManager() = default;

    /// The manager does not own the delegate; null removes it.
    virtual void setDelegate(LocationManagerDelegate* delegate) = 0;
    virtual AuthorizationStatus authorizationStatus() const = 0;

    /// Asks the user. If the answer is already known, it does nothing and reports nothing.
    virtual void requestWhenInUseAuthorization() = 0;
    virtual void startUpdatingLocation() = 0;
    virtual void stopUpdatingLocation() = 0;
};

} // namespace nocta
