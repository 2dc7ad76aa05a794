#include "backends/linux/location/GeoClueLocationManager.h"

#include "backends/linux/bus/MessageBus.h"
#include "backends/linux/files/PrivateFolder.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <iostream>
#include <span>
#include <utility>

namespace nocta {

namespace {

using namespace std::chrono_literals;

// At login the service, or the agent that asks the user on its behalf, may start after this
// program.
constexpr Duration firstRetryDelay = 1min;
constexpr Duration maxRetryDelay = 1h;

bool isThere(const std::filesystem::path& file) {
    std::error_code error;
    return std::filesystem::exists(file, error);
}

} // namespace

GeoClueLocationManager::GeoClueLocationManager(RunLoop& runLoop, std::filesystem::path grantFile)
    : runLoop_(runLoop), grantFile_(std::move(grantFile)),
      status_(isThere(grantFile_) ? AuthorizationStatus::authorized
                                  : AuthorizationStatus::notDetermined),
      retryDelay_(firstRetryDelay), report_(runLoop, [this] {
          if (delegate_ != nullptr) {
              delegate_->didChangeAuthorization();
          }
      }) {}

void GeoClueLocationManager::setDelegate(LocationManagerDelegate* delegate) {
    delegate_ = delegate;
    report_.request();
}

void GeoClueLocationManager::requestWhenInUseAuthorization() {
    if (status_ == AuthorizationStatus::notDetermined && !client_) {
        open();
    }
}

void GeoClueLocationManager::startUpdatingLocation() {
    if (status_ != AuthorizationStatus::authorized) {
        return;
    }
    isUpdating_ = true;
    retryDelay_ = firstRetryDelay;
    if (!client_) {
        open();
    }
}

void GeoClueLocationManager::stopUpdatingLocation() {
    isUpdating_ = false;
    if (status_ == AuthorizationStatus::authorized) { // otherwise the user is being asked
        close();
    }
}

void GeoClueLocationManager::open() {
    retry_.invalidate();
    systemBus_.cancel();
    client_ = GeoClueClient::create(
        {.started = [this] { started(); },
         .located = [this](Location location) { located(location); },
         .refused = [this] { answered(AuthorizationStatus::denied); },
         .absent = [this] { answered(AuthorizationStatus::restricted); },
         .failed = [this](const std::string& description) { failed(description); }});
}

void GeoClueLocationManager::close() {
    retry_.invalidate();
    systemBus_.cancel();
    client_.reset();
}

void GeoClueLocationManager::started() {
    if (status_ != AuthorizationStatus::authorized) {
        answered(AuthorizationStatus::authorized);
    }
    if (!isUpdating_) {
        close();
    }
}

void GeoClueLocationManager::located(Location location) {
    if (isUpdating_ && delegate_ != nullptr) {
        delegate_->didUpdateLocations(std::span(&location, 1));
    }
}

void GeoClueLocationManager::failed(const std::string& description) {
    client_.reset();
    if (isUpdating_) {
        retry_.start(runLoop_, retryDelay_, Repeat::no, [this] { open(); });
        retryDelay_ = std::min(2 * retryDelay_, maxRetryDelay);
        if (auto& bus = MessageBus::system(); bus.isMute()) {
            systemBus_ = bus.whenConnected([this](const QDBusConnection& /*bus*/) { open(); });
        }
    }
    if (delegate_ != nullptr) {
        delegate_->didFailWithError(description);
    }
}

void GeoClueLocationManager::answered(AuthorizationStatus status) {
    status_ = status;
    if (status != AuthorizationStatus::authorized) {
        isUpdating_ = false;
        close();
    }
    if (status != AuthorizationStatus::restricted) { // the system's answer, not the user's
        remember(status == AuthorizationStatus::authorized);
    }
    if (delegate_ != nullptr) {
        delegate_->didChangeAuthorization();
    }
}

void GeoClueLocationManager::remember(bool isGranted) const {
    std::error_code error;
    if (!isGranted) {
        std::filesystem::remove(grantFile_, error);
        return;
    }
    createPrivateFolders(grantFile_.parent_path());
    if (!std::ofstream(grantFile_)) {
        std::cerr << "nocta: cannot write " << grantFile_.string()
                  << "; Nocta will ask for the location again" << std::endl;
    }
}

} // namespace nocta
