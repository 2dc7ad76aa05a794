#include "color/LocationService.h"

namespace nocta {

LocationService::LocationService(LocationManager& locationManager, SettingsManager& settingsManager)
    : locationManager_(locationManager), settingsManager_(settingsManager) {
    locationManager_.setDelegate(this);
    authorizationStatus.set(locationManager_.authorizationStatus());
}

LocationService::~LocationService() {
    locationManager_.setDelegate(nullptr);
}

void LocationService::didUpdateLocations(std::span<const Location> locations) {
    if (locations.empty()) {
        return;
    }
    const auto newest = locations.back();
    currentLocation.set(newest);
    if (const auto listener = delegate.lock()) {
        listener->locationUpdated(newest);
    }
    locationManager_.stopUpdatingLocation();
}

void LocationService::didFailWithError(std::string_view description) {
    if (const auto listener = delegate.lock()) {
        listener->locationFailed(description);
    }
}

void LocationService::didChangeAuthorization() {
    const auto status = locationManager_.authorizationStatus();
    authorizationStatus.set(status);
    if (const auto listener = delegate.lock()) {
        listener->authorizationChanged(status);
    }
    if (status == AuthorizationStatus::authorized) {
        settingsManager_.locationEnabled.set(true);
        locationManager_.startUpdatingLocation();
    } else if (status == AuthorizationStatus::denied) {
        settingsManager_.locationEnabled.set(false);
    }
}

} // namespace nocta
