#include "settings/SettingsManager.h"

namespace nocta {

namespace {

constexpr double coolBelow = 0.33;
constexpr double neutralBelow = 0.66;

} // namespace

SettingsManager::SettingsManager(DefaultsStore& userDefaults) : SettingGroup(userDefaults) {
    load();
    // Rewrites a stored id in canonical form, and removes a value that is not an id.
    activeProfileId.set(activeProfileId.get());
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
