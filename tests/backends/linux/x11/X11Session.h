#pragma once

#include "backends/linux/shell/QtRunLoop.h"
#include "backends/linux/x11/X11Connection.h"
#include "backends/linux/x11/X11Displays.h"
#include "backends/linux/x11/X11GammaOutput.h"
#include "backends/linux/x11/X11KeyEvents.h"
#include "base/NotificationCenter.h"
#include "support/EventLoop.h"
#include "support/XClient.h"
#include "support/XServer.h"

#include <gtest/gtest.h>

#include <array>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace nocta {

/// The X11 ports on a private server, and another client that observes the server.
struct X11Session {
    explicit X11Session(XServer::Kind kind, const std::vector<std::string>& options = {},
                        const std::vector<std::string>& outputNames = {})
        : server(kind, options, outputNames) {}

    XServer server;
    XClient client;
    QtRunLoop runLoop;
    NotificationCenter notificationCenter;
    X11Connection connection{runLoop};
    X11Displays displays{connection, runLoop, notificationCenter};
    Guardian guardian{connection, runLoop};
    X11GammaOutput gammaOutput{connection, displays, guardian};

    std::vector<DisplayId> list() {
        std::array<DisplayId, 16> ids{};
        std::uint32_t count = 0;
        displays.getActiveDisplayList(ids, count);
        return {ids.begin(), ids.begin() + count};
    }
    /// Sets the tables, and returns once the server has processed all requests.
    Status set(DisplayId id, const std::array<std::vector<float>, 3>& tables) {
        const auto status =
            gammaOutput.setDisplayTransferByTable(id, tables[0], tables[1], tables[2]);
        settle();
        return status;
    }
    /// Waits until the guardian is ready and the writes that waited for it are done.
    void settle() {
        EXPECT_TRUE(serveUntil([this] { return !guardian.isStarting(); }));
        connection.synchronize();
    }
    /// Linear tables from 0 to the three tops.
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

/// Adapts `X11Session` as a harness for the contract suites.
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
        settle();
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
        connection.synchronize(); // the program has to select its events before the key press
        client.press(symbol);
        EXPECT_TRUE(serveUntil([&] { return heard; }));
    }
};

} // namespace nocta
