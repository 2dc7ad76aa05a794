#include "backends/linux/x11/X11Session.h"
#include "contracts/DisplayRemovalContract.h"
#include "contracts/DisplaysContract.h"
#include "contracts/GammaOutputContract.h"

#include <utility>

namespace nocta {

INSTANTIATE_TYPED_TEST_SUITE_P(X11, DisplaysContract, X11Harness);
INSTANTIATE_TYPED_TEST_SUITE_P(X11, DisplayRemovalContract, X11Harness);
INSTANTIATE_TYPED_TEST_SUITE_P(X11, GammaOutputContract, X11Harness);

namespace {

TEST(X11Displays, DisplayIsAnOutputWithTheBoundsAndModeOfItsCrtc) {
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

TEST(X11Displays, EachChangeIsReportedExactlyOnce) {
    X11Session session(XServer::Kind::xorgDummy);
    std::vector<std::size_t> sizes;
    const auto subscription = session.notificationCenter.observe(
        didChangeScreenParametersNotification, [&] { sizes.push_back(session.list().size()); });
    session.server.xrandr({"--addmode", "DUMMY1", "1280x720"}); // does not change any display
    session.server.xrandr({"--output", "DUMMY1", "--mode", "1280x720", "--same-as", "DUMMY0"});
    ASSERT_TRUE(serveUntil([&] { return session.list().size() == 2; }));
    session.server.unplugSecondOutput();
    ASSERT_TRUE(serveUntil([&] { return session.list().size() == 1; }));
    EXPECT_EQ(sizes, (std::vector<std::size_t>{2, 1}));
}

TEST(X11Displays, ServerWithoutRandRHasNeitherDisplaysNorRamps) {
    X11Session session(XServer::Kind::xvfb, {"-extension", "RANDR"});
    EXPECT_FALSE(session.displays.hasRamps());
    EXPECT_TRUE(session.list().empty());
    EXPECT_NE(session.set(1, X11Session::tables({1, 1, 1})), statusSuccess);
    session.gammaOutput.displayRestoreColorSyncSettings();
}

TEST(X11Displays, ServerWithoutActiveOutputsHasNoDisplays) {
    X11Session session(XServer::Kind::xorgDummy);
    session.server.xrandr({"--output", "DUMMY0", "--off"});
    EXPECT_TRUE(serveUntil([&] { return session.list().empty(); }));
    EXPECT_TRUE(session.displays.hasRamps()) << "a display may be turned on later";
    session.server.xrandr({"--output", "DUMMY0", "--mode", "1280x720"});
    EXPECT_TRUE(serveUntil([&] { return session.list().size() == 1; }));
}

TEST(X11Displays, EmulationIsDetectedByItsOutputProperty) {
    X11Session session(XServer::Kind::xvfb);
    EXPECT_FALSE(session.displays.isEmulation());
    session.client.setOutputProperty("RANDR Emulation", {1});
    EXPECT_TRUE(session.displays.isEmulation());
}

TEST(X11Displays, BuiltInIsDetectedByTheNameOfTheOutput) {
    for (const auto& [name, isBuiltIn] : {std::pair{"eDP-1", true},
                                          {"LVDS1", true},
                                          {"DSI-2", true},
                                          {"DP-1", false},
                                          {"HDMI-A-0", false},
                                          {"DVI-D-0", false}}) {
        X11Session session(XServer::Kind::xorgDummy, {}, {name});
        const auto display = session.list().at(0);
        EXPECT_EQ(session.displays.outputName(display), name);
        EXPECT_EQ(session.displays.displayIsBuiltin(display), isBuiltIn) << name;
    }
}

TEST(X11Displays, PanelWithAnotherNameIsBuiltIn) {
    const XServer server(XServer::Kind::xorgDummy, {}, {"DP-2"});
    XClient client;
    const auto isBuiltIn = [&](const std::vector<std::uint32_t>& connectorType) {
        client.setOutputProperty("ConnectorType", connectorType, XCB_ATOM_ATOM);
        QtRunLoop runLoop;
        NotificationCenter notificationCenter;
        X11Connection connection(runLoop);
        X11Displays displays(connection, runLoop, notificationCenter);
        return displays.displayIsBuiltin(displays.ids().at(0));
    };
    EXPECT_TRUE(isBuiltIn({client.atom("Panel")}));
    EXPECT_FALSE(isBuiltIn({client.atom("HDMI")}));
    EXPECT_FALSE(isBuiltIn({}));
}

} // namespace
} // namespace nocta
