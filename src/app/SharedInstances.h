#pragma once

#include "base/Lazy.h"
#include "breaks/BreakTimer.h"
#include "breaks/MeetingDetectorService.h"
#include "color/ColorTemperatureService.h"
#include "color/LocationService.h"
#include "color/ScheduleService.h"
#include "display/BrightnessController.h"
#include "display/DisplayService.h"
#include "display/GammaController.h"
#include "display/UnifiedBrightnessApplier.h"
#include "grayscale/GrayscaleService.h"
#include "platform/Desktop.h"
#include "settings/Profile.h"
#include "settings/SettingsManager.h"
#include "system/AppMonitorService.h"
#include "system/FeedbackService.h"
#include "system/LaunchAtLoginService.h"
#include "system/NotificationService.h"
#include "system/ShortcutsManager.h"

namespace nocta {

/// Holds one instance of each service for one desktop. Each instance is created on first access.
/// `main` creates this object after the desktop and destroys it before the desktop. While it
/// exists, the `shared()` functions of the services return its instances. Tests may create any
/// number of these objects, but only one at a time.
class SharedInstances {
public:
    explicit SharedInstances(Desktop& desktop);
    SharedInstances(const SharedInstances&) = delete;
    SharedInstances& operator=(const SharedInstances&) = delete;
    ~SharedInstances();

    Desktop& desktop() { return desktop_; }

private:
    Desktop& desktop_;

public:
    // In order of dependency: later members may refer to earlier members and are destroyed first.
    Lazy<BuiltInProfiles> builtInProfiles{
        [this](auto& made) { made.emplace(makeBuiltInProfiles(desktop_.uuidSource)); }};
    Lazy<SettingsManager> settingsManager{
        [this](auto& made) { made.emplace(desktop_.userDefaults); }};
    Lazy<DisplayService> displayService{[this](auto& made) { made.emplace(desktop_.displays); }};
    Lazy<GammaController> gammaController{
        [this](auto& made) { made.emplace(displayService(), desktop_.gammaOutput); }};
    Lazy<BrightnessController> brightnessController{[this](auto& made) {
        made.emplace(displayService(), desktop_.backlight, desktop_.keyEvents);
    }};
    Lazy<UnifiedBrightnessApplier> brightnessApplier{[this](auto& made) {
        made.emplace(settingsManager(), gammaController(), brightnessController(), displayService(),
                     desktop_.backlight);
    }};
    Lazy<GrayscaleService> grayscaleService{[this](auto& made) {
        made.emplace(gammaController(), desktop_.dynamicLibraries, desktop_.displayFilter,
                     desktop_.runLoop);
    }};
    Lazy<MeetingDetectorService> meetingDetectorService{[this](auto& made) {
        made.emplace(desktop_.workspace, desktop_.notificationCenter, desktop_.runLoop);
    }};
    Lazy<BreakTimer> breakTimer{[this](auto& made) {
        made.emplace(settingsManager(), meetingDetectorService(), desktop_.userDefaults,
                     desktop_.uuidSource, desktop_.notificationCenter, desktop_.runLoop);
    }};
    Lazy<NotificationService> notificationService{
        [this](auto& made) { made.emplace(desktop_.userNotificationCenter, breakTimer()); }};
    Lazy<LocationService> locationService{
        [this](auto& made) { made.emplace(desktop_.locationManager, settingsManager()); }};
    Lazy<ScheduleService> scheduleService{
        [this](auto& made) { made.emplace(locationService(), desktop_.runLoop); }};
    Lazy<ColorTemperatureService> colorTemperatureService{[this](auto& made) {
        made.emplace(settingsManager(), gammaController(), scheduleService(), desktop_.runLoop);
    }};
    Lazy<ShortcutsManager> shortcutsManager{[this](auto& made) {
        made.emplace(settingsManager(), brightnessApplier(), desktop_.keyEvents);
    }};
    Lazy<LaunchAtLoginService> launchAtLoginService{
        [this](auto& made) { made.emplace(desktop_.loginItem); }};
    Lazy<FeedbackService> feedbackService{
        [this](auto& made) { made.emplace(desktop_.urlSession, desktop_.bundle.apiBase); }};
    Lazy<AppMonitorService> appMonitorService{
        [this](auto& made) { made.emplace(desktop_.workspace, desktop_.notificationCenter); }};
};

} // namespace nocta
