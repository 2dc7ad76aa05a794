#include "system/ShortcutsManager.h"

#include <algorithm>
#include <cstdint>
#include <iostream>

namespace nocta {

namespace {
constexpr double brightnessStep = 0.0625;
} // namespace

ShortcutsManager::ShortcutsManager(SettingsManager& settingsManager,
                                   UnifiedBrightnessApplier& brightnessApplier,
                                   KeyEvents& keyEvents)
    : settingsManager_(settingsManager), brightnessApplier_(brightnessApplier),
      keyEvents_(keyEvents) {}

void ShortcutsManager::startMonitoring() {
    if (isMonitoring()) {
        return;
    }
    eventTap_ = keyEvents_.createKeyDownTap([this](const KeyDownEvent& event) { handle(event); });
    if (!isMonitoring()) {
        std::cout << "Failed to create event tap" << std::endl;
    }
}

void ShortcutsManager::handle(const KeyDownEvent& event) {
    if (event.keyCode != brightnessDownKeyCode && event.keyCode != brightnessUpKeyCode) {
        return;
    }
    const auto current = settingsManager_.unifiedBrightness.get();
    const auto brightness = event.keyCode == brightnessUpKeyCode
                                ? std::min(current + brightnessStep, 1.0)
                                : std::max(current - brightnessStep, 0.0);
    // AppDelegate's subscription to this setting calls the applier. Apply the brightness again, so
    // that a key press takes effect even without that subscription.
    settingsManager_.unifiedBrightness.set(brightness);
    brightnessApplier_.apply(brightness);
}

} // namespace nocta
