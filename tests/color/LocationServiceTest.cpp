#include "color/LocationService.h"

#include "support/TestDesktop.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>

namespace nocta {
namespace {

using Calls = std::vector<std::string>;

constexpr Location berlin{52.52, 13.405};
constexpr Location paris{48.857, 2.352};

class Listener final : public LocationDelegate {
public:
    std::string received;
    void locationUpdated(const Location& location) override {
        received += location == paris ? "paris " : "elsewhere ";
    }
    void locationFailed(std::string_view error) override { received += std::string(error) + " "; }
    void authorizationChanged(AuthorizationStatus status) override {
        received += std::to_string(static_cast<int>(status)) + " ";
    }
};

class LocationServiceTest : public TestDesktop {};

TEST_F(LocationServiceTest, ConstructionReadsTheStatusAndRequestsNothing) {
    desktop.location.answer(AuthorizationStatus::denied);
    EXPECT_EQ(location().authorizationStatus.get(), AuthorizationStatus::denied);
    EXPECT_EQ(location().currentLocation.get(), std::nullopt);
    EXPECT_TRUE(calls("request").empty());
    EXPECT_TRUE(calls("start").empty());
}

TEST_F(LocationServiceTest, ProvidesTheScheduleWithTheLocation) {
    LocationProviding& provider = location();
    desktop.location.answer(AuthorizationStatus::authorized);
    desktop.location.send(paris);
    EXPECT_EQ(provider.currentLocation.get(), paris);
    EXPECT_EQ(provider.authorizationStatus.get(), AuthorizationStatus::authorized);
    EXPECT_EQ(&provider.locationManager(), &desktop.location);
}

TEST_F(LocationServiceTest, LastLocationOfABatchIsUsedAndEndsTheUpdates) {
    location();
    desktop.location.answer(AuthorizationStatus::authorized);
    ASSERT_TRUE(desktop.location.isUpdating);
    int published = 0;
    const auto subscription = location().currentLocation.subscribe(
        [&](const std::optional<Location>& /*location*/) { ++published; });
    desktop.location.send(std::array{Location{1, 2}, berlin, paris});
    EXPECT_EQ(location().currentLocation.get(), paris);
    EXPECT_EQ(published, 1);
    EXPECT_FALSE(desktop.location.isUpdating);
}

TEST_F(LocationServiceTest, EmptyBatchIsIgnored) {
    location();
    desktop.location.answer(AuthorizationStatus::authorized);
    desktop.location.send(std::span<const Location>());
    EXPECT_EQ(location().currentLocation.get(), std::nullopt);
    EXPECT_TRUE(desktop.location.isUpdating);
}

TEST_F(LocationServiceTest, FailureKeepsTheLocation) {
    location();
    desktop.location.answer(AuthorizationStatus::authorized);
    desktop.location.send(paris);
    desktop.location.fail("no signal");
    EXPECT_EQ(location().currentLocation.get(), paris);
}

TEST_F(LocationServiceTest, AuthorizationStatusChangesTheSettingAndStartsUpdates) {
    struct Row {
        AuthorizationStatus status;
        bool enabledBefore;
        bool enabledAfter;
        bool starts;
    };
    using enum AuthorizationStatus;
    location();
    for (const auto& row :
         {Row{authorized, false, true, true}, Row{authorized, true, true, true},
          Row{denied, true, false, false}, Row{denied, false, false, false},
          Row{notDetermined, true, true, false}, Row{restricted, true, true, false},
          Row{authorizedWhenInUse, false, false, false}}) {
        settings().locationEnabled.set(row.enabledBefore);
        desktop.location.isUpdating = false;
        desktop.location.answer(row.status);
        EXPECT_EQ(location().authorizationStatus.get(), row.status);
        EXPECT_EQ(settings().locationEnabled.get(), row.enabledAfter);
        EXPECT_EQ(desktop.location.isUpdating, row.starts);
    }
}

TEST_F(LocationServiceTest, TurningTheSettingOffKeepsTheUpdatesAndTheLocation) {
    location();
    desktop.location.answer(AuthorizationStatus::authorized);
    desktop.location.send(paris);
    desktop.location.startUpdatingLocation();
    settings().locationEnabled.set(false);
    EXPECT_TRUE(desktop.location.isUpdating);
    EXPECT_EQ(location().currentLocation.get(), paris);
}

TEST_F(LocationServiceTest, DelegateIsRemovedWhenTheServiceIsDestroyed) {
    auto listener = std::make_shared<Listener>();
    location().delegate = listener;
    dropProgram();
    desktop.location.answer(AuthorizationStatus::authorized);
    desktop.location.send(paris);
    EXPECT_EQ(listener->received, "");
    EXPECT_TRUE(calls("startUpdatingLocation").empty());
}

TEST_F(LocationServiceTest, DelegateReceivesEveryReportAndIsNotKeptAlive) {
    auto listener = std::make_shared<Listener>();
    location().delegate = listener;
    desktop.location.answer(AuthorizationStatus::authorized);
    desktop.location.send(paris);
    desktop.location.fail("lost");
    EXPECT_EQ(listener->received, "3 paris lost ");
    listener.reset();
    desktop.location.startUpdatingLocation();
    desktop.location.send(berlin);
    EXPECT_EQ(location().currentLocation.get(), berlin);
}

} // namespace
} // namespace nocta
