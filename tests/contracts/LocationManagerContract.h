#pragma once

#include "platform/LocationManager.h"

#include <gtest/gtest.h>

#include <span>
#include <string_view>
#include <vector>

namespace nocta {

/// The contract of the location manager on every desktop. `Harness` has a `locationManager()` that
/// has not asked the user for permission yet. `agree()` and `refuse()` answer the pending request
/// for permission, and `move(location)` gives the location service a new location. `settle()`
/// returns once the manager has reported everything that has happened.
template <class Harness>
class LocationManagerContract : public ::testing::Test, public LocationManagerDelegate {
protected:
    using enum AuthorizationStatus;
    using Statuses = std::vector<AuthorizationStatus>;
    using Locations = std::vector<Location>;

    static constexpr Location berlin{52.5, 13.4};
    static constexpr Location paris{48.9, 2.4};

    LocationManager& manager() { return harness.locationManager(); }
    void ask() {
        manager().setDelegate(this);
        harness.settle();
        manager().requestWhenInUseAuthorization();
        EXPECT_EQ(statuses, Statuses{notDetermined});
    }
    void move(Location location) {
        harness.move(location);
        harness.settle();
    }

    void didUpdateLocations(std::span<const Location> received) override {
        locations.insert(locations.end(), received.begin(), received.end());
    }
    void didFailWithError(std::string_view description) override { FAIL() << description; }
    void didChangeAuthorization() override { statuses.push_back(manager().authorizationStatus()); }

    Harness harness;
    Statuses statuses;
    Locations locations;
};

TYPED_TEST_SUITE_P(LocationManagerContract);

TYPED_TEST_P(LocationManagerContract, NewDelegateReceivesTheStatusOnceFromTheRunLoop) {
    this->manager().setDelegate(this);
    EXPECT_TRUE(this->statuses.empty());
    this->harness.settle();
    EXPECT_EQ(this->statuses, (std::vector{AuthorizationStatus::notDetermined}));
    this->harness.settle();
    EXPECT_EQ(this->statuses.size(), 1U);
}

TYPED_TEST_P(LocationManagerContract, GrantIsReportedOnceAndIsNotRequestedAgain) {
    this->ask();
    this->harness.agree();
    this->harness.settle();
    this->manager().requestWhenInUseAuthorization();
    this->harness.settle();
    EXPECT_EQ(this->statuses, (std::vector{this->notDetermined, this->authorized}));
    EXPECT_TRUE(this->locations.empty()) << "no location should come before updates start";
}

TYPED_TEST_P(LocationManagerContract, RefusalIsReportedOnceWithoutALocation) {
    this->ask();
    this->harness.refuse();
    this->harness.settle();
    this->manager().requestWhenInUseAuthorization();
    this->manager().startUpdatingLocation();
    this->move(this->berlin);
    EXPECT_EQ(this->statuses, (std::vector{this->notDetermined, this->denied}));
    EXPECT_TRUE(this->locations.empty());
}

TYPED_TEST_P(LocationManagerContract, LocationsAreReportedOnlyBetweenStartAndStop) {
    this->ask();
    this->harness.agree();
    this->harness.settle();
    this->move(this->paris);
    EXPECT_EQ(this->locations, std::vector<Location>{});
    this->manager().startUpdatingLocation();
    this->harness.settle();
    this->move(this->berlin);
    this->move(this->paris);
    EXPECT_EQ(this->locations, (std::vector{this->berlin, this->paris}));
    this->manager().stopUpdatingLocation();
    this->move(this->berlin);
    EXPECT_EQ(this->locations.size(), 2U);
    this->manager().startUpdatingLocation();
    this->harness.settle();
    this->move(this->berlin);
    EXPECT_EQ(this->locations.size(), 3U);
}

TYPED_TEST_P(LocationManagerContract, RemovedDelegateReceivesNothing) {
    this->ask();
    this->manager().setDelegate(nullptr);
    this->harness.agree();
    this->harness.settle();
    EXPECT_EQ(this->manager().authorizationStatus(), AuthorizationStatus::authorized);
    this->manager().startUpdatingLocation();
    this->harness.settle();
    this->move(this->berlin);
    EXPECT_EQ(this->statuses, (std::vector{AuthorizationStatus::notDetermined}));
    EXPECT_TRUE(this->locations.empty());
}

REGISTER_TYPED_TEST_SUITE_P(LocationManagerContract, NewDelegateReceivesTheStatusOnceFromTheRunLoop,
                            GrantIsReportedOnceAndIsNotRequestedAgain,
                            RefusalIsReportedOnceWithoutALocation,
                            LocationsAreReportedOnlyBetweenStartAndStop,
                            RemovedDelegateReceivesNothing);

} // namespace nocta
