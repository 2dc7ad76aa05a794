#include "backends/virtual/VirtualDesktop.h"

#include "backends/virtual/VirtualViews.h"
#include "contracts/BacklightContract.h"
#include "contracts/DefaultsStoreContract.h"
#include "contracts/DisplayFilterContract.h"
#include "contracts/DisplayRemovalContract.h"
#include "contracts/DisplaysContract.h"
#include "contracts/EarlierTypingContract.h"
#include "contracts/GammaOutputContract.h"
#include "contracts/KeyEventsContract.h"
#include "contracts/LocationManagerContract.h"
#include "contracts/LoginItemContract.h"
#include "contracts/OverlayWindowsContract.h"
#include "contracts/UrlSessionContract.h"
#include "contracts/UserNotificationCenterContract.h"
#include "contracts/WorkspaceContract.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nocta {

struct VirtualDesktopHarness {
    static constexpr DisplayId builtIn = 1;
    static constexpr DisplayId external = 2;

    VirtualDesktop desktop;

    VirtualDesktopHarness() {
        desktop.displays.plug({.id = builtIn, .isBuiltIn = true, .isMain = true});
    }

    DefaultsStore& store() { return desktop.userDefaults; }
    Displays& displays() { return desktop.displays; }
    GammaOutput& gammaOutput() { return desktop.displays; }
    Backlight& backlight() { return desktop.displays; }
    DisplayFilter& displayFilter() { return desktop.filter; }
    DynamicLibraries& dynamicLibraries() { return desktop.filter; }
    bool isGray() const { return desktop.filter.isOn && desktop.filter.type == 1; }
    LoginItem& loginItem() { return desktop.loginItem; }
    KeyEvents& keyEvents() { return desktop.keyboard; }
    NotificationCenter& notificationCenter() { return desktop.notificationCenter; }

    void plug() { desktop.displays.plug({.id = external}); }
    void unplug() { desktop.displays.unplug(external); }
    double top(DisplayId id) {
        const auto& red = desktop.displays.display(id).red;
        return red.empty() ? 1.0 : double{red.back()};
    }
    static double factoryTop(DisplayId /*id*/) { return 1.0; }
    void fail() {
        desktop.displays.backlightReadFails = true;
        desktop.displays.backlightWriteFails = true;
    }
    void pressBrightnessUp() { desktop.keyboard.pressBrightnessUp(); }
    void pressBrightnessDown() { desktop.keyboard.pressBrightnessDown(); }
    void switchOff() { desktop.loginItem.present = LoginItem::Status::notRegistered; }
    void refuse() { desktop.loginItem.error = "Operation not permitted"; }
};

INSTANTIATE_TYPED_TEST_SUITE_P(Virtual, DefaultsStoreContract, VirtualDesktopHarness);
INSTANTIATE_TYPED_TEST_SUITE_P(Virtual, DisplaysContract, VirtualDesktopHarness);
INSTANTIATE_TYPED_TEST_SUITE_P(Virtual, DisplayRemovalContract, VirtualDesktopHarness);
INSTANTIATE_TYPED_TEST_SUITE_P(Virtual, GammaOutputContract, VirtualDesktopHarness);
INSTANTIATE_TYPED_TEST_SUITE_P(Virtual, BacklightContract, VirtualDesktopHarness);
INSTANTIATE_TYPED_TEST_SUITE_P(Virtual, DisplayFilterContract, VirtualDesktopHarness);
INSTANTIATE_TYPED_TEST_SUITE_P(Virtual, KeyEventsContract, VirtualDesktopHarness);
INSTANTIATE_TYPED_TEST_SUITE_P(Virtual, LoginItemContract, VirtualDesktopHarness);

using namespace std::chrono_literals;

struct VirtualUrlSessionHarness {
    VirtualDesktop desktop;
    UrlResponse response;

    UrlSession& urlSession() { return desktop.urlSession; }
    static UrlRequest request() {
        return {.url = "https://example.com/",
                .method = "GET",
                .headers = {},
                .body = {},
                .timeout = 20s};
    }
    void answer(int status, const std::string& /*body*/) { response = {.statusCode = status}; }
    void breakConnections() { response = {.error = "The connection was lost"}; }
    bool runUntil(const std::function<bool()>& condition) {
        while (desktop.urlSession.waiting() != nullptr) {
            desktop.urlSession.answer(response);
        }
        return condition();
    }
};

INSTANTIATE_TYPED_TEST_SUITE_P(Virtual, UrlSessionContract, VirtualUrlSessionHarness);

struct VirtualOverlayWindowsHarness {
    VirtualDesktop desktop;
    VirtualViews views;

    VirtualOverlayWindowsHarness() { desktop.displays.plug({.id = 1}); }

    OverlayWindows& overlayWindows() { return desktop.overlayWindows; }
    std::unique_ptr<View> makeContent() { return views.makePreferencesView(); }
    void plug() { desktop.displays.plug({.id = 2, .bounds = {1920, 0, 1280, 1024}}); }
    void unplug() { desktop.displays.unplug(2); }
    std::vector<Rect> frames() const {
        std::vector<Rect> frames;
        std::ranges::transform(desktop.displays.all(), std::back_inserter(frames),
                               &VirtualDisplays::Display::bounds);
        return frames;
    }
    SeenOverlays seen() const {
        SeenOverlays seen;
        for (const auto& window : desktop.overlayWindows.windows()) {
            if (window.isOnScreen) {
                seen.emplace_back(window.screen.frame, window.alpha);
            }
        }
        return seen;
    }
    void letPass(Duration duration) { desktop.runLoop.advance(duration); }
    bool press() {
        const auto reachesAWindow = desktop.overlayWindows.press(spaceKeyCode);
        return reachesAWindow && desktop.overlayWindows.keyScreen.has_value();
    }
};

INSTANTIATE_TYPED_TEST_SUITE_P(Virtual, OverlayWindowsContract, VirtualOverlayWindowsHarness);
INSTANTIATE_TYPED_TEST_SUITE_P(Virtual, EarlierTypingContract, VirtualOverlayWindowsHarness);

struct VirtualLocationHarness {
    VirtualDesktop desktop;

    LocationManager& locationManager() { return desktop.location; }
    void agree() { answer(AuthorizationStatus::authorized); }
    void refuse() { answer(AuthorizationStatus::denied); }
    void move(Location location) { desktop.location.send(location); }
    void settle() { desktop.runLoop.advance(0s); }

private:
    void answer(AuthorizationStatus status) {
        EXPECT_TRUE(desktop.location.isAsking);
        desktop.location.answer(status);
    }
};

INSTANTIATE_TYPED_TEST_SUITE_P(Virtual, LocationManagerContract, VirtualLocationHarness);

struct VirtualWorkspaceHarness {
    VirtualDesktop desktop;
    const RunningApplication editor{"com.example.editor", "Editor"};
    const RunningApplication player{"com.example.player", "Player"};
    const WindowSizes windowSizes{{200, 100}, {400, 300}};

    VirtualWorkspaceHarness() { desktop.displays.plug({.id = 1}); }

    Workspace& workspace() { return desktop.workspace; }
    Rect displayFrame() { return desktop.displays.display(1).bounds; }
    void bringToFront(const std::optional<RunningApplication>& application) {
        desktop.workspace.bringToFront(application);
    }
    void setWindows(const std::vector<std::pair<double, double>>& sizes) {
        desktop.workspace.windows.emplace();
        for (const auto& [width, height] : sizes) {
            desktop.workspace.windows->push_back({width, height});
        }
    }
    void setReducesMotion(bool isOn) { desktop.workspace.reducesMotion = isOn; }
};

INSTANTIATE_TYPED_TEST_SUITE_P(Virtual, WorkspaceContract, VirtualWorkspaceHarness);

struct VirtualNotificationsHarness {
    VirtualDesktop desktop;

    UserNotificationCenter& center() { return desktop.notifications; }
    std::vector<std::vector<std::string>> shown() const {
        std::vector<std::vector<std::string>> shown;
        for (const auto& [notification, presentation, isAnswered] : desktop.notifications.shown) {
            auto& texts =
                shown.emplace_back(std::vector<std::string>{notification.title, notification.body});
            for (const auto& category : desktop.notifications.categories) {
                if (category.identifier == notification.categoryIdentifier) {
                    std::ranges::transform(category.actions, std::back_inserter(texts),
                                           &UserNotificationAction::title);
                }
            }
        }
        return shown;
    }
    void press(std::size_t index, const std::string& actionIdentifier) {
        desktop.notifications.choose(index, actionIdentifier);
    }
    void deny() { desktop.notifications.isGranted = false; }
    void settle() { desktop.runLoop.advance(0s); }
};

INSTANTIATE_TYPED_TEST_SUITE_P(Virtual, UserNotificationCenterContract,
                               VirtualNotificationsHarness);

namespace {

TEST(VirtualDesktop, TraceRecordsEveryCallInOrderWithItsSimulatedTime) {
    VirtualDesktop desktop;
    desktop.displays.plug({.id = 7, .isBuiltIn = true});
    const auto start = desktop.runLoop.wallNow();
    desktop.ports.backlight.setBrightness(7, 0.5F);
    desktop.runLoop.advance(1s);
    desktop.ports.userDefaults.synchronize();
    ASSERT_EQ(desktop.trace.calls(),
              (std::vector<std::string>{"setBrightness 7 0.5", "synchronize"}));
    EXPECT_EQ(desktop.trace.entries()[0].time, start);
    EXPECT_EQ(desktop.trace.entries()[1].time, start + 1s);
}

TEST(VirtualDesktop, FailingGammaWriteDoesNotChangeTheTables) {
    VirtualDesktop desktop;
    desktop.displays.plug({.id = 7, .gammaFails = true});
    const std::array<float, 256> table{};
    EXPECT_NE(desktop.ports.gammaOutput.setDisplayTransferByTable(7, table, table, table),
              statusSuccess);
    EXPECT_TRUE(desktop.displays.display(7).red.empty());
}

TEST(VirtualDesktop, FailingDisplayListIsEmpty) {
    VirtualDesktop desktop;
    desktop.displays.plug({.id = 7});
    desktop.displays.listFails = true;
    std::uint32_t count = 5;
    EXPECT_NE(desktop.ports.displays.getActiveDisplayList({}, count), statusSuccess);
    EXPECT_EQ(count, 0U);
}

TEST(VirtualDesktop, RejectedTapAndMonitorAreEmptySubscriptions) {
    VirtualDesktop desktop;
    desktop.keyboard.tapIsRefused = true;
    desktop.keyboard.monitorIsRefused = true;
    EXPECT_FALSE(desktop.ports.keyEvents.createKeyDownTap([](const KeyDownEvent&) {}));
    EXPECT_FALSE(desktop.ports.keyEvents.addGlobalMonitorForSystemDefinedEvents(
        [](const SystemDefinedEvent&) {}));
}

TEST(VirtualDesktop, RandomIdentifiersAreReproducible) {
    VirtualDesktop first;
    VirtualDesktop second;
    const auto uuid = first.ports.uuidSource.makeUuid();
    EXPECT_EQ(uuid, second.ports.uuidSource.makeUuid());
    EXPECT_NE(uuid, first.ports.uuidSource.makeUuid());
}

} // namespace
} // namespace nocta
