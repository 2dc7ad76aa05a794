#pragma once

#include "backends/macos/Observation.h"
#include "backends/shared/WrittenTables.h"
#include "base/Timer.h"
#include "platform/GammaOutput.h"

#import <AppKit/AppKit.h>
#import <CoreGraphics/CoreGraphics.h>
#include <chrono>
#include <vector>

namespace nocta {

/// The window server restores the factory tables when the process dies. It also drops the tables
/// when the displays change and when the machine or its displays sleep, so this class resends the
/// last tables. The window server may drop them for a few more seconds after the system wakes,
/// without any notification.
class CgGammaOutput final : public GammaOutput {
public:
    explicit CgGammaOutput(RunLoop& runLoop) : runLoop_(runLoop) {}
    CgGammaOutput(const CgGammaOutput&) = delete;
    CgGammaOutput& operator=(const CgGammaOutput&) = delete;

    bool isAvailable() const override { return true; }
    Status setDisplayTransferByTable(DisplayId display, std::span<const float> red,
                                     std::span<const float> green,
                                     std::span<const float> blue) override {
        const CGError error = write(display, red, green, blue);
        if (error == kCGErrorSuccess) {
            written_.keep(display, red, green, blue);
        }
        return error;
    }
    void displayRestoreColorSyncSettings() override {
        CGDisplayRestoreColorSyncSettings();
        written_.clear();
    }

private:
    static constexpr auto settlingInterval = std::chrono::seconds(4);
    static constexpr int settlingRounds = 2;

    static CGError write(DisplayId display, std::span<const float> red,
                         std::span<const float> green, std::span<const float> blue) {
        return CGSetDisplayTransferByTable(display, static_cast<std::uint32_t>(red.size()),
                                           red.data(), green.data(), blue.data());
    }

    void sendAgain() {
        forgetGoneDisplays();
        written_.forEach(write);
    }

    void sendAfterWake() {
        sendAgain();
        settling_.start(runLoop_, settlingInterval, Repeat::yes, [this, round = 0]() mutable {
            sendAgain();
            if (++round == settlingRounds) {
                settling_.invalidate();
            }
        });
    }

    /// A sleeping display is online but not active, and must keep its tables.
    void forgetGoneDisplays() {
        std::uint32_t count = 0;
        if (CGGetOnlineDisplayList(0, nullptr, &count) != kCGErrorSuccess) {
            return;
        }
        std::vector<DisplayId> online(count);
        if (CGGetOnlineDisplayList(count, online.data(), &count) == kCGErrorSuccess) {
            online.resize(count);
            written_.keepOnly(online);
        }
    }

    RunLoop& runLoop_;
    WrittenTables written_;
    Timer settling_;
    Subscription screenParameters_ = observe(NSNotificationCenter.defaultCenter,
                                             NSApplicationDidChangeScreenParametersNotification,
                                             nil, ^(NSNotification* /*notification*/) {
                                               sendAgain();
                                             });
    Subscription didWake_ =
        observe(NSWorkspace.sharedWorkspace.notificationCenter, NSWorkspaceDidWakeNotification, nil,
                ^(NSNotification* /*notification*/) {
                  sendAfterWake();
                });
    Subscription screensDidWake_ =
        observe(NSWorkspace.sharedWorkspace.notificationCenter,
                NSWorkspaceScreensDidWakeNotification, nil, ^(NSNotification* /*notification*/) {
                  sendAfterWake();
                });
};

} // namespace nocta
