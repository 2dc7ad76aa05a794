#include "app/SharedInstances.h"

#include "backends/virtual/VirtualDesktop.h"

#include <gtest/gtest.h>

namespace nocta {
namespace {

TEST(SharedInstancesTest, SharedReturnsTheInstanceOfTheProgram) {
    VirtualDesktop desktop;
    SharedInstances instances(desktop.ports);
    EXPECT_EQ(&SettingsManager::shared(), &instances.settingsManager());
    EXPECT_EQ(&DisplayService::shared(), &instances.displayService());
    EXPECT_EQ(&GammaController::shared(), &instances.gammaController());
    EXPECT_EQ(&BrightnessController::shared(), &instances.brightnessController());
    EXPECT_EQ(&UnifiedBrightnessApplier::shared(), &instances.brightnessApplier());
    EXPECT_EQ(&GrayscaleService::shared(), &instances.grayscaleService());
    EXPECT_EQ(&LocationService::shared(), &instances.locationService());
    EXPECT_EQ(&ScheduleService::shared(), &instances.scheduleService());
    EXPECT_EQ(&ColorTemperatureService::shared(), &instances.colorTemperatureService());
    EXPECT_EQ(&ShortcutsManager::shared(), &instances.shortcutsManager());
    EXPECT_EQ(&MeetingDetectorService::shared(), &instances.meetingDetectorService());
    EXPECT_EQ(&BreakTimer::shared(), &instances.breakTimer());
    EXPECT_EQ(&NotificationService::shared(), &instances.notificationService());
    EXPECT_EQ(&LaunchAtLoginService::shared(), &instances.launchAtLoginService());
    EXPECT_EQ(&FeedbackService::shared(), &instances.feedbackService());
    EXPECT_EQ(&AppMonitorService::shared(), &instances.appMonitorService());
    EXPECT_EQ(&Profile::builtInProfiles(), &instances.builtInProfiles());
}

TEST(SharedInstancesDeathTest, SharedWithoutAProgramStopsWithAMessage) {
    EXPECT_DEATH(SettingsManager::shared(), "shared instance was used before");
}

} // namespace
} // namespace nocta
