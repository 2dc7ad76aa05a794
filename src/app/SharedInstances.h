#pragma once

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

#include <optional>

namespace nocta {

/// One instance of every service over one desktop, each made on first access from those that it
/// needs. `main` makes it after the desktop and destroys it before; meanwhile it is what every
/// service's `shared()` refers to. Tests make as many as they like, one after the other.
class SharedInstances {
public:
    explicit SharedInstances(Desktop& desktop);
    SharedInstances(const SharedInstances&) = delete;
    SharedInstances& operator=(const SharedInstances&) = delete;
    ~SharedInstances();

    Desktop& desktop() { return desktop_; }

    const BuiltInProfiles& builtInProfiles();
    SettingsManager& settingsManager();
    DisplayService& displayService();
    GammaController& gammaController();
    BrightnessController& brightnessController();
    UnifiedBrightnessApplier& brightnessApplier();
    GrayscaleService& grayscaleService();
    MeetingDetectorService& meetingDetectorService();
    BreakTimer& breakTimer();
    NotificationService& notificationService();
    LocationService& locationService();
    ScheduleService& scheduleService();
    ColorTemperatureService& colorTemperatureService();
    ShortcutsManager& shortcutsManager();
    LaunchAtLoginService& launchAtLoginService();
    FeedbackService& feedbackService();
    AppMonitorService& appMonitorService();

private:
    Desktop& desktop_;

    // In order of need: what comes later may refer to what comes earlier and goes first.
    std::optional<BuiltInProfiles> builtInProfiles_;
    std::optional<SettingsManager> settingsManager_;
    std::optional<DisplayService> displayService_;
    std::optional<GammaController> gammaController_;
    std::optional<BrightnessController> brightnessController_;
    std::optional<UnifiedBrightnessApplier> brightnessApplier_;
    std::optional<GrayscaleService> grayscaleService_;
    std::optional<MeetingDetectorService> meetingDetectorService_;
    std::optional<BreakTimer> breakTimer_;
    std::optional<NotificationService> notificationService_;
    std::optional<LocationService> locationService_;
    std::optional<ScheduleService> scheduleService_;
    std::optional<ColorTemperatureService> colorTemperatureService_;
    std::optional<ShortcutsManager> shortcutsManager_;
    std::optional<LaunchAtLoginService> launchAtLoginService_;
    std::optional<FeedbackService> feedbackService_;
    std::optional<AppMonitorService> appMonitorService_;
};

} // namespace nocta
