#include "support/EventLoop.h"
#include "support/NoctaProcess.h"
#include "support/PrivateBus.h"
#include "support/ScreenBrightness.h"
#include "support/Sysfs.h"

#include <unistd.h>

namespace nocta {
namespace {

/// The real program on a laptop with two panels and two graphics cards.
class NoctaBacklightTest : public NoctaProcess {
protected:
    const Sysfs sysfs;

    NoctaBacklightTest() : NoctaProcess({"eDP-1", "eDP-2"}) {}

    void SetUp() override {
        if (runToEnd(onThisMachine("true")) != 0) {
            GTEST_SKIP() << "this machine does not allow mounts in a private namespace";
        }
        server.xrandr({"--output", "eDP-1", "--primary"});
        sysfs.addConnector("card0", "eDP-1");
        sysfs.addConnector("card0", "eDP-2");
        sysfs.addConnector("card1", "eDP-3", "disconnected");
        sysfs.addBacklight("first", "raw", Sysfs::connector("card0", "eDP-1"));
        sysfs.addBacklight("second", "raw", Sysfs::connector("card0", "eDP-2"));
        sysfs.addBacklight("other", "firmware", Sysfs::connector("card1", "eDP-3"));
        NoctaProcess::SetUp();
    }
    void startHere(const Process::Environment& environment) {
        nocta = std::make_unique<Process>(onThisMachine("exec " + programFolder() + "/nocta"),
                                          environment, output);
    }
    /// Returns a command that runs `command` with `sysfs` in place of the kernel's files.
    std::vector<std::string> onThisMachine(const std::string& command) const {
        return {"unshare", getuid() == 0 ? "-m" : "-rm", "sh", "-c",
                "mount --bind " + sysfs.path() + " /sys && " + command};
    }
    bool waitForLevels(const std::string& level) {
        return waitUntil(
            [&] { return sysfs.level("first") == level && sysfs.level("second") == level; });
    }
};
INSTANTIATE_TEST_SUITE_P(Servers, NoctaBacklightTest, ::testing::Values(XServer::Kind::xorgDummy),
                         serverName);

TEST_P(NoctaBacklightTest, EveryPanelUsesItsOwnBacklight) {
    startHere(environment());
    EXPECT_TRUE(waitForLevels("550")) << contentOf(output); // 75 % brightness
    EXPECT_TRUE(waitForBrightness(1)) << "the gamma tables should not dim the picture";
    client.press(brightnessDownSymbol);
    EXPECT_TRUE(waitForLevels("438"));
    EXPECT_EQ(sysfs.level("other"), "1000\n")
        << "the backlight of a display that is off should not change";
}

TEST_P(NoctaBacklightTest, LevelOfTheOnlyPanelIsSetThroughPlasma) {
    server.unplugSecondOutput();
    const PrivateBus bus("DBUS_SESSION_BUS_ADDRESS");
    ScreenBrightness plasma(bus);
    plasma.displays["display0"] = ScreenBrightness::display(true, 10000);
    plasma.provide();
    auto session = environment();
    session["DBUS_SESSION_BUS_ADDRESS"] = bus.address();
    startHere(session);
    EXPECT_TRUE(serveUntil([&] { return plasma.level("display0") == 5500; })) << contentOf(output);
    const auto ofDevice = sysfs.level("first");
    client.press(brightnessDownSymbol);
    EXPECT_TRUE(serveUntil([&] { return plasma.level("display0") == 4375; }));
    EXPECT_EQ(sysfs.level("first"), ofDevice) << "Nocta should not change the device itself";
}

} // namespace
} // namespace nocta
