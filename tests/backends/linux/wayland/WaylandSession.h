#pragma once

#include "backends/linux/shell/QtRunLoop.h"
#include "backends/linux/wayland/WaylandConnection.h"
#include "backends/linux/wayland/WaylandDisplays.h"
#include "backends/linux/wayland/WlrGammaOutput.h"
#include "base/NotificationCenter.h"
#include "support/EventLoop.h"
#include "support/Sway.h"
#include "support/TestCompositor.h"

#include <gtest/gtest.h>

#include <vector>

namespace nocta {

/// The Wayland ports on a compositor that a test has started.
struct WaylandSession {
    QtRunLoop runLoop;
    NotificationCenter notificationCenter;
    WaylandConnection connection{runLoop};
    WaylandDisplays displays{connection, runLoop, notificationCenter};

    static Status setLevel(GammaOutput& output, DisplayId display, float level) {
        const std::vector<float> table = {0.0F, level};
        return output.setDisplayTransferByTable(display, table, table, table);
    }

    /// Runs the program until all pending requests and events are processed. A write that waits for
    /// an earlier write is sent one turn later.
    void settle() {
        for (int turn = 0; turn < 3; ++turn) {
            QCoreApplication::processEvents();
            EXPECT_TRUE(connection.synchronize());
        }
    }
};

/// Adapts a compositor as a harness for the contract suites.
template <class Compositor>
class WaylandHarness {
public:
    Displays& displays() { return session_.displays; }
    GammaOutput& gammaOutput() { return gamma_; }
    NotificationCenter& notificationCenter() { return session_.notificationCenter; }
    void plug() {
        compositor_.addOutput();
        EXPECT_TRUE(serveUntil([&] { return session_.displays.ids().size() == 2; }));
    }
    double factoryTop(DisplayId /*display*/) { return 1; }
    double top(DisplayId display) {
        session_.settle();
        const auto events = compositor_.gammaOf(session_.displays.outputName(display));
        return events.empty() || events.back().empty() ? 1 : events.back().at(255) / 65535.0;
    }

protected:
    Compositor compositor_;
    WaylandSession session_;
    WlrGammaOutput gamma_{session_.connection, session_.displays, session_.runLoop};
};

struct SwayHarness : WaylandHarness<Sway> {
    static bool canReadTables() { return Sway::canLogGamma(); }
};

struct TestCompositorHarness : WaylandHarness<TestCompositor> {
    void unplug() {
        compositor_.removeOutput();
        EXPECT_TRUE(serveUntil([&] { return session_.displays.ids().size() == 1; }));
    }
};

} // namespace nocta
