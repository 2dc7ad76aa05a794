#pragma once

#include "color/LocationProviding.h"
#include "platform/LocationManager.h"
#include "settings/SettingsManager.h"

#include <memory>

namespace nocta {

/// Receives the results of the location service.
class LocationDelegate {
public:
    virtual ~LocationDelegate() = default;

    virtual void locationUpdated(const Location& location) = 0;
    virtual void locationFailed(std::string_view error) = 0;
    virtual void authorizationChanged(AuthorizationStatus status) = 0;
};

/// Gets the machine's coarse location, for sunrise and sunset. Each fix stops the updates until
/// they are started again. Granting or denying the permission sets `locationEnabled`; turning that
/// setting off neither stops the updates nor clears the location. The service exists for the
/// lifetime of the process.
class LocationService final : public LocationProviding, private LocationManagerDelegate {
public:
    /// Does not ask for permission and does not start updates.
    LocationService(LocationManager& locationManager, SettingsManager& settingsManager);
    ~LocationService() override;

    static LocationService& shared();

    LocationManager& locationManager() override { return locationManager_; }

    /// Optional; the service does not keep it alive.
    std::weak_ptr<LocationDelegate> delegate;

private:
    void didUpdateLocations(std::span<const Location> locations) override;
    void didFailWithError(std::string_view description) override;
    void didChangeAuthorization() override;

    LocationManager& locationManager_;
    SettingsManager& settingsManager_;
};

} // namespace nocta
