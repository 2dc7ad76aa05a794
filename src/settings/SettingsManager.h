#pragma once

#include "settings/MenuBarIcon.h"
#include "settings/Profile.h"
#include "settings/Setting.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace nocta {

/// The one source of truth for what the user has chosen, over the user's defaults store. Each
/// setting is published and persisted on every write, under a key that is its name. Nothing is
/// clamped here: writers clamp. It lives as long as the process.
class SettingsManager {
    DefaultsStore& userDefaults_; // first: the defaults are registered before anything is loaded

public:
    explicit SettingsManager(DefaultsStore& userDefaults);
    SettingsManager(const SettingsManager&) = delete;
    SettingsManager& operator=(const SettingsManager&) = delete;

    static SettingsManager& shared();

    Setting<double> unifiedBrightness; ///< 0.0–1.0, for all displays
    Setting<double> warmthLevel;       ///< 0.0 cool – 1.0 warmest
    Setting<bool> grayscaleEnabled;
    Setting<bool> breakTimerEnabled;
    Setting<std::int64_t> breakIntervalMinutes;
    Setting<std::int64_t> breakDurationSeconds;
    Setting<bool> suspendDuringMeetings;
    Setting<std::int64_t> colorTemperatureDay;   ///< kelvin
    Setting<std::int64_t> colorTemperatureNight; ///< kelvin
    Setting<bool> autoWarmthEnabled;
    Setting<bool> locationEnabled;
    Setting<bool> launchAtLogin;
    Setting<bool> isFirstLaunch;
    Setting<bool> allowFullBlack;
    Setting<MenuBarIcon> menuBarIcon;
    Setting<std::optional<Uuid>> activeProfileId;

    /// Every setting but `isFirstLaunch`, so that a reset never brings onboarding back.
    void resetToDefaults();

    /// Copies a profile's five values and makes it the active one.
    void applyProfile(const Profile& profile);

    /// The current warmth in one word: "Cool", "Neutral" or "Warm".
    std::string_view warmthDescription() const;
};

} // namespace nocta
