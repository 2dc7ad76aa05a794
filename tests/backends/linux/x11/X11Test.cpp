#include "backends/linux/shell/QtRunLoop.h"
#include "backends/linux/x11/FactoryRamps.h"
#include "backends/linux/x11/X11Connection.h"
#include "backends/linux/x11/X11Displays.h"
#include "backends/linux/x11/X11GammaOutput.h"
#include "backends/linux/x11/X11KeyEvents.h"
#include "base/NotificationCenter.h"
#include "contracts/DisplaysContract.h"
#include "contracts/KeyEventsContract.h"
#include "support/EventLoop.h"
#include "support/Process.h"
#include "support/XClient.h"
#include "support/XServer.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <map>
#include <optional>

namespace nocta {

/// The X11 ports on a server of their own, and another client that looks at it.
struct X11Session {
    explicit X11Session(XServer::Kind kind, const std::vector<std::string>& options = {})
        : server(kind, options) {}

    XServer server;
    XClient client;
    QtRunLoop runLoop;
    NotificationCenter notificationCenter;
    X11Connection connection{runLoop};
    X11Displays displays{connection, runLoop, notificationCenter};
    X11GammaOutput gammaOutput{connection, displays};

    std::vector<DisplayId> list() {
        std::array<DisplayId, 16> ids{};
        std::uint32_t count = 0;
        displays.getActiveDisplayList(ids, count);
        return {ids.begin(), ids.begin() + count};
    }
    Status set(DisplayId id, const std::array<std::vector<float>, 3>& tables) {
        const auto status =
            gammaOutput.setDisplayTransferByTable(id, tables[0], tables[1], tables[2]);
        connection.synchronize();
        return status;
    }
    /// Straight tables up to the three tops.
    static std::array<std::vector<float>, 3> tables(std::array<float, 3> tops) {
        std::array<std::vector<float>, 3> tables;
        for (std::size_t channel = 0; channel < 3; ++channel) {
            for (int i = 0; i < 256; ++i) {
                tables[channel].push_back(tops[channel] * static_cast<float>(i) / 255.0F);
            }
        }
        return tables;
    }
};

struct X11Harness : X11Session {
    std::map<DisplayId, double> factoryTops;
    std::optional<X11KeyEvents> keys;

    X11Harness() : X11Session(XServer::Kind::xorgDummy) { noteFactoryTops(); }

    X11Displays& displays() { return X11Session::displays; }
    GammaOutput& gammaOutput() { return X11Session::gammaOutput; }
    NotificationCenter& notificationCenter() { return X11Session::notificationCenter; }
    KeyEvents& keyEvents() { return keys ? *keys : keys.emplace(connection, runLoop); }

    void plug() {
        server.plugSecondOutput();
        serveUntil([this] { return list().size() == 2; });
        noteFactoryTops();
    }
    void unplug() {
        server.unplugSecondOutput();
        serveUntil([this] { return list().size() == 1; });
    }
    double top(DisplayId id) {
        connection.synchronize();
        return client.top(client.crtcOf(id));
    }
    double factoryTop(DisplayId id) { return factoryTops.at(id); }

    void pressBrightnessUp() { pressAndHear(brightnessUpSymbol); }
    void pressBrightnessDown() { pressAndHear(brightnessDownSymbol); }

private:
    void noteFactoryTops() {
        for (const auto id : list()) {
            factoryTops.emplace(id, client.top(client.crtcOf(id)));
        }
    }
    void pressAndHear(xcb_keysym_t symbol) {
        bool heard = false;
        const auto listener =
            keyEvents().createKeyDownTap([&](const KeyDownEvent&) { heard = true; });
        connection.synchronize(); // the program listens before the key is pressed
        client.press(symbol);
        EXPECT_TRUE(serveUntil([&] { return heard; }));
    }
};
INSTANTIATE_TYPED_TEST_SUITE_P(X11, DisplaysContract, X11Harness);
INSTANTIATE_TYPED_TEST_SUITE_P(X11, KeyEventsContract, X11Harness);

namespace {

TEST(X11Displays, DisplayIsItsOutputWithItsCrtcsBoundsAndMode) {
    X11Session session(XServer::Kind::xorgDummy);
    session.server.plugSecondOutput();
    ASSERT_TRUE(serveUntil([&] { return session.list().size() == 2; }));
    const auto second = session.list()[1];
    EXPECT_EQ(session.displays.displayBounds(second), (Rect{1280, 0, 1280, 720}));
    EXPECT_EQ(session.displays.displayCopyDisplayMode(second), (DisplayMode{1280, 720}));
    EXPECT_FALSE(session.displays.displayIsBuiltin(second));
    EXPECT_EQ(session.displays.crtcOf(second), session.client.crtcOf(second));
}

TEST(X11Displays, PrimaryOutputIsTheMainDisplay) {
    X11Session session(XServer::Kind::xorgDummy);
    session.server.plugSecondOutput();
    session.server.xrandr({"--output", "DUMMY1", "--primary"});
    ASSERT_TRUE(serveUntil([&] {
        auto const list = session.list();
        return list.size() == 2 && session.displays.displayIsMain(list[1]);
    }));
    EXPECT_FALSE(session.displays.displayIsMain(session.list()[0]));
    session.server.xrandr({"--noprimary"});
    EXPECT_TRUE(serveUntil([&] { return !session.displays.displayIsMain(session.list()[1]); }));
}

TEST(X11Displays, OneChangeIsNotifiedOnceAndNoChangeNever) {
    X11Session session(XServer::Kind::xorgDummy);
    std::vector<std::size_t> sizes;
    const auto subscription = session.notificationCenter.observe(
        didChangeScreenParametersNotification, [&] { sizes.push_back(session.list().size()); });
    session.server.xrandr({"--addmode", "DUMMY1", "1280x720"}); // tells, and changes no display
    session.server.xrandr({"--output", "DUMMY1", "--mode", "1280x720", "--same-as", "DUMMY0"});
    ASSERT_TRUE(serveUntil([&] { return session.list().size() == 2; }));
    session.server.unplugSecondOutput();
    ASSERT_TRUE(serveUntil([&] { return session.list().size() == 1; }));
    EXPECT_EQ(sizes, (std::vector<std::size_t>{2, 1}));
}

TEST(X11Displays, ServerWithoutRandRHasNoDisplaysAndSaysSo) {
    ::testing::internal::CaptureStderr();
    X11Session session(XServer::Kind::xvfb, {"-extension", "RANDR"});
    EXPECT_NE(::testing::internal::GetCapturedStderr().find("has no RandR"), std::string::npos);
    EXPECT_TRUE(session.list().empty());
    EXPECT_NE(session.set(1, X11Session::tables({1, 1, 1})), statusSuccess);
    session.gammaOutput.displayRestoreColorSyncSettings();
}

TEST(X11Displays, ServerWithoutAnOutputInUseHasNoDisplays) {
    X11Session session(XServer::Kind::xorgDummy);
    session.server.xrandr({"--output", "DUMMY0", "--off"});
    EXPECT_TRUE(serveUntil([&] { return session.list().empty(); }));
    session.server.xrandr({"--output", "DUMMY0", "--mode", "1280x720"});
    EXPECT_TRUE(serveUntil([&] { return session.list().size() == 1; }));
}

TEST(X11Displays, EmulationIsKnownByItsOutputProperty) {
    X11Session session(XServer::Kind::xvfb);
    EXPECT_FALSE(session.displays.isEmulation());
    session.client.setOutputProperty("RANDR Emulation", 1);
    EXPECT_TRUE(session.displays.isEmulation());
}

class X11GammaOutputTest : public ::testing::TestWithParam<XServer::Kind> {
protected:
    X11Session session{GetParam()};
    DisplayId display = session.list().at(0);
    xcb_randr_crtc_t crtc = session.client.activeCrtcs().at(0);

    XClient::Ramp ramp() {
        session.connection.synchronize();
        return session.client.ramp(crtc);
    }

    /// What a table of the given top shows at entry i of 256, over a calibration read as straight
    /// lines between its points.
    static double expected(const std::vector<std::uint16_t>& calibration, double top, int i) {
        const auto place = top * i / 255 * 255;
        const auto below = std::min(static_cast<std::size_t>(place), std::size_t{254});
        return std::lerp(double{static_cast<double>(calibration[below])},
                         static_cast<double>(calibration[below + 1]),
                         place - static_cast<double>(below));
    }
};
INSTANTIATE_TEST_SUITE_P(Servers, X11GammaOutputTest,
                         ::testing::Values(XServer::Kind::xvfb, XServer::Kind::xorgDummy),
                         [](const auto& instance) {
                             return instance.param == XServer::Kind::xvfb ? "Xvfb" : "XorgDummy";
                         });

TEST_P(X11GammaOutputTest, TablesAreLaidOverTheCalibration) {
    const auto factory = calibration(256, 0.8, {0.97, 1.0, 0.9});
    session.client.setRamp(crtc, factory);
    std::array const tops = {1.0F, 0.75F, 0.4F};
    ASSERT_EQ(session.set(display, X11Session::tables(tops)), statusSuccess);
    const auto shown = ramp();
    for (std::size_t channel = 0; channel < 3; ++channel) {
        for (int i = 0; i < 256; ++i) {
            ASSERT_NEAR(shown[channel][static_cast<std::size_t>(i)],
                        expected(factory[channel], double{tops[channel]}, i), 1)
                << channel << " " << i;
        }
    }
    session.gammaOutput.displayRestoreColorSyncSettings();
    EXPECT_EQ(ramp(), factory) << "given back to the bit";
}

TEST_P(X11GammaOutputTest, RampThatIsNoCalibrationCountsAsTheIdentityAndIsStillGivenBack) {
    auto falling = calibration(256, 1.0, {1, 1, 1});
    falling[2][100] = 0;
    XClient::Ramp zero;
    zero.fill(std::vector<std::uint16_t>(256, 0));
    for (const auto& factory : {falling, zero}) {
        session.client.setRamp(crtc, factory);
        session.set(display, X11Session::tables({1.0F, 0.5F, 0.25F}));
        const auto shown = ramp();
        for (int i = 0; i < 256; ++i) {
            const auto entry = static_cast<std::size_t>(i);
            ASSERT_NEAR(shown[0][entry], 257.0 * i, 1);
            ASSERT_NEAR(shown[1][entry], 257.0 * i / 2, 1);
            ASSERT_NEAR(shown[2][entry], 257.0 * i / 4, 1);
        }
        session.gammaOutput.displayRestoreColorSyncSettings();
        EXPECT_EQ(ramp(), factory);
    }
}

TEST_P(X11GammaOutputTest, EqualTablesHealARampThatSomebodyElseHasReset) {
    const auto tables = X11Session::tables({0.5F, 0.5F, 0.5F});
    session.set(display, tables);
    const auto ours = ramp();
    session.client.setRamp(crtc, calibration(256, 1.0, {1, 1, 1}));
    ASSERT_NE(ramp(), ours);
    session.set(display, tables);
    EXPECT_EQ(ramp(), ours);
}

TEST_P(X11GammaOutputTest, DestructionGivesTheScreenBackToo) {
    const auto factory = ramp();
    {
        X11GammaOutput output(session.connection, session.displays);
        const auto tables = X11Session::tables({0.5F, 0.5F, 0.5F});
        ASSERT_EQ(output.setDisplayTransferByTable(display, tables[0], tables[1], tables[2]),
                  statusSuccess);
        EXPECT_NE(ramp(), factory);
    }
    EXPECT_EQ(ramp(), factory);
}

TEST_P(X11GammaOutputTest, SecondProgramIsRefusedWhileTheFirstControlsTheDisplay) {
    const auto tables = X11Session::tables({0.5F, 0.5F, 0.5F});
    session.set(display, tables);
    const auto ours = ramp();
    X11Connection otherConnection(session.runLoop);
    X11GammaOutput other(otherConnection, session.displays);
    ::testing::internal::CaptureStderr();
    EXPECT_NE(other.setDisplayTransferByTable(display, tables[0], tables[1], tables[2]),
              statusSuccess);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "nocta: another Nocta controls the gamma of this display\n");
    EXPECT_EQ(ramp(), ours);

    session.gammaOutput.displayRestoreColorSyncSettings();
    const auto factory = ramp();
    EXPECT_EQ(other.setDisplayTransferByTable(display, tables[0], tables[1], tables[2]),
              statusSuccess)
        << "the first has gone";
    EXPECT_TRUE(otherConnection.synchronize());
    EXPECT_EQ(session.client.ramp(crtc), ours);
    other.displayRestoreColorSyncSettings();
    EXPECT_EQ(session.client.ramp(crtc), factory);
}

TEST_P(X11GammaOutputTest, DyingServerFailsWithoutACrash) {
    session.set(display, X11Session::tables({0.5F, 0.5F, 0.5F}));
    int lost = 0;
    session.connection.onLost = [&] { ++lost; };
    session.server.kill();
    EXPECT_TRUE(serveUntil([&] { return lost > 0; }));
    session.set(display, X11Session::tables({1, 1, 1}));
    session.gammaOutput.displayRestoreColorSyncSettings();
    EXPECT_EQ(lost, 1);
}

TEST_P(X11GammaOutputTest, GuardianActsWhereTheConnectionIsLostAndTheServerIsNot) {
    const auto factory = ramp();
    session.set(display, X11Session::tables({0.5F, 0.5F, 0.5F}));
    ASSERT_NE(ramp(), factory);
    bool lost = false;
    session.connection.onLost = [&] { lost = true; };
    session.client.disconnect(session.connection.window());
    ASSERT_TRUE(serveUntil([&] { return lost; }));
    session.gammaOutput.displayRestoreColorSyncSettings();
    EXPECT_TRUE(waitUntil([&] { return session.client.ramp(crtc) == factory; }));
}

TEST_P(X11GammaOutputTest, FactoryRampIsKeptOnTheServerWhileItIsNotInForce) {
    const auto factory = calibration(256, 0.8, {0.97, 1.0, 0.9});
    session.client.setRamp(crtc, factory);
    const auto root = session.connection.root();
    EXPECT_TRUE(readFactoryRamps(session.connection.get(), root).empty());
    session.set(display, X11Session::tables({0.5F, 0.5F, 0.5F}));
    session.set(display, X11Session::tables({0.25F, 0.5F, 0.5F}));
    const auto kept = readFactoryRamps(session.connection.get(), root);
    ASSERT_EQ(kept.size(), 1U);
    EXPECT_EQ(kept.at(crtc).red, factory[0]);
    EXPECT_EQ(kept.at(crtc).green, factory[1]);
    EXPECT_EQ(kept.at(crtc).blue, factory[2]);
    session.gammaOutput.displayRestoreColorSyncSettings();
    EXPECT_TRUE(readFactoryRamps(session.connection.get(), root).empty());
}

TEST_P(X11GammaOutputTest, NonsenseInTheKeptRampsIsLeftOut) {
    const auto root = session.connection.root();
    for (const auto& numbers : {
             std::vector<std::uint16_t>{1},
             std::vector<std::uint16_t>{0, 63, 0},
             std::vector<std::uint16_t>{0, 63, 0, 1, 2, 3},
             std::vector<std::uint16_t>{0, 63, 256, 1, 2, 3},
             std::vector<std::uint16_t>{65535, 65535, 65535, 0},
         }) {
        session.client.setRootProperty("_NOCTA_FACTORY_RAMPS", numbers);
        EXPECT_TRUE(readFactoryRamps(session.connection.get(), root).empty());
    }
    session.client.setRootProperty("_NOCTA_FACTORY_RAMPS", {0, 63, 1, 7, 8, 9, 0, 64, 2, 1});
    const auto kept = readFactoryRamps(session.connection.get(), root);
    ASSERT_EQ(kept.size(), 1U);
    EXPECT_EQ(kept.at(63).blue, std::vector<std::uint16_t>{9});
}

TEST(X11GammaOutput, RampThatVanishedBetweenListingAndWritingHarmsNoOther) {
    X11Session session(XServer::Kind::xorgDummy);
    session.server.plugSecondOutput();
    ASSERT_TRUE(serveUntil([&] { return session.list().size() == 2; }));
    const auto list = session.list();
    session.server.unplugSecondOutput(); // and the program has not heard of it yet
    session.set(list[1], X11Session::tables({0.5F, 0.5F, 0.5F}));
    EXPECT_EQ(session.set(list[0], X11Session::tables({0.5F, 0.5F, 0.5F})), statusSuccess);
    EXPECT_NEAR(session.client.top(session.client.crtcOf(list[0])), 0.5 * 65280 / 65535, 2e-5);
    EXPECT_TRUE(serveUntil([&] { return session.list().size() == 1; }));
}

TEST(X11KeyEvents, KeyboardThatIsMappedAnewIsHeard) {
    X11Harness harness; // its client gives free keys the two symbols after the program has looked
    std::vector<std::int64_t> keys;
    const auto tap = harness.keyEvents().createKeyDownTap(
        [&](const KeyDownEvent& event) { keys.push_back(event.keyCode); });
    harness.pressBrightnessUp();
    harness.pressBrightnessDown();
    EXPECT_EQ(keys, (std::vector<std::int64_t>{145, 144}));
}

TEST(X11KeyEvents, HeldKeyRepeatsAtTheKeyboardsOwnPaceUntilItIsReleased) {
    X11Harness harness;
    harness.pressBrightnessUp(); // gives free keys the two symbols
    harness.pressBrightnessDown();
    ASSERT_EQ(runToEnd({"xset", "-display", harness.server.display(), "r", "rate", "50", "100"}),
              0);
    int heard = 0;
    const auto tap = harness.keyEvents().createKeyDownTap([&](const KeyDownEvent& event) {
        EXPECT_EQ(event.keyCode, 144);
        ++heard;
    });
    harness.client.hold(brightnessDownSymbol);
    EXPECT_TRUE(serveUntil([&] { return heard == 5; }));
    harness.client.release(brightnessDownSymbol);
    harness.pressBrightnessDown(); // heard after the release
    const auto whenReleased = heard;
    bool passed = false;
    Timer timer;
    timer.start(harness.runLoop, std::chrono::milliseconds(200), Repeat::no,
                [&] { passed = true; });
    ASSERT_TRUE(serveUntil([&] { return passed; }));
    EXPECT_EQ(heard, whenReleased);
}

TEST(X11KeyEvents, HeldKeyDoesNotRepeatWhereRepeatingIsOff) {
    X11Harness harness;
    harness.pressBrightnessUp();
    harness.pressBrightnessDown();
    ASSERT_EQ(runToEnd({"xset", "-display", harness.server.display(), "r", "rate", "20", "100"}),
              0);
    ASSERT_EQ(runToEnd({"xset", "-display", harness.server.display(), "r", "off"}), 0);
    int heard = 0;
    const auto tap = harness.keyEvents().createKeyDownTap([&](const KeyDownEvent&) { ++heard; });
    harness.client.hold(brightnessUpSymbol);
    bool passed = false;
    Timer timer;
    timer.start(harness.runLoop, std::chrono::milliseconds(200), Repeat::no,
                [&] { passed = true; });
    ASSERT_TRUE(serveUntil([&] { return passed; }));
    harness.client.release(brightnessUpSymbol);
    EXPECT_EQ(heard, 1);
}

TEST(X11KeyEvents, OtherKeysAreNotPassedOn) {
    X11Harness harness;
    std::vector<std::int64_t> keys;
    const auto tap = harness.keyEvents().createKeyDownTap(
        [&](const KeyDownEvent& event) { keys.push_back(event.keyCode); });
    harness.client.press('a');
    harness.client.press(0x1008FF13); // volume up
    harness.pressBrightnessUp();
    EXPECT_EQ(keys, std::vector<std::int64_t>{145});
}

} // namespace
} // namespace nocta
