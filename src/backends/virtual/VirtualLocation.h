#pragma once

#include "backends/virtual/Trace.h"
#include "base/Deferred.h"
#include "base/RunLoop.h"
#include "platform/LocationManager.h"

#include <span>
#include <string_view>

namespace nocta {

/// A location service in memory. A test answers for the user and sends locations.
class VirtualLocation final : public LocationManager {
public:
    VirtualLocation(Trace& trace, RunLoop& runLoop)
        : trace_(trace), report_(runLoop, [this] { report(); }) {}

    // For tests: what the user and the location service do.
    void answer(AuthorizationStatus status) {
        status_ = status;
        isAsking = false;
        report();
    }
    /// The program receives the locations only if it is authorized and has started updates.
    void send(std::span<const Location> locations) {
        if (delegate_ != nullptr && isUpdating && status_ == AuthorizationStatus::authorized) {
            delegate_->didUpdateLocations(locations);
        }
    }
    void send(Location location) { send(std::span(&location, 1)); }
    void fail(std::string_view description) {
        if (delegate_ != nullptr) {
            delegate_->didFailWithError(description);
        }
    }
    bool isAsking = false;
    bool isUpdating = false;

    // For the program: the functions of the port.
    void setDelegate(LocationManagerDelegate* delegate) override {
        trace_.record("setLocationDelegate");
        delegate_ = delegate;
        report_.request();
    }
    AuthorizationStatus authorizationStatus() const override { return status_; }
    void requestWhenInUseAuthorization() override {
        trace_.record("requestWhenInUseAuthorization");
        isAsking = status_ == AuthorizationStatus::notDetermined;
    }
    void startUpdatingLocation() override {
        trace_.record("startUpdatingLocation");
        isUpdating = true;
    }
    void stopUpdatingLocation() override {
        trace_.record("stopUpdatingLocation");
        isUpdating = false;
    }

private:
    void report() {
        if (delegate_ != nullptr) {
            delegate_->didChangeAuthorization();
        }
    }

    Trace& trace_;
    LocationManagerDelegate* delegate_ = nullptr;
    AuthorizationStatus status_ = AuthorizationStatus::notDetermined;
    Deferred report_;
};

} // namespace nocta
