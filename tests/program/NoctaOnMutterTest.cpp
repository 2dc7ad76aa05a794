#include "support/Mutter.h"
#include "support/NoctaProcess.h"

#include <csignal>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

// Tests the real program in a GNOME session whose compositor controls the gamma ramps.

namespace nocta {
namespace {

class NoctaOnMutterTest : public NoctaProcess {
protected:
    PrivateBus bus{"DBUS_SESSION_BUS_ADDRESS"};
    std::optional<Mutter> mutter;

    void SetUp() override {
        if (!Mutter::isSupported()) {
            GTEST_SKIP() << "this version of Mutter needs hardware";
        }
        NoctaProcess::SetUp();
        mutter.emplace();
        // Nocta then takes the server for one inside a Wayland session.
        client.setOutputProperty("RANDR Emulation", {1});
    }
    void start() {
        auto variables = environment();
        variables.insert_or_assign("DBUS_SESSION_BUS_ADDRESS", bus.address());
        variables.insert_or_assign("XDG_CURRENT_DESKTOP", "GNOME");
        variables.insert_or_assign("GSETTINGS_BACKEND", "memory");
        nocta =
            std::make_unique<Process>(std::vector{programFolder() + "/nocta"}, variables, output);
    }
    void startAndWaitFor(double brightness) {
        writeFile(settings, neutralSettings("unifiedBrightness=" + std::to_string(brightness)));
        start();
        ASSERT_TRUE(waitForBrightness(brightness)) << contentOf(output);
        EXPECT_EQ(guardiansOf(nocta->id()).size(), 0U) << "the X server should not be asked";
        ASSERT_EQ(helpers().size(), 1U);
    }
    std::vector<pid_t> helpers() const { return childrenOf(nocta->id(), "nocta-ramps"); }
    void kill() {
        nocta->signal(SIGKILL);
        nocta->wait();
    }
};
INSTANTIATE_TEST_SUITE_P(Servers, NoctaOnMutterTest, ::testing::Values(XServer::Kind::xorgDummy),
                         serverName);

TEST_P(NoctaOnMutterTest, EveryEndRestoresTheRamps) {
    for (const auto ending : {SIGTERM, SIGINT, SIGHUP}) {
        startAndWaitFor(0.75);
        nocta->signal(ending);
        EXPECT_EQ(nocta->wait(), 0) << contentOf(output);
        EXPECT_TRUE(isGivenBack()) << ending;
    }
    for (const auto crash : {SIGKILL, SIGSEGV}) {
        startAndWaitFor(0.4);
        nocta->signal(crash);
        nocta->wait();
        EXPECT_TRUE(waitUntil([&] { return isGivenBack(); })) << crash;
    }
}

TEST_P(NoctaOnMutterTest, QuickRestartsAlwaysEndAtTheFactoryRamps) {
    startAndWaitFor(0.75);
    for (int restart = 0; restart < 5; ++restart) {
        nocta->signal(SIGKILL);
        start(); // the next iteration kills it at any point during its launch
    }
    kill();
    EXPECT_TRUE(waitUntil([&] { return isGivenBack(); }));
    startAndWaitFor(0.5);
    kill();
    EXPECT_TRUE(waitUntil([&] { return isGivenBack(); }));
}

TEST_P(NoctaOnMutterTest, KilledHelperIsReplaced) {
    startAndWaitFor(0.75);
    const auto first = helpers().at(0);
    ::kill(first, SIGKILL);
    ASSERT_TRUE(waitUntil([&] { return helpers().size() == 1 && helpers()[0] != first; }));
    EXPECT_TRUE(waitForBrightness(0.75));
    kill();
    EXPECT_TRUE(waitUntil([&] { return isGivenBack(); }));
}

TEST_P(NoctaOnMutterTest, NextStartRestoresTheRampsIfTheHelperDiedToo) {
    startAndWaitFor(0.75);
    const auto helper = helpers().at(0);
    ::kill(helper, SIGSTOP); // so that it cannot restore the ramps
    kill();
    ::kill(helper, SIGKILL);
    EXPECT_TRUE(shows(0.75)) << "nothing is left to restore the ramps";
    startAndWaitFor(0.5);
    nocta->signal(SIGTERM);
    EXPECT_EQ(nocta->wait(), 0);
    EXPECT_TRUE(isGivenBack());
}

TEST_P(NoctaOnMutterTest, NotesOfAnotherCompositorAreDropped) {
    startAndWaitFor(0.75);
    const auto helper = helpers().at(0);
    ::kill(helper, SIGSTOP);
    kill();
    ::kill(helper, SIGKILL);
    mutter.reset();
    for (const auto crtc : client.activeCrtcs()) {
        client.setRamp(crtc, factory());
    }
    mutter.emplace();
    const auto notes = home.path() + "/.local/state/nocta/ramps";
    auto text = contentOf(notes);
    ASSERT_NE(text.find("red="), std::string::npos);
    startAndWaitFor(0.5);
    EXPECT_NE(contentOf(notes), text);
    kill();
    EXPECT_TRUE(waitUntil([&] { return isGivenBack(); }));
    EXPECT_TRUE(waitUntil([&] { return !std::filesystem::exists(notes); }));
}

TEST_P(NoctaOnMutterTest, WriteOfTheNightLightIsReplaced) {
    startAndWaitFor(0.75);
    for (const auto crtc : client.activeCrtcs()) {
        client.setRamp(crtc, calibration(256, 1.0, {1.0, 0.8, 0.6}));
    }
    ASSERT_FALSE(shows(0.75));
    Mutter::announceNightLight();
    EXPECT_TRUE(waitForBrightness(0.75));
    kill();
    EXPECT_TRUE(waitUntil([&] { return isGivenBack(); }));
}

TEST_P(NoctaOnMutterTest, PopoverOpensAtTheTopRightWithoutATray) {
    startAndWaitFor(0.75);
    const auto first = std::move(nocta);
    start(); // asks the first one to show its popover
    EXPECT_EQ(nocta->wait(), 0);
    const auto popovers = [&] {
        return client.windows(
            [&](const XClient::TopWindow& window) { return client.nameOf(window.id) == "Nocta"; });
    };
    ASSERT_TRUE(waitUntil([&] { return popovers().size() == 1; }));
    const auto popover = popovers().at(0);
    const auto screen = client.activeFrames().at(0);
    constexpr int margin = 4;
    constexpr int shadow = 16;
    EXPECT_EQ(popover.x + popover.width - shadow, screen.x + screen.width - margin);
    EXPECT_LT(popover.y, screen.y + 2 * shadow);
    EXPECT_FALSE(popover.isOverrideRedirect) << "a popup does not see clicks on Wayland windows";
    first->signal(SIGTERM);
    EXPECT_EQ(first->wait(), 0);
}

} // namespace
} // namespace nocta
