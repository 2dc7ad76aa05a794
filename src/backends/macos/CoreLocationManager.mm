#include "backends/macos/CoreLocationManager.h"

@implementation NoctaLocationDelegate

- (void)locationManager:(CLLocationManager*)manager
     didUpdateLocations:(NSArray<CLLocation*>*)locations {
    std::vector<nocta::Location> places;
    for (CLLocation* location in locations) {
        places.push_back({location.coordinate.latitude, location.coordinate.longitude});
    }
    if (self.receiver != nullptr) {
        self.receiver->didUpdateLocations(places);
    }
}

- (void)locationManager:(CLLocationManager*)manager didFailWithError:(NSError*)error {
    if (self.receiver != nullptr) {
        self.receiver->didFailWithError(nocta::stdString(error.localizedDescription));
    }
}

- (void)locationManagerDidChangeAuthorization:(CLLocationManager*)manager {
    if (self.receiver != nullptr) {
        self.receiver->didChangeAuthorization();
    }
}

@end
