#pragma once

#include "backends/macos/Statuses.h"
#include "backends/macos/Strings.h"
#include "platform/LocationManager.h"

#import <CoreLocation/CoreLocation.h>

/// Forwards the location manager's calls to `receiver`.
@interface NoctaLocationDelegate : NSObject <CLLocationManagerDelegate>
@property(nonatomic) nocta::LocationManagerDelegate* receiver; // not owned; null if none
@end

namespace nocta {

static_assert(authorizationStatus(kCLAuthorizationStatusNotDetermined) ==
              AuthorizationStatus::notDetermined);
static_assert(authorizationStatus(kCLAuthorizationStatusRestricted) ==
              AuthorizationStatus::restricted);
static_assert(authorizationStatus(kCLAuthorizationStatusDenied) == AuthorizationStatus::denied);
static_assert(authorizationStatus(kCLAuthorizationStatusAuthorizedAlways) ==
              AuthorizationStatus::authorized);

/// The manager calls its delegate on the thread that created it, the main thread.
class CoreLocationManager final : public LocationManager {
public:
    CoreLocationManager() { manager_.desiredAccuracy = kCLLocationAccuracyKilometer; }

    void setDelegate(LocationManagerDelegate* delegate) override {
        delegate_.receiver = delegate;
        manager_.delegate = delegate != nullptr ? delegate_ : nil;
    }

    AuthorizationStatus authorizationStatus() const override {
        return nocta::authorizationStatus(manager_.authorizationStatus);
    }

    void requestWhenInUseAuthorization() override { [manager_ requestWhenInUseAuthorization]; }
    void startUpdatingLocation() override { [manager_ startUpdatingLocation]; }
    void stopUpdatingLocation() override { [manager_ stopUpdatingLocation]; }

private:
    CLLocationManager* manager_ = [[CLLocationManager alloc] init];
    NoctaLocationDelegate* delegate_ = [[NoctaLocationDelegate alloc] init]; // retained
};

} // namespace nocta
