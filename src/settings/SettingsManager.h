#pragma once

#include "settings/MenuBarIcon.h"
#include "settings/Profile.h"
#include "settings/Setting.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace nocta {

/// The single source of truth for the user's settings, stored in the defaults store. Writing a
/// setting publishes and stores its value; the key is the setting's name. Nothing is clamped here:
/// code that writes a setting must clamp the value. The manager exists for the lifetime of the
/// process.
class SettingsManager : SettingGroup {
public:
    explicit SettingsManager(DefaultsStore& userDefaults);

    static SettingsManager& shared();

    // Each setting is one line: its declaration registers the default, loads the value and adds the
    // setting to the reset.
    Setting<double> unifiedBrightness{*this, "unifiedBrightness", 0.75}; ///< 0.0–1.0, all displays
    Setting<double> warmthLevel{*this, "warmthLevel", 0.5}; ///< 0.0 cool – 1.0 warmest
    Setting<bool> grayscaleEnabled{*this, "grayscaleEnabled", false};
    Setting<bool> breakTimerEnabled{*this, "breakTimerEnabled", true};
    Setting<std::int64_t> breakIntervalMinutes{*this, "breakIntervalMinutes", 20};
    Setting<std::int64_t> breakDurationSeconds{*this, "breakDurationSeconds", 20};
    Setting<bool> suspendDuringMeetings{*this, "suspendDuringMeetings", true};
    Setting<std::int64_t> colorTemperatureDay{*this, "colorTemperatureDay", 6500};     ///< kelvin
    Setting<std::int64_t> colorTemperatureNight{*this, "colorTemperatureNight", 2700}; ///< kelvin
    Setting<bool> autoWarmthEnabled{*this, "autoWarmthEnabled", true};
    Setting<bool> locationEnabled{*this, "locationEnabled", false};
    Setting<bool> launchAtLogin{*this, "launchAtLogin", false};
    Setting<bool> isFirstLaunch{*this, "isFirstLaunch", true, NeverReset{}}; // no second onboarding
    Setting<bool> allowFullBlack{*this, "allowFullBlack", false};
    Setting<MenuBarIcon> menuBarIcon{*this, "menuBarIcon", MenuBarIcon::eye};
    Setting<std::optional<Uuid>> activeProfileId{*this, "activeProfileId", std::nullopt,
                                                 ResetBefore{allowFullBlack}};

    /// Resets every setting except `isFirstLaunch`, so that a reset never brings back onboarding.
    void resetToDefaults() { reset(); }

    /// Copies the profile's five values and makes it the active profile.
    void applyProfile(const Profile& profile);

    /// Describes the current warmth in one word: "Cool", "Neutral" or "Warm".
    std::string_view warmthDescription() const;
};

} // namespace nocta
