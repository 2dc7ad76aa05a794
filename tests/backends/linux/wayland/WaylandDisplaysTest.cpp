#include "backends/linux/wayland/WaylandSession.h"
#include "contracts/DisplayRemovalContract.h"
#include "contracts/DisplaysContract.h"

namespace nocta {

INSTANTIATE_TYPED_TEST_SUITE_P(Sway, DisplaysContract, SwayHarness);
INSTANTIATE_TYPED_TEST_SUITE_P(TestCompositor, DisplaysContract, TestCompositorHarness);
INSTANTIATE_TYPED_TEST_SUITE_P(TestCompositor, DisplayRemovalContract, TestCompositorHarness);

namespace {

TEST(WaylandDisplays, DisplaysAreNamedAndPlacedByTheCompositor) {
    const Sway sway;
    WaylandSession session;
    sway.addOutput();
    ASSERT_TRUE(serveUntil([&] { return session.displays.ids().size() == 2; }));
    EXPECT_EQ(session.displays.outputName(1), "HEADLESS-1");
    EXPECT_EQ(session.displays.outputName(2), "HEADLESS-2");
    EXPECT_TRUE(session.displays.displayIsMain(1));
    EXPECT_FALSE(session.displays.displayIsMain(2));
    EXPECT_FALSE(session.displays.displayIsBuiltin(1));
    EXPECT_EQ(session.displays.displayBounds(2).x, session.displays.displayBounds(1).width);
}

TEST(WaylandDisplays, BuiltInDisplayIsTheMainDisplayWhileItIsOn) {
    TestCompositor compositor;
    compositor.addOutput("eDP-1", 1280);
    WaylandSession session;
    EXPECT_FALSE(session.displays.displayIsMain(1));
    EXPECT_TRUE(session.displays.displayIsMain(2));
    EXPECT_TRUE(session.displays.displayIsBuiltin(2));
    compositor.removeOutput("eDP-1");
    ASSERT_TRUE(serveUntil([&] { return session.displays.ids().size() == 1; }));
    EXPECT_TRUE(session.displays.displayIsMain(1));
}

TEST(WaylandDisplays, ConnectorKeepsItsIdWhenDisplaysChange) {
    TestCompositor compositor;
    compositor.addOutput("DP-2");
    WaylandSession session;
    compositor.removeOutput("DP-1");
    compositor.removeOutput("DP-2");
    ASSERT_TRUE(serveUntil([&] { return session.displays.ids().empty(); }));
    compositor.addOutput("DP-3", 0);
    compositor.addOutput("DP-2", 1280);
    ASSERT_TRUE(serveUntil([&] { return session.displays.ids().size() == 2; }));
    EXPECT_EQ(session.displays.outputName(2), "DP-2");
    EXPECT_EQ(session.displays.outputName(3), "DP-3");
}

} // namespace
} // namespace nocta
