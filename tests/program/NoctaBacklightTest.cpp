#include "support/NoctaProcess.h"
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
            GTEST_SKIP() << "no right to mount a folder in a namespace of its own";
        }
        server.xrandr({"--output", "eDP-1", "--primary"});
        sysfs.addConnector("card0", "eDP-1");
        sysfs.addConnector("card0", "eDP-2");
        sysfs.addConnector("card1", "eDP-3", "disconnected");
        sysfs.addBacklight("first", "raw", Sysfs::connector("card0", "eDP-1"));
        sysfs.addBacklight("second", "raw", Sysfs::connector("card0", "eDP-2"));
        sysfs.addBacklight("other", "firmware", Sysfs::connector("card1", "eDP-3"));
        NoctaProcess::SetUp();
        nocta = std::make_unique<Process>(onThisMachine("exec " + programFolder() + "/nocta"),
                                          environment(), output);
    }
    /// Wraps a command so that it sees `sysfs` as the kernel's files.
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

TEST_P(NoctaBacklightTest, EveryPanelIsLitByItsOwnDevice) {
    EXPECT_TRUE(waitForLevels("550")) << contentOf(output); // at three quarters
    EXPECT_TRUE(waitForBrightness(1)) << "the picture is not darkened";
    client.press(brightnessDownSymbol);
    EXPECT_TRUE(waitForLevels("438"));
    EXPECT_EQ(sysfs.level("other"), "1000\n") << "it lights no display that is on";
}

} // namespace
} // namespace nocta
