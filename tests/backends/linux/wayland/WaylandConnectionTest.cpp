#include "backends/linux/wayland/WaylandSession.h"

#include <cstdlib>
#include <thread>

namespace nocta {
namespace {

TEST(WaylandConnection, CompositorExitIsReportedOnce) {
    Sway sway;
    WaylandSession session;
    WlrGammaOutput gamma(session.connection, session.displays, session.runLoop);
    int losses = 0;
    session.connection.onLost = [&] { ++losses; };
    sway.kill();
    EXPECT_TRUE(serveUntil([&] { return losses > 0; }));
    WaylandSession::setLevel(gamma, 1, 0.5F);
    gamma.displayRestoreColorSyncSettings();
    EXPECT_FALSE(session.connection.synchronize());
    QCoreApplication::processEvents();
    EXPECT_EQ(losses, 1);
}

TEST(WaylandConnection, MissingCompositorIsReportedOnce) {
    const TemporaryFolder folder;
    setenv("XDG_RUNTIME_DIR", folder.path().c_str(), 1);
    setenv("WAYLAND_DISPLAY", "none", 1);
    WaylandSession session;
    const WlrGammaOutput gamma(session.connection, session.displays, session.runLoop);
    int losses = 0;
    session.connection.onLost = [&] { ++losses; };
    EXPECT_TRUE(serveUntil([&] { return losses > 0; }));
    session.connection.finishTurn();
    QCoreApplication::processEvents();
    EXPECT_EQ(losses, 1);
    EXPECT_TRUE(session.displays.ids().empty());
    EXPECT_FALSE(gamma.isAvailable());
}

TEST(WaylandConnection, UnresponsiveCompositorDoesNotBlock) {
    TestCompositor compositor;
    WaylandSession session;
    compositor.pause();
    EXPECT_FALSE(session.connection.synchronize());
    compositor.resume();
}

TEST(WaylandConnection, StartWaitsForABusyCompositor) {
    TestCompositor compositor;
    compositor.pause();
    std::thread busy([&] {
        std::this_thread::sleep_for(2 * WaylandConnection::maxWait);
        compositor.resume();
    });
    const WaylandSession session;
    busy.join();
    EXPECT_EQ(session.displays.ids().size(), 1U);
}

} // namespace
} // namespace nocta
