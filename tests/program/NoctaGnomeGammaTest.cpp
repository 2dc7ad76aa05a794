#include "support/FakeColorManager.h"
#include "support/NoctaProcess.h"
#include "support/PrivateBus.h"

#include <csignal>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// Tests the real program with simulated services of GNOME's compositor, which offer different ways
// to set the gamma ramps.

namespace nocta {
namespace {

class NoctaGnomeGammaTest : public NoctaProcess {
protected:
    static constexpr auto unsupported = "gamma is not supported in this Wayland session yet\n";

    PrivateBus bus{"DBUS_SESSION_BUS_ADDRESS"};
    FakeDisplayConfig displays{bus.address()};
    std::optional<FakeColorManager> colors{std::in_place, bus.address(), displays};

    void SetUp() override {
        NoctaProcess::SetUp();
        writeFile(settings, neutralSettings("unifiedBrightness=0.5"));
        displays.with([](auto& state) { state.monitorProperties = "'is-builtin': <false>"; });
        // This makes Nocta treat the X server as one inside a Wayland session.
        client.setOutputProperty("RANDR Emulation", {1});
    }
    void start() {
        auto variables = environment();
        variables.insert_or_assign("DBUS_SESSION_BUS_ADDRESS", bus.address());
        nocta =
            std::make_unique<Process>(std::vector{programFolder() + "/nocta"}, variables, output);
    }
    void offerRamp() {
        displays.with([](auto& state) {
            const std::vector<std::uint16_t> straight = {0, 21845, 43690, 65535};
            state.ramp = {.red = straight, .green = straight, .blue = straight};
        });
    }
    bool waitForHalf() {
        return waitUntil([this] {
            const auto ramp = displays.ramp();
            return ramp.size() > 0 && ramp.red.back() == 32768;
        });
    }
    void terminate() {
        nocta->signal(SIGTERM);
        EXPECT_EQ(nocta->wait(), 0) << contentOf(output);
    }
    bool saysUnsupported() const {
        return contentOf(output).find(unsupported) != std::string::npos;
    }
};
INSTANTIATE_TEST_SUITE_P(Servers, NoctaGnomeGammaTest, ::testing::Values(XServer::Kind::xvfb),
                         serverName);

TEST_P(NoctaGnomeGammaTest, RampsOfTheDisplayServiceArePreferred) {
    offerRamp();
    start();
    EXPECT_TRUE(waitForHalf()) << contentOf(output);
    terminate();
    EXPECT_GT(displays.calls("SetCrtcGamma"), 0);
    EXPECT_EQ(colors->calls("CalibrateMonitor"), 0);
    EXPECT_FALSE(saysUnsupported());
}

TEST_P(NoctaGnomeGammaTest, SessionsAreUsedIfTheDisplayServiceHasNoRamps) {
    start();
    EXPECT_TRUE(waitForHalf()) << contentOf(output);
    EXPECT_EQ(colors->state().sessions.size(), 1U);
    terminate();
    EXPECT_EQ(colors->state().sessions.size(), 0U);
    EXPECT_EQ(displays.calls("SetCrtcGamma"), 0);
    EXPECT_FALSE(saysUnsupported());
}

TEST_P(NoctaGnomeGammaTest, GammaIsUnsupportedWithoutRampsAndSessions) {
    colors.reset();
    start();
    EXPECT_TRUE(waitUntil([this] { return saysUnsupported(); })) << contentOf(output);
}

} // namespace
} // namespace nocta
