#include "settings/SettingsManager.h"

#include <string>

namespace nocta {

namespace {

constexpr double defaultUnifiedBrightness = 0.75;
constexpr double defaultWarmthLevel = 0.5;
constexpr bool defaultGrayscaleEnabled = false;
constexpr bool defaultBreakTimerEnabled = true;
constexpr std::int64_t defaultBreakIntervalMinutes = 20;
constexpr std::int64_t defaultBreakDurationSeconds = 20;
constexpr bool defaultSuspendDuringMeetings = true;
constexpr std::int64_t defaultColorTemperatureDay = 6500;
constexpr std::int64_t defaultColorTemperatureNight = 2700;
constexpr bool defaultAutoWarmthEnabled = true;
constexpr bool defaultLocationEnabled = false;
constexpr bool defaultLaunchAtLogin = false;
constexpr bool defaultIsFirstLaunch = true;
constexpr bool defaultAllowFullBlack = false;
constexpr MenuBarIcon defaultMenuBarIcon = MenuBarIcon::eye;

constexpr double coolBelow = 0.33;
constexpr double neutralBelow = 0.66;

DefaultsStore& withRegisteredDefaults(DefaultsStore& store) {
    store.registerDefaults({
        {"unifiedBrightness", defaultUnifiedBrightness},
        {"warmthLevel", defaultWarmthLevel},
        {"grayscaleEnabled", defaultGrayscaleEnabled},
        {"breakTimerEnabled", defaultBreakTimerEnabled},
        {"breakIntervalMinutes", defaultBreakIntervalMinutes},
        {"breakDurationSeconds", defaultBreakDurationSeconds},
        {"suspendDuringMeetings", defaultSuspendDuringMeetings},
        {"colorTemperatureDay", defaultColorTemperatureDay},
        {"colorTemperatureNight", defaultColorTemperatureNight},
        {"autoWarmthEnabled", defaultAutoWarmthEnabled},
        {"locationEnabled", defaultLocationEnabled},
        {"launchAtLogin", defaultLaunchAtLogin},
        {"isFirstLaunch", defaultIsFirstLaunch},
        {"allowFullBlack", defaultAllowFullBlack},
        {"menuBarIcon", std::string(rawValue(defaultMenuBarIcon))},
    });
    return store;
}

} // namespace

SettingsManager::SettingsManager(DefaultsStore& userDefaults)
    : userDefaults_(withRegisteredDefaults(userDefaults)),
      unifiedBrightness(userDefaults_, "unifiedBrightness"),
      warmthLevel(userDefaults_, "warmthLevel"),
      grayscaleEnabled(userDefaults_, "grayscaleEnabled"),
      breakTimerEnabled(userDefaults_, "breakTimerEnabled"),
      breakIntervalMinutes(userDefaults_, "breakIntervalMinutes"),
      breakDurationSeconds(userDefaults_, "breakDurationSeconds"),
      suspendDuringMeetings(userDefaults_, "suspendDuringMeetings"),
      colorTemperatureDay(userDefaults_, "colorTemperatureDay"),
      colorTemperatureNight(userDefaults_, "colorTemperatureNight"),
      autoWarmthEnabled(userDefaults_, "autoWarmthEnabled"),
      locationEnabled(userDefaults_, "locationEnabled"),
      launchAtLogin(userDefaults_, "launchAtLogin"), isFirstLaunch(userDefaults_, "isFirstLaunch"),
      allowFullBlack(userDefaults_, "allowFullBlack"), menuBarIcon(userDefaults_, "menuBarIcon"),
      activeProfileId(userDefaults_, "activeProfileId") {
    // Rewrites a stored id in canonical form and removes one that is not an id.
    activeProfileId.set(activeProfileId.get());
}

void SettingsManager::resetToDefaults() {
    unifiedBrightness.set(defaultUnifiedBrightness);
    warmthLevel.set(defaultWarmthLevel);
    grayscaleEnabled.set(defaultGrayscaleEnabled);
    breakTimerEnabled.set(defaultBreakTimerEnabled);
    breakIntervalMinutes.set(defaultBreakIntervalMinutes);
    breakDurationSeconds.set(defaultBreakDurationSeconds);
    suspendDuringMeetings.set(defaultSuspendDuringMeetings);
    colorTemperatureDay.set(defaultColorTemperatureDay);
    colorTemperatureNight.set(defaultColorTemperatureNight);
    autoWarmthEnabled.set(defaultAutoWarmthEnabled);
    locationEnabled.set(defaultLocationEnabled);
    launchAtLogin.set(defaultLaunchAtLogin);
    activeProfileId.set(std::nullopt);
    allowFullBlack.set(defaultAllowFullBlack);
    menuBarIcon.set(defaultMenuBarIcon);
}

void SettingsManager::applyProfile(const Profile& profile) {
    unifiedBrightness.set(profile.brightness);
    warmthLevel.set(profile.warmth);
    grayscaleEnabled.set(profile.grayscaleEnabled);
    breakTimerEnabled.set(profile.breakTimerEnabled);
    breakIntervalMinutes.set(profile.breakInterval);
    activeProfileId.set(profile.id);
}

std::string_view SettingsManager::warmthDescription() const {
    const auto warmth = warmthLevel.get();
    if (warmth < coolBelow) {
        return "Cool";
    }
    return warmth < neutralBelow ? "Neutral" : "Warm";
}

} // namespace nocta
