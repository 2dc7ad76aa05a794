#pragma once

#include "backends/linux/location/GeoClueClient.h"
#include "base/Deferred.h"
#include "base/Subscription.h"
#include "base/Timer.h"
#include "platform/LocationManager.h"

#include <filesystem>
#include <memory>
#include <string>

namespace nocta {

/// The location manager on GeoClue 2. The service has no separate permission request: when a
/// program's client starts, the service decides whether the program may use the location. So this
/// class remembers a grant in a file, and after the next start the program gets a location without
/// asking. After a refusal, the user is asked again in the next session at the earliest. The
/// service is not contacted until there is a grant or a request.
class GeoClueLocationManager final : public LocationManager {
public:
    /// `grantFile` exists only if the user's last answer was yes.
    GeoClueLocationManager(RunLoop& runLoop, std::filesystem::path grantFile);
    GeoClueLocationManager(const GeoClueLocationManager&) = delete;
    GeoClueLocationManager& operator=(const GeoClueLocationManager&) = delete;

    void setDelegate(LocationManagerDelegate* delegate) override;
    AuthorizationStatus authorizationStatus() const override { return status_; }
    void requestWhenInUseAuthorization() override;
    void startUpdatingLocation() override;
    void stopUpdatingLocation() override;

private:
    void open();
    void close();
    void started();
    void located(Location location);
    void failed(const std::string& description);
    void answered(AuthorizationStatus status);
    void remember(bool isGranted) const;

    RunLoop& runLoop_;
    std::filesystem::path grantFile_;
    LocationManagerDelegate* delegate_ = nullptr;
    AuthorizationStatus status_;
    bool isUpdating_ = false;
    std::shared_ptr<GeoClueClient> client_;
    Duration retryDelay_;
    Timer retry_;
    Subscription systemBus_; ///< active while a silent bus may still answer
    Deferred report_;
};

} // namespace nocta
