#include "display/BrightnessController.h"

#include <cstdint>

namespace nocta {

namespace {

// The fields in the event data of an auxiliary control button. The key codes of the brightness
// keys, 0x90 (lower) and 0x91 (raise), differ only in the lowest bit, which the mask excludes.
constexpr std::int64_t brightnessKeysMask = ~std::int64_t{0x1FFFF};
constexpr std::int64_t brightnessKeys = 0x900000;
constexpr std::int64_t raisingKey = 0x10000;
constexpr std::int64_t stateMask = 0xFF00;

} // namespace

BrightnessController::BrightnessController(DisplayService& displayService, Backlight& backlight,
                                           KeyEvents& keyEvents)
    : displayService_(displayService), backlight_(backlight), keyEvents_(keyEvents) {
    probe();
}

void BrightnessController::probe() {
    isAvailable_ = levelOfMainDisplay().has_value();
}

std::optional<float> BrightnessController::readBrightness() {
    return isAvailable_ ? levelOfMainDisplay() : std::nullopt;
}

void BrightnessController::startKeyboardMonitoring() {
    keyboardMonitor_ = keyEvents_.addGlobalMonitorForSystemDefinedEvents(
        [this](const SystemDefinedEvent& event) { handle(event); });
}

std::optional<float> BrightnessController::levelOfMainDisplay() {
    const auto& main = displayService_.mainDisplay.get();
    float level = 0;
    if (!main || backlight_.getBrightness(main->id, level) != statusSuccess) {
        return std::nullopt;
    }
    return level;
}

void BrightnessController::handle(const SystemDefinedEvent& event) {
    const auto data = event.data1;
    if (event.subtype != auxiliaryControlButtonsSubtype ||
        (data & brightnessKeysMask) != brightnessKeys ||
        (data & stateMask) != auxiliaryControlButtonDown) {
        return;
    }
    const auto level = readBrightness();
    const auto listener = delegate.lock();
    if (level && listener) {
        listener->brightnessKeyPressed((data & raisingKey) != 0, *level);
    }
}

} // namespace nocta
