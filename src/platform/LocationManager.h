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

/// Receives the results of the location manager. All functions are called from the run loop.
class LocationManagerDelegate {
public:
    virtual ~LocationManagerDelegate() = default;

    /// The last location is the newest.
    virtual void didUpdateLocations(std::span<const Location> locations) = 0;
    virtual void didFailWithError(std::string_view description) = 0;

    /// Called once after the delegate is set, and whenever the authorization changes.
    virtual void didChangeAuthorization() = 0;
};

/// The desktop's location service, accurate to a kilometer. Corresponds to CLLocationManager on
/// macOS.
class LocationManager {
public:
    virtual ~LocationManager() = default;

    /// The manager does not own the delegate; null removes it.
    virtual void setDelegate(LocationManagerDelegate* delegate) = 0;
    virtual AuthorizationStatus authorizationStatus() const = 0;

    /// Asks the user for permission. If the user has already answered, does nothing and reports
    /// nothing.
    virtual void requestWhenInUseAuthorization() = 0;
    virtual void startUpdatingLocation() = 0;
    virtual void stopUpdatingLocation() = 0;
};

} // namespace nocta
