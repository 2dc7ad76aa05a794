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

template <class Service, class... Needs>
Service& made(std::optional<Service>& service, Needs&... needs) {
    return service ? *service : service.emplace(needs...);
}

} // namespace

SharedInstances::SharedInstances(Desktop& desktop) : desktop_(desktop) {
    programInstances = this;
}

SharedInstances::~SharedInstances() {
    programInstances = nullptr;
}

const BuiltInProfiles& SharedInstances::builtInProfiles() {
    return builtInProfiles_ ? *builtInProfiles_
                            : builtInProfiles_.emplace(makeBuiltInProfiles(desktop_.uuidSource));
}

SettingsManager& SharedInstances::settingsManager() {
    return made(settingsManager_, desktop_.userDefaults);
}

DisplayService& SharedInstances::displayService() {
    return made(displayService_, desktop_.displays);
}

GammaController& SharedInstances::gammaController() {
    return made(gammaController_, displayService(), desktop_.gammaOutput);
}

BrightnessController& SharedInstances::brightnessController() {
    return made(brightnessController_, displayService(), desktop_.backlight, desktop_.keyEvents);
}

UnifiedBrightnessApplier& SharedInstances::brightnessApplier() {
    return made(brightnessApplier_, settingsManager(), gammaController(), brightnessController(),
                displayService(), desktop_.backlight);
}

GrayscaleService& SharedInstances::grayscaleService() {
    return made(grayscaleService_, gammaController(), desktop_.dynamicLibraries,
                desktop_.displayFilter, desktop_.runLoop);
}

MeetingDetectorService& SharedInstances::meetingDetectorService() {
    return made(meetingDetectorService_, desktop_.workspace, desktop_.notificationCenter,
                desktop_.runLoop);
}

BreakTimer& SharedInstances::breakTimer() {
    return made(breakTimer_, settingsManager(), meetingDetectorService(), desktop_.userDefaults,
                desktop_.uuidSource, desktop_.notificationCenter, desktop_.runLoop);
}

NotificationService& SharedInstances::notificationService() {
    return made(notificationService_, desktop_.userNotificationCenter, breakTimer());
}

LocationService& SharedInstances::locationService() {
    return made(locationService_, desktop_.locationManager, settingsManager());
}

ScheduleService& SharedInstances::scheduleService() {
    return made(scheduleService_, locationService(), desktop_.runLoop);
}

ColorTemperatureService& SharedInstances::colorTemperatureService() {
    return made(colorTemperatureService_, settingsManager(), gammaController(), scheduleService(),
                desktop_.runLoop);
}

ShortcutsManager& SharedInstances::shortcutsManager() {
    return made(shortcutsManager_, settingsManager(), brightnessApplier(), desktop_.keyEvents);
}

LaunchAtLoginService& SharedInstances::launchAtLoginService() {
    return made(launchAtLoginService_, desktop_.loginItem);
}

FeedbackService& SharedInstances::feedbackService() {
    return made(feedbackService_, desktop_.urlSession, desktop_.bundle.apiBase);
}

AppMonitorService& SharedInstances::appMonitorService() {
    return made(appMonitorService_, desktop_.workspace, desktop_.notificationCenter);
}

const BuiltInProfiles& Profile::builtInProfiles() {
    return instances().builtInProfiles();
}

SettingsManager& SettingsManager::shared() {
    return instances().settingsManager();
}

DisplayService& DisplayService::shared() {
    return instances().displayService();
}

GammaController& GammaController::shared() {
    return instances().gammaController();
}

BrightnessController& BrightnessController::shared() {
    return instances().brightnessController();
}

UnifiedBrightnessApplier& UnifiedBrightnessApplier::shared() {
    return instances().brightnessApplier();
}

GrayscaleService& GrayscaleService::shared() {
    return instances().grayscaleService();
}

MeetingDetectorService& MeetingDetectorService::shared() {
    return instances().meetingDetectorService();
}

BreakTimer& BreakTimer::shared() {
    return instances().breakTimer();
}

NotificationService& NotificationService::shared() {
    return instances().notificationService();
}

FeedbackService& FeedbackService::shared() {
    return instances().feedbackService();
}

AppMonitorService& AppMonitorService::shared() {
    return instances().appMonitorService();
}

LocationService& LocationService::shared() {
    return instances().locationService();
}

ScheduleService& ScheduleService::shared() {
    return instances().scheduleService();
}

ColorTemperatureService& ColorTemperatureService::shared() {
    return instances().colorTemperatureService();
}

LaunchAtLoginService& LaunchAtLoginService::shared() {
    return instances().launchAtLoginService();
}

ShortcutsManager& ShortcutsManager::shared() {
    return instances().shortcutsManager();
}

} // namespace nocta
