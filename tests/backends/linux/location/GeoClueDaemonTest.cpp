#include "backends/linux/location/GeoClueLocationManager.h"
#include "base/Calendar.h"
#include "support/DesktopOnX11.h"
#include "support/GeoClue.h"
#include "support/IndependentSun.h"
#include "support/NoctaProcess.h"
#include "support/TimeZone.h"

#include <chrono>
#include <cmath>
#include <filesystem>
#include <optional>
#include <string>

// Tests with a real GeoClue daemon, which gets its location from a server in the test.

namespace nocta {
namespace {

using namespace std::chrono_literals;

constexpr Location berlin{52.52, 13.405};
constexpr auto skipReason = "this machine does not allow mounts in a private namespace";

class GeoClueDaemonTest : public DesktopOnX11 {
protected:
    const TimeZone zone{zone::berlin};
    PrivateBus bus{"DBUS_SYSTEM_BUS_ADDRESS"};
    GeoClueDaemon daemon;
    std::optional<LocationAgent> agent;
    TemporaryFolder state;
    std::filesystem::path grantFile = state.path() + "/location-granted";
    GeoClueLocationManager geoClue{desktop.runLoop, grantFile};

    void SetUp() override {
        if (!daemon.canStart()) {
            GTEST_SKIP() << skipReason;
        }
        daemon.setPlace(berlin.latitude, berlin.longitude);
        locationManager = &geoClue;
    }

    void startDaemonForAUserWho(bool allows) {
        daemon.start();
        agent.emplace(allows);
        ASSERT_TRUE(serveUntil([&] { return agent->registerWithDaemon(); }));
    }

    /// A time on the longest day of the year, in Berlin's time zone.
    static WallTime at(int hour, int minute) {
        return Calendar::instantAt({2026, 6, 21}, hour, minute).value();
    }
    void letTheClockShow(WallTime time) {
        desktop.runLoop.setWallClock(time - 60s);
        desktop.runLoop.advance(60s);
    }
};

TEST_F(GeoClueDaemonTest, GrantReplacesTheDefaultTimesWithLocalOnes) {
    startDaemonForAUserWho(true);
    settings().unifiedBrightness.set(1);
    desktop.runLoop.setWallClock(at(19, 30));
    launch();
    expectWhitePointOf(2700); // an hour after the default sunset

    settings().locationEnabled.set(true);
    const auto sun = IndependentSun::times(172, berlin.latitude, berlin.longitude, 2).value();
    ASSERT_TRUE(serveUntil([&] { return schedule().sunsetTime.get() > at(20, 0); }));
    EXPECT_TRUE(std::filesystem::exists(grantFile));
    const auto minutesOfSunset = (schedule().sunsetTime.get().value() - at(0, 0)) / 1min;
    EXPECT_NEAR(static_cast<double>(minutesOfSunset), static_cast<double>(sun.sunset), 3)
        << "the sunset should match within 3 minutes, because GeoClue blurs the location";

    letTheClockShow(at(19, 31));
    expectWhitePointOf(6500);
    letTheClockShow(schedule().sunsetTime.get().value());
    expectWhitePointOf(4600);
    letTheClockShow(at(23, 30));
    expectWhitePointOf(2700);
    letTheClockShow(at(13, 0) + 24h);
    expectWhitePointOf(6500);
    quit();
}

TEST_F(GeoClueDaemonTest, DisabledLocationServiceCountsAsADenial) {
    startDaemonForAUserWho(false);
    launch();
    settings().locationEnabled.set(true);
    ASSERT_TRUE(serveUntil([&] { return !settings().locationEnabled.get(); }));
    EXPECT_EQ(location().authorizationStatus.get(), AuthorizationStatus::denied);
    EXPECT_FALSE(std::filesystem::exists(grantFile));
    quit();
}

class NoctaWithGeoClueTest : public NoctaProcess {
protected:
    /// Starts the program as if the user had allowed the location in an earlier run.
    void startWithGrant(const PrivateBus& systemBus) {
        auto variables = environment();
        variables["DBUS_SYSTEM_BUS_ADDRESS"] = systemBus.address();
        const auto state = home.path() + "/.local/state/nocta";
        std::filesystem::create_directories(state);
        writeFile(state + "/location-granted", "");
        nocta =
            std::make_unique<Process>(std::vector{programFolder() + "/nocta"}, variables, output);
        ASSERT_TRUE(waitForBrightness(0.75)) << contentOf(output);
    }
};
INSTANTIATE_TEST_SUITE_P(Servers, NoctaWithGeoClueTest, ::testing::Values(XServer::Kind::xvfb),
                         serverName);

TEST_P(NoctaWithGeoClueTest, LocationIsRequestedOnLaunchAfterAStoredGrant) {
    const PrivateBus bus("DBUS_SYSTEM_BUS_ADDRESS");
    GeoClueDaemon daemon;
    if (!daemon.canStart()) {
        GTEST_SKIP() << skipReason;
    }
    daemon.start();
    LocationAgent agent(true);
    ASSERT_TRUE(serveUntil([&] { return agent.registerWithDaemon(); }));
    startWithGrant(bus);
    ASSERT_TRUE(serveUntil([&] { return daemon.isAsked(); }));
    EXPECT_TRUE(waitUntil(
        [&] { return contentOf(settings).find("locationEnabled=true") != std::string::npos; }));
    nocta->signal(SIGTERM);
    EXPECT_EQ(nocta->wait(), 0);
}

TEST_P(NoctaWithGeoClueTest, LocationIsRequestedAsSoonAsALateBusAnswers) {
    const PrivateBus bus("DBUS_SYSTEM_BUS_ADDRESS");
    GeoClueDaemon daemon;
    if (!daemon.canStart()) {
        GTEST_SKIP() << skipReason;
    }
    daemon.start();
    LocationAgent agent(true);
    ASSERT_TRUE(serveUntil([&] { return agent.registerWithDaemon(); }));
    bus.signal(SIGSTOP);
    startWithGrant(bus);
    bus.signal(SIGCONT);
    EXPECT_TRUE(serveUntil([&] { return daemon.isAsked(); }))
        << "the location should be requested without waiting a minute";
}

} // namespace
} // namespace nocta
