#include "backends/linux/backlight/BacklightDevice.h"

#include "backends/linux/backlight/SysfsBacklight.h"
#include "backends/linux/x11/X11Session.h"
#include "support/Sysfs.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace nocta {
namespace {

class BacklightDeviceTest : public ::testing::Test {
protected:
    const Sysfs sysfs;

    std::string of(const std::string& output) {
        return backlightDevice(sysfs.path(), output).value_or("none").filename().string();
    }
};

TEST_F(BacklightDeviceTest, NoDeviceIfThereIsNoBacklight) {
    EXPECT_EQ(of("eDP-1"), "none");
    sysfs.addConnector("card0", "eDP-1");
    EXPECT_EQ(of("eDP-1"), "none");
}

TEST_F(BacklightDeviceTest, FirmwareIsPreferredToPlatformAndPlatformToRaw) {
    sysfs.addBacklight("m-raw", "raw", Sysfs::platform());
    EXPECT_EQ(of("eDP-1"), "m-raw");
    sysfs.addBacklight("n-platform", "platform", Sysfs::platform());
    EXPECT_EQ(of("eDP-1"), "n-platform");
    sysfs.addBacklight("z-firmware", "firmware", Sysfs::platform());
    EXPECT_EQ(of("eDP-1"), "z-firmware");
    sysfs.addBacklight("a-unknown", "telepathic", Sysfs::platform());
    EXPECT_EQ(of("eDP-1"), "z-firmware");
    sysfs.addBacklight("y-firmware", "firmware", Sysfs::platform());
    EXPECT_EQ(of("eDP-1"), "y-firmware")
        << "the first name should win among devices of the same type";
}

TEST_F(BacklightDeviceTest, EachPanelUsesTheDeviceOfItsConnector) {
    sysfs.addConnector("card0", "eDP-1");
    sysfs.addConnector("card0", "eDP-2");
    sysfs.addConnector("card0", "DSI-1");
    sysfs.addBacklight("a", "raw", Sysfs::connector("card0", "eDP-2"));
    sysfs.addBacklight("b", "raw", Sysfs::connector("card0", "eDP-1"));
    sysfs.addBacklight("c", "raw", Sysfs::connector("card0", "DSI-1"));
    sysfs.addBacklight("d", "firmware", Sysfs::card("card0"));
    for (const auto& [output, device] : {std::pair{"eDP-1", "b"},
                                         {"eDP1", "b"},
                                         {"eDP-1-1", "b"},
                                         {"eDP-2", "a"},
                                         {"DSI1", "c"},
                                         {"DSI", "c"}}) {
        EXPECT_EQ(of(output), device) << output;
    }
    for (const auto* const output : {"eDP", "eDP-3", "DP-1", ""}) {
        EXPECT_EQ(of(output), "d")
            << "the best type should win if the connector is unknown: " << output;
    }
}

TEST_F(BacklightDeviceTest, NameIsIgnoredIfOneBuiltInConnectorIsConnected) {
    sysfs.addConnector("card0", "eDP-1", "disconnected");
    sysfs.addConnector("card0", "DP-1");
    sysfs.addConnector("card1", "eDP-2");
    sysfs.addBacklight("a", "raw", Sysfs::connector("card0", "eDP-1"));
    sysfs.addBacklight("b", "raw", Sysfs::connector("card1", "eDP-2"));
    for (const auto* const output : {"eDP-2", "eDP-1", "eDP-1-0", "eDP", "LVDS-0", "DP-2", ""}) {
        EXPECT_EQ(of(output), "b") << output;
    }
}

TEST_F(BacklightDeviceTest, DeviceOfTheSameCardIsPreferredToOneWithoutACard) {
    sysfs.addConnector("card0", "eDP-1", "disconnected");
    sysfs.addConnector("card1", "eDP-2");
    sysfs.addBacklight("c-anywhere", "firmware", Sysfs::platform());
    EXPECT_EQ(of("eDP-2"), "c-anywhere");
    sysfs.addBacklight("b-own-card", "raw", Sysfs::card("card1"));
    EXPECT_EQ(of("eDP-2"), "b-own-card");
    sysfs.addBacklight("a-other-card", "firmware", Sysfs::card("card0"));
    EXPECT_EQ(of("eDP-2"), "b-own-card");
    sysfs.addBacklight("z-own-connector", "raw", Sysfs::connector("card1", "eDP-2"));
    EXPECT_EQ(of("eDP-2"), "z-own-connector");
}

TEST_F(BacklightDeviceTest, NoDeviceIfAllDevicesBelongToOtherDisplays) {
    sysfs.addConnector("card0", "eDP-1");
    sysfs.addConnector("card0", "DSI-1");
    sysfs.addConnector("card1", "HDMI-A-1");
    sysfs.addBacklight("of-connector", "raw", Sysfs::connector("card0", "eDP-1"));
    sysfs.addBacklight("of-card", "raw", Sysfs::card("card1"));
    EXPECT_EQ(of("DSI-1"), "none");
}

TEST(SysfsBacklightOnX11, EachPanelOfTheServerHasItsOwnLevel) {
    X11Session session(XServer::Kind::xorgDummy, {}, {"eDP-1", "eDP-2"});
    session.server.plugSecondOutput();
    ASSERT_TRUE(serveUntil([&] { return session.list().size() == 2; }));
    const Sysfs sysfs;
    sysfs.addConnector("card0", "eDP-1");
    sysfs.addConnector("card0", "eDP-2");
    sysfs.addBacklight("first", "raw", Sysfs::connector("card0", "eDP-1"));
    sysfs.addBacklight("second", "raw", Sysfs::connector("card0", "eDP-2"));
    SysfsBacklight backlight(
        session.displays, [&](DisplayId id) { return session.displays.outputName(id); },
        [](const std::string&, std::uint32_t) { return false; }, sysfs.path());
    EXPECT_EQ(backlight.setBrightness(session.list()[0], 0.2F), statusSuccess);
    EXPECT_EQ(backlight.setBrightness(session.list()[1], 0.7F), statusSuccess);
    EXPECT_EQ(std::stoi(sysfs.level("first")), 200);
    EXPECT_EQ(std::stoi(sysfs.level("second")), 700);
}

} // namespace
} // namespace nocta
