#pragma once

#include "color/LocationProviding.h"
#include "platform/LocationManager.h"
#include "settings/SettingsManager.h"

#include <memory>

namespace nocta {

/// Told of what the location service learns.
class LocationDelegate {
public:
    virtual ~LocationDelegate() = default;

    virtual void locationUpdated(const Location& location) = 0;
    virtual void locationFailed(std::string_view error) = 0;
    virtual void authorizationChanged(AuthorizationStatus status) = 0;
};

/// The machine's coarse place, for the times of the sun. It takes one fix at a time: each stops the
/// updates until somebody starts them again. What the user grants or refuses is mirrored in
/// `locationEnabled`; that setting in turn stops nothing and forgets nothing. It lives as long as
/// the process.
class LocationService final : public LocationProviding, private LocationManagerDelegate {
public:
    /// Neither asks for permission nor starts updates.
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
