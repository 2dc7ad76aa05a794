#include "app/SharedInstances.h"

#include <cstdlib>
#include <iostream>

namespace nocta {

namespace {

SharedInstances* programInstances = nullptr;

SharedInstances& instances() {
    if (programInstances == nullptr) {
        std::cerr << "nocta: a shared instance was used before the program began or after it ended"
                  << std::endl;
        std::abort();
    }
    return *programInstances;
}

} // namespace

SharedInstances::SharedInstances(Desktop& desktop) : desktop_(desktop) {
    programInstances = this;
}

SharedInstances::~SharedInstances() {
    programInstances = nullptr;
}

// clang-format off
const BuiltInProfiles& Profile::builtInProfiles() { return instances().builtInProfiles(); }
SettingsManager& SettingsManager::shared() { return instances().settingsManager(); }
DisplayService& DisplayService::shared() { return instances().displayService(); }
GammaController& GammaController::shared() { return instances().gammaController(); }
BrightnessController& BrightnessController::shared() { return instances().brightnessController(); }
UnifiedBrightnessApplier& UnifiedBrightnessApplier::shared() { return instances().brightnessApplier(); }
GrayscaleService& GrayscaleService::shared() { return instances().grayscaleService(); }
MeetingDetectorService& MeetingDetectorService::shared() { return instances().meetingDetectorService(); }
BreakTimer& BreakTimer::shared() { return instances().breakTimer(); }
NotificationService& NotificationService::shared() { return instances().notificationService(); }
LocationService& LocationService::shared() { return instances().locationService(); }
ScheduleService& ScheduleService::shared() { return instances().scheduleService(); }
ColorTemperatureService& ColorTemperatureService::shared() { return instances().colorTemperatureService(); }
ShortcutsManager& ShortcutsManager::shared() { return instances().shortcutsManager(); }
LaunchAtLoginService& LaunchAtLoginService::shared() { return instances().launchAtLoginService(); }
FeedbackService& FeedbackService::shared() { return instances().feedbackService(); }
AppMonitorService& AppMonitorService::shared() { return instances().appMonitorService(); }
// clang-format on

} // namespace nocta
