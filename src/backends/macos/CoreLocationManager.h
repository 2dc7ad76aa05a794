#pragma once

#include "backends/macos/Strings.h"
#include "platform/LocationManager.h"

#import <CoreLocation/CoreLocation.h>

/// Passes on what the manager tells.
@interface NoctaLocationDelegate : NSObject <CLLocationManagerDelegate>
@property(nonatomic) nocta::LocationManagerDelegate* receiver; // not owned; null for none
@end

namespace nocta {

/// It calls its delegate on the thread on which it was made, the main one.
class CoreLocationManager final : public LocationManager {
public:
    CoreLocationManager() { manager_.desiredAccuracy = kCLLocationAccuracyKilometer; }

    void setDelegate(LocationManagerDelegate* delegate) override {
        delegate_.receiver = delegate;
        manager_.delegate = delegate != nullptr ? delegate_ : nil;
    }

    /// The cases have the same numbers.
    AuthorizationStatus authorizationStatus() const override {
        return static_cast<AuthorizationStatus>(manager_.authorizationStatus);
    }

    void requestWhenInUseAuthorization() override { [manager_ requestWhenInUseAuthorization]; }
    void startUpdatingLocation() override { [manager_ startUpdatingLocation]; }
    void stopUpdatingLocation() override { [manager_ stopUpdatingLocation]; }

private:
    CLLocationManager* manager_ = [[CLLocationManager alloc] init];
    NoctaLocationDelegate* delegate_ = [[NoctaLocationDelegate alloc] init]; // else unowned
};

} // namespace nocta
