#pragma once

#include <span>
#include <string_view>

namespace nocta {

/// A coarse place: degrees north and east.
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

/// What the location manager tells. Everything arrives from the run loop.
class LocationManagerDelegate {
public:
    virtual ~LocationManagerDelegate() = default;

    /// The newest last.
    virtual void didUpdateLocations(std::span<const Location> locations) = 0;
    virtual void didFailWithError(std::string_view description) = 0;

    /// Once after the manager has its delegate, and at each change.
    virtual void didChangeAuthorization() = 0;
};

/// The desktop's location service, to the kilometre. Stands for CLLocationManager.
class LocationManager {
public:
    virtual ~LocationManager() = default;

    /// Not owned; null for none.
    virtual void setDelegate(LocationManagerDelegate* delegate) = 0;
    virtual AuthorizationStatus authorizationStatus() const = 0;

    /// Asks the user. A request whose answer is already known does nothing and reports nothing.
    virtual void requestWhenInUseAuthorization() = 0;
    virtual void startUpdatingLocation() = 0;
    virtual void stopUpdatingLocation() = 0;
};

} // namespace nocta
