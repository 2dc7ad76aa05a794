#pragma once

#include "app/AppDelegate.h"
#include "app/SharedInstances.h"
#include "backends/virtual/VirtualDesktop.h"
#include "backends/virtual/VirtualViews.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace nocta {

/// The whole program on a virtual desktop. A test prepares the desktop, launches the program, acts
/// like a user, and checks what the desktop received.
class TestDesktop : public ::testing::Test {
protected:
    static constexpr DisplayId builtIn = 1;
    static constexpr DisplayId external = 2;
    static constexpr DisplayId secondExternal = 3;

    void plugBuiltIn() {
        desktop.displays.plug({.id = builtIn, .isBuiltIn = true, .isMain = true});
    }
    void plugExternal(DisplayId id = external) {
        desktop.displays.plug({.id = id, .mode = DisplayMode{2560, 1440}});
    }

    SharedInstances& instances() { return instances_ ? *instances_ : instances_.emplace(ports()); }
    SettingsManager& settings() { return instances().settingsManager(); }
    DisplayService& displayService() { return instances().displayService(); }
    GammaController& gamma() { return instances().gammaController(); }
    BrightnessController& brightness() { return instances().brightnessController(); }
    UnifiedBrightnessApplier& applier() { return instances().brightnessApplier(); }
    GrayscaleService& grayscale() { return instances().grayscaleService(); }
    LocationService& location() { return instances().locationService(); }
    ScheduleService& schedule() { return instances().scheduleService(); }
    ColorTemperatureService& colorTemperature() { return instances().colorTemperatureService(); }
    MeetingDetectorService& meetingDetector() { return instances().meetingDetectorService(); }
    BreakTimer& breakTimer() { return instances().breakTimer(); }
    LaunchAtLoginService& launchAtLogin() { return instances().launchAtLoginService(); }
    FeedbackService& feedback() { return instances().feedbackService(); }
    NotificationService& notifications() { return instances().notificationService(); }
    ShortcutsManager& shortcuts() { return instances().shortcutsManager(); }
    AppMonitorService& appMonitor() { return instances().appMonitorService(); }

    AppDelegate& delegate() {
        return delegate_ ? *delegate_ : delegate_.emplace(instances(), views);
    }
    void launch() { desktop.application.launch(delegate()); }
    void quit() { desktop.application.terminate(); }

    /// Simulates a restart of the process; the defaults store and the displays are kept.
    void restart() {
        quit();
        dropProgram();
        desktop.trace.clear();
        launch();
    }

    /// Destroys the program. Fixtures that replace ports call this before they destroy those ports.
    void dropProgram() {
        delegate_.reset();
        instances_.reset();
    }

    /// The dimming that a display shows, read from the red table, which 6500 K does not tint.
    float shownDimming(DisplayId id) {
        const auto& red = desktop.displays.display(id).red;
        return red.empty() ? 0.0F : 1.0F - red.back();
    }
    float backlight() { return desktop.displays.display(builtIn).backlight; }

    std::vector<std::string> calls(std::string_view prefix = "") {
        return desktop.trace.calls(prefix);
    }

    VirtualDesktop desktop;
    VirtualViews views;

    /// The program's ports: the virtual desktop, unless a fixture replaces some with real ones.
    virtual Desktop& ports() { return desktop.ports; }

private:
    std::optional<SharedInstances> instances_;
    std::optional<AppDelegate> delegate_;
};

} // namespace nocta
