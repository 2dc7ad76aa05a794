#pragma once

#include "backends/linux/SessionFilter.h"
#include "backends/linux/x11/X11ColorMatrixFilter.h"
#include "backends/linux/x11/X11Session.h"
#include "support/TestDesktop.h"
#include "support/WhitePoint.h"

#include <memory>
#include <optional>
#include <utility>

namespace nocta {

/// The whole program on a virtual desktop, except that its displays, gamma ramps and gray filter
/// are those of a real X server.
class DesktopOnX11 : public TestDesktop {
protected:
    explicit DesktopOnX11(XServer::Kind kind = XServer::Kind::xvfb) : x(kind) {}

    X11Session x;
    LocationManager* locationManager = &desktop.location;
    UserNotificationCenter* userNotificationCenter = &desktop.notifications;

    /// Creates the ports when the program is created.
    Desktop& ports() override {
        if (!mixed_) {
            auto gray = std::make_unique<X11ColorMatrixFilter>(x.connection, x.displays,
                                                               x.notificationCenter, x.guardian);
            filter_.emplace(gray->isAvailable() ? std::move(gray) : nullptr);
            mixed_.emplace(Desktop{.bundle = desktop.bundle,
                                   .runLoop = desktop.runLoop,
                                   .notificationCenter = x.notificationCenter,
                                   .userDefaults = desktop.userDefaults,
                                   .uuidSource = desktop.uuidSource,
                                   .displays = x.displays,
                                   .gammaOutput = x.gammaOutput,
                                   .backlight = desktop.displays,
                                   .keyEvents = desktop.keyboard,
                                   .locationManager = *locationManager,
                                   .loginItem = desktop.loginItem,
                                   .dynamicLibraries = *filter_,
                                   .displayFilter = *filter_,
                                   .workspace = desktop.workspace,
                                   .userNotificationCenter = *userNotificationCenter,
                                   .urlSession = desktop.urlSession,
                                   .updater = desktop.updater,
                                   .overlayWindows = desktop.overlayWindows,
                                   .statusBar = desktop.statusBar,
                                   .popover = desktop.popover,
                                   .appWindows = desktop.appWindows,
                                   .application = desktop.application});
        }
        return *mixed_;
    }

    void TearDown() override { dropProgram(); }

    /// The last levels of the first display's ramp, 0.0–1.0, as another client reads them.
    std::array<double, 3> shownWhite() {
        x.settle();
        const auto ramp = x.client.ramp(x.client.activeCrtcs().at(0));
        return {ramp[0].back() / 65535.0, ramp[1].back() / 65535.0, ramp[2].back() / 65535.0};
    }

    void expectWhitePointOf(double kelvin) {
        const auto shown = shownWhite();
        const auto white = whitePoint(kelvin);
        for (std::size_t channel = 0; channel < 3; ++channel) {
            EXPECT_NEAR(shown[channel], white[channel], 1 / 65535.0) << channel;
        }
    }

private:
    std::optional<SessionFilter> filter_;
    std::optional<Desktop> mixed_;
};

} // namespace nocta
