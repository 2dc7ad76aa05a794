#include "backends/linux/location/GeoClueLocationManager.h"

#include "backends/linux/bus/MessageBus.h"
#include "backends/virtual/VirtualRunLoop.h"
#include "contracts/LocationManagerContract.h"
#include "support/GeoClue.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <csignal>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace nocta {

using namespace std::chrono_literals;

namespace {

using Calls = std::vector<std::string>;

/// Returns once the service has processed all earlier messages.
void settle() {
    const auto answer = systemBus().call(
        QDBusMessage::createMethodCall("org.freedesktop.GeoClue2", "/org/freedesktop/GeoClue2",
                                       "org.example.Test", "Settle"),
        QDBus::BlockWithGui);
    ASSERT_EQ(answer.type(), QDBusMessage::ReplyMessage);
}

} // namespace

class GeoClueHarness {
public:
    GeoClueHarness() { service_.start = MockGeoClue::Start::waits; }

    LocationManager& locationManager() { return manager_; }
    void agree() {
        settle();
        service_.answerStart();
        service_.start = MockGeoClue::Start::agrees;
    }
    void refuse() {
        settle();
        service_.refuseStart();
    }
    void move(Location location) {
        service_.place = {{"Latitude", location.latitude}, {"Longitude", location.longitude}};
        service_.emitLocationUpdated();
    }
    void settle() {
        constexpr int maxSteps = 6; // a client starts or reads its location in at most 6 steps
        for (int step = 0; step < maxSteps; ++step) {
            nocta::settle();
            QCoreApplication::processEvents();
            runLoop_.advance(0s);
        }
    }

private:
    TemporaryFolder state_;
    VirtualRunLoop runLoop_;
    PrivateBus bus_{"DBUS_SYSTEM_BUS_ADDRESS"};
    MockGeoClue service_;
    GeoClueLocationManager manager_{runLoop_, state_.path() + "/location-granted"};
};

INSTANTIATE_TYPED_TEST_SUITE_P(GeoClue, LocationManagerContract, GeoClueHarness);

namespace {

class GeoClueLocationManagerTest : public ::testing::Test, public LocationManagerDelegate {
protected:
    TemporaryFolder state;
    std::filesystem::path grantFile = state.path() + "/nocta/location-granted";
    VirtualRunLoop runLoop;
    std::optional<PrivateBus> bus{"DBUS_SYSTEM_BUS_ADDRESS"};
    std::optional<GeoClueLocationManager> manager;

    std::vector<AuthorizationStatus> reports;
    std::vector<Location> places;
    std::vector<std::string> failures;

    void makeManager() {
        manager.emplace(runLoop, grantFile);
        manager->setDelegate(this);
        runLoop.advance(0s);
    }
    void rememberGrant() {
        std::filesystem::create_directories(grantFile.parent_path());
        writeFile(grantFile, "");
    }

    void didUpdateLocations(std::span<const Location> locations) override {
        places.insert(places.end(), locations.begin(), locations.end());
        manager->stopUpdatingLocation();
    }
    void didFailWithError(std::string_view description) override {
        failures.emplace_back(description);
    }
    void didChangeAuthorization() override {
        reports.push_back(manager->authorizationStatus());
        if (reports.back() == AuthorizationStatus::authorized) {
            manager->startUpdatingLocation();
        }
    }
};

TEST_F(GeoClueLocationManagerTest, NotDeterminedIsReportedOnceWithoutAskingTheService) {
    MockGeoClue service;
    makeManager();
    EXPECT_EQ(reports, (std::vector{AuthorizationStatus::notDetermined}));
    manager->startUpdatingLocation();
    settle();
    EXPECT_EQ(service.calls, Calls{});
}

TEST_F(GeoClueLocationManagerTest, GrantIsReportedAndStoredAndYieldsOneLocation) {
    MockGeoClue service;
    makeManager();
    manager->requestWhenInUseAuthorization();
    manager->requestWhenInUseAuthorization(); // the first request is still pending
    ASSERT_TRUE(serveUntil([&] { return reports.size() == 2; }));
    EXPECT_EQ(reports.back(), AuthorizationStatus::authorized);
    EXPECT_TRUE(std::filesystem::exists(grantFile));
    EXPECT_EQ(service.calls, (Calls{"CreateClient", "Set nocta", "Set 4", "Start"}));

    service.emitLocationUpdated();
    ASSERT_TRUE(serveUntil([&] { return !places.empty(); }));
    EXPECT_EQ(places, (std::vector<Location>{{52.5, 13.4}}));
    ASSERT_TRUE(serveUntil(
        [&] { return service.hasSeen("DeleteClient /org/freedesktop/GeoClue2/Client/1"); }));

    manager->requestWhenInUseAuthorization();
    settle();
    EXPECT_EQ(std::count(service.calls.begin(), service.calls.end(), "CreateClient"), 1);
    EXPECT_EQ(reports.size(), 2U) << "a known answer should not be reported again";

    manager->startUpdatingLocation();
    ASSERT_TRUE(serveUntil(
        [&] { return std::count(service.calls.begin(), service.calls.end(), "Start") == 2; }));
    service.emitLocationUpdated();
    EXPECT_TRUE(serveUntil([&] { return places.size() == 2; }));
}

TEST_F(GeoClueLocationManagerTest, StoredGrantIsReportedFromTheRunLoopAndYieldsALocation) {
    rememberGrant();
    MockGeoClue service;
    manager.emplace(runLoop, grantFile);
    manager->setDelegate(this);
    EXPECT_EQ(manager->authorizationStatus(), AuthorizationStatus::authorized);
    EXPECT_TRUE(reports.empty());
    runLoop.advance(0s);
    EXPECT_EQ(reports, (std::vector{AuthorizationStatus::authorized}));
    ASSERT_TRUE(serveUntil([&] { return service.hasSeen("Start"); }));
    service.emitLocationUpdated();
    EXPECT_TRUE(serveUntil([&] { return !places.empty(); }));
    EXPECT_EQ(reports.size(), 1U);
}

TEST_F(GeoClueLocationManagerTest, ServiceIsNotAskedAgainAfterARefusal) {
    MockGeoClue service;
    service.start = MockGeoClue::Start::refuses;
    makeManager();
    manager->requestWhenInUseAuthorization();
    ASSERT_TRUE(serveUntil([&] { return reports.size() == 2; }));
    EXPECT_EQ(reports.back(), AuthorizationStatus::denied);
    EXPECT_FALSE(std::filesystem::exists(grantFile));
    ASSERT_TRUE(serveUntil(
        [&] { return service.hasSeen("DeleteClient /org/freedesktop/GeoClue2/Client/1"); }));

    manager->requestWhenInUseAuthorization();
    manager->startUpdatingLocation();
    settle();
    EXPECT_EQ(std::count(service.calls.begin(), service.calls.end(), "CreateClient"), 1);
    EXPECT_EQ(reports.size(), 2U);
}

TEST_F(GeoClueLocationManagerTest, RefusalRevokesAStoredGrant) {
    rememberGrant();
    MockGeoClue service;
    service.start = MockGeoClue::Start::refuses;
    makeManager();
    ASSERT_TRUE(serveUntil([&] { return reports.size() == 2; }));
    EXPECT_EQ(reports.back(), AuthorizationStatus::denied);
    EXPECT_FALSE(std::filesystem::exists(grantFile));
}

TEST_F(GeoClueLocationManagerTest, LocationIsRestrictedWithoutTheService) {
    makeManager();
    manager->requestWhenInUseAuthorization();
    ASSERT_TRUE(serveUntil([&] { return reports.size() == 2; }));
    EXPECT_EQ(reports.back(), AuthorizationStatus::restricted);
    EXPECT_TRUE(failures.empty());
}

TEST_F(GeoClueLocationManagerTest, LocationIsRestrictedWithoutTheBusAndTheGrantIsKept) {
    rememberGrant();
    bus.reset();
    ASSERT_TRUE(serveUntil([] { return !systemBus().isConnected(); }));
    makeManager();
    ASSERT_TRUE(serveUntil([&] { return reports.size() == 2; }));
    EXPECT_EQ(reports.back(), AuthorizationStatus::restricted);
    EXPECT_TRUE(std::filesystem::exists(grantFile));
}

TEST_F(GeoClueLocationManagerTest, UnresponsiveBusIsRetriedLater) {
    rememberGrant();
    bus->signal(SIGSTOP);
    makeManager();
    EXPECT_TRUE(serveUntil([&] { return failures.size() == 1; }));
    EXPECT_EQ(manager->authorizationStatus(), AuthorizationStatus::authorized);
    EXPECT_TRUE(std::filesystem::exists(grantFile));

    bus->signal(SIGCONT);
    const MockGeoClue service;
    ASSERT_TRUE(serveUntil([] { return systemBus().isConnected(); }));
    runLoop.advance(1min);
    EXPECT_TRUE(serveUntil(
        [&] { return std::count(service.calls.begin(), service.calls.end(), "Start") == 1; }));
}

TEST_F(GeoClueLocationManagerTest, ServiceThatHangsAndDiesIsRetriedLater) {
    rememberGrant();
    std::optional<MockGeoClue> service{std::in_place};
    service->answersCreateClient = false;
    makeManager();
    ASSERT_TRUE(serveUntil([&] { return service->hasSeen("CreateClient"); }));
    EXPECT_TRUE(failures.empty());
    service.reset();
    ASSERT_TRUE(serveUntil([&] { return failures.size() == 1; }));
    EXPECT_EQ(reports.size(), 1U);

    service.emplace();
    runLoop.advance(59s);
    settle();
    EXPECT_EQ(service->calls, Calls{});
    runLoop.advance(1s);
    ASSERT_TRUE(serveUntil([&] { return service->hasSeen("Start"); }));
    service->emitLocationUpdated();
    EXPECT_TRUE(serveUntil([&] { return places.size() == 1; }));
}

TEST_F(GeoClueLocationManagerTest, ServiceThatDiesWhileLocatingIsRetriedWithGrowingDelays) {
    rememberGrant();
    std::optional<MockGeoClue> service{std::in_place};
    makeManager();
    for (const auto delay : {1min, 2min, 4min, 8min, 16min, 32min, 60min, 60min}) {
        ASSERT_TRUE(serveUntil([&] { return service->hasSeen("Start"); })) << delay.count();
        settle();
        failures.clear();
        service.reset();
        ASSERT_TRUE(serveUntil([&] { return failures.size() == 1; }));
        service.emplace();
        runLoop.advance(delay - 1s);
        settle();
        ASSERT_EQ(service->calls, Calls{});
        runLoop.advance(1s);
    }
}

TEST_F(GeoClueLocationManagerTest, LocationIsRestrictedIfTheBusIsLostWhileLocating) {
    rememberGrant();
    MockGeoClue service;
    makeManager();
    ASSERT_TRUE(serveUntil([&] { return service.hasSeen("Start"); }));
    settle();
    bus.reset();
    ASSERT_TRUE(serveUntil([&] { return reports.size() == 2; }));
    EXPECT_EQ(reports.back(), AuthorizationStatus::restricted);
    EXPECT_TRUE(std::filesystem::exists(grantFile));
}

TEST_F(GeoClueLocationManagerTest, NothingIsReportedAfterUpdatesAreStopped) {
    rememberGrant();
    MockGeoClue service;
    service.start = MockGeoClue::Start::waits;
    makeManager();
    ASSERT_TRUE(serveUntil([&] { return service.hasSeen("Start"); }));
    manager->stopUpdatingLocation();
    service.answerStart();
    service.emitLocationUpdated();
    settle();
    EXPECT_TRUE(places.empty());
    EXPECT_TRUE(service.hasSeen("DeleteClient /org/freedesktop/GeoClue2/Client/1"));
}

TEST_F(GeoClueLocationManagerTest, InvalidCoordinatesAreNotReported) {
    rememberGrant();
    MockGeoClue service;
    makeManager();
    ASSERT_TRUE(serveUntil([&] { return service.hasSeen("Start"); }));
    int asked = 0;
    for (const auto& place : {QVariantMap{}, QVariantMap{{"Latitude", 52.5}},
                              QVariantMap{{"Latitude", 90.1}, {"Longitude", 13.4}},
                              QVariantMap{{"Latitude", 52.5}, {"Longitude", -180.1}},
                              QVariantMap{{"Latitude", std::nan("")}, {"Longitude", 13.4}},
                              QVariantMap{{"Latitude", "52.5"}, {"Longitude", 13.4}}}) {
        service.place = place;
        service.emitLocationUpdated();
        ++asked;
        const auto isAsked = [&] {
            return std::ranges::count_if(service.calls, [](const std::string& call) {
                       return call.starts_with("GetAll");
                   }) == asked;
        };
        ASSERT_TRUE(serveUntil(isAsked));
        settle();
    }
    EXPECT_TRUE(places.empty());
    service.place = {{"Latitude", -90.0}, {"Longitude", 180.0}};
    service.emitLocationUpdated();
    ASSERT_TRUE(serveUntil([&] { return !places.empty(); }));
    EXPECT_EQ(places[0], (Location{-90, 180}));
}

} // namespace
} // namespace nocta
