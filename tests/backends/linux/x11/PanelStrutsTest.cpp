#include "backends/linux/x11/PanelStruts.h"

#include "backends/linux/x11/X11Session.h"
#include "support/XApplication.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace nocta {
namespace {

/// Panels on the server's desktop of 1280 × 800 pixels. The tests divide it into screens.
class PanelStrutsTest : public ::testing::Test {
protected:
    X11Session x{XServer::Kind::xvfb};
    XApplication panels{"panel", "Panel"};
    std::vector<std::uint32_t> windows;

    const Rect whole{0, 0, 1280, 800};
    const Rect leftHalf{0, 0, 640, 800};
    const Rect rightHalf{640, 0, 640, 800};

    void openPanel(const std::vector<std::uint32_t>& strut) {
        windows.push_back(panels.open());
        panels.setNumbers(windows.back(), "_NET_WM_STRUT_PARTIAL", strut, "CARDINAL");
        panels.setNumbers(panels.root(), "_NET_CLIENT_LIST", windows, "WINDOW");
    }
    Rect space(const Rect& screen) { return withoutPanels(x.connection, screen); }
};

TEST_F(PanelStrutsTest, WithoutPanelsTheWholeScreenIsFree) {
    EXPECT_EQ(space(whole), whole);
    windows.push_back(panels.open()); // an ordinary window
    panels.setNumbers(panels.root(), "_NET_CLIENT_LIST", windows, "WINDOW");
    EXPECT_EQ(space(whole), whole);
}

TEST_F(PanelStrutsTest, PanelAtEachEdgeIsLeftOut) {
    openPanel({30, 0, 0, 0, 0, 799, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(space(whole), (Rect{30, 0, 1250, 800}));
    openPanel({0, 40, 0, 0, 0, 0, 0, 799, 0, 0, 0, 0});
    EXPECT_EQ(space(whole), (Rect{30, 0, 1210, 800}));
    openPanel({0, 0, 24, 0, 0, 0, 0, 0, 0, 1279, 0, 0});
    EXPECT_EQ(space(whole), (Rect{30, 24, 1210, 776}));
    openPanel({0, 0, 0, 50, 0, 0, 0, 0, 0, 0, 0, 1279});
    EXPECT_EQ(space(whole), (Rect{30, 24, 1210, 726}));
    openPanel({10, 10, 10, 10, 0, 799, 0, 799, 0, 1279, 0, 1279});
    EXPECT_EQ(space(whole), (Rect{30, 24, 1210, 726})) << "the larger panel should count";
}

TEST_F(PanelStrutsTest, PanelCountsOnlyOnItsScreen) {
    openPanel({0, 0, 24, 0, 0, 0, 0, 0, 640, 1279, 0, 0});
    EXPECT_EQ(space(leftHalf), leftHalf);
    EXPECT_EQ(space(rightHalf), (Rect{640, 24, 640, 776}));
}

TEST_F(PanelStrutsTest, EdgesAreThoseOfTheDesktop) {
    const Rect lower{640, 200, 640, 600};
    openPanel({0, 0, 230, 0, 0, 0, 0, 0, 640, 1279, 0, 0});
    EXPECT_EQ(space(lower), (Rect{640, 230, 640, 570}))
        << "the strut should begin at the edge of the desktop, above the screen";
}

TEST_F(PanelStrutsTest, PanelBetweenTwoScreensCountsOnlyOnItsOwn) {
    openPanel({680, 0, 0, 0, 0, 799, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(space(leftHalf), leftHalf);
    EXPECT_EQ(space(rightHalf), (Rect{680, 0, 600, 800}));
}

TEST_F(PanelStrutsTest, InvalidStrutsAreIgnored) {
    constexpr auto huge = UINT32_MAX;
    openPanel({huge, huge, huge, huge, 0, huge, 0, huge, 0, huge, 0, huge});
    openPanel({300, 0, 0, 0, 700, 100, 0, 0, 0, 0, 0, 0}); // ends before it starts
    openPanel({30, 0, 0});
    EXPECT_EQ(space(whole), whole);
    windows.push_back(12345); // no window
    openPanel({30, 0, 0, 0, 0, 799, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(space(whole), (Rect{30, 0, 1250, 800}));
    openPanel({0, 1000, 0, 0, 0, 0, 0, 799, 0, 0, 0, 0}); // together with the last one, too much
    EXPECT_EQ(space(whole), (Rect{30, 0, 1250, 800}));
}

} // namespace
} // namespace nocta
