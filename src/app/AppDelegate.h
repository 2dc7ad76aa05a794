#pragma once

#include "app/SharedInstances.h"
#include "app/Windows.h"
#include "base/Deferred.h"
#include "base/Subscription.h"
#include "breaks/BreakOverlayController.h"
#include "platform/AppWindows.h"
#include "platform/Application.h"
#include "platform/Popover.h"
#include "platform/StatusBar.h"
#include "platform/Views.h"

#include <memory>
#include <optional>
#include <string>

namespace nocta {

/// Starts every service in a fixed order, owns the status item and its popover, passes changed
/// settings to the services, and restores the screen when the program ends. `NoctaApp` creates it,
/// and it exists for the lifetime of the process.
class AppDelegate final : public ApplicationDelegate {
public:
    AppDelegate(SharedInstances& instances, Views& views);
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    void applicationDidFinishLaunching() override;
    void applicationDidReopen() override;
    /// Brings the preferences window to the front, and opens it if it is closed.
    void showPreferencesWindow() override { windows_.showPreferences(); }
    void applicationWillTerminate() override;

    /// Called when the user clicks the status item.
    void togglePopover();

    /// Called when an update cycle ends. Logs the error, if any.
    static void updaterDidFinishUpdateCycle(const std::optional<std::string>& error);

private:
    void makeStatusItem();
    void makePopover();
    void startServices();
    void subscribeToSettings();
    void drawStatusItemIcon(MenuBarIcon icon);
    void showPopover();
    void showOnboardingWindow();
    void completeOnboarding();
    void leaveOnboarding();
    void startUpdater();

    Desktop& desktop_;
    Views& views_;
    std::unique_ptr<StatusItem> statusItem_; ///< null until launch
    Popover* popover_ = nullptr;             ///< null until launch
    SettingsManager& settingsManager_;
    GammaController& gammaController_;
    BrightnessController& brightnessController_;
    GrayscaleService& grayscaleService_;
    BreakTimer& breakTimer_;
    BreakOverlayController breakOverlayController_;
    ColorTemperatureService& colorTemperatureService_;
    DisplayService& displayService_;
    LocationService& locationService_;
    MeetingDetectorService& meetingDetectorService_;
    NotificationService& notificationService_;
    ScheduleService& scheduleService_;
    ShortcutsManager& shortcutsManager_;
    LaunchAtLoginService& launchAtLoginService_;
    UnifiedBrightnessApplier& brightnessApplier_;
    AppMonitorService& appMonitorService_;
    std::unique_ptr<AppWindow> onboardingWindow_; ///< null unless it is open
    Windows windows_;
    bool servicesStarted_ = false;
    Deferred closeOnboarding_;
    Cancellables cancellables_;
};

} // namespace nocta
