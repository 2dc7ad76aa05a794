#pragma once

#include "base/Subscription.h"
#include "display/DisplayService.h"
#include "platform/Backlight.h"
#include "platform/KeyEvents.h"

#include <memory>
#include <optional>

namespace nocta {

/// Is notified whenever a brightness key is pressed. `raises` is true for the key that raises the
/// brightness; `level` is the backlight level (0.0–1.0) before the system handles the key.
class BrightnessKeyboardDelegate {
public:
    virtual ~BrightnessKeyboardDelegate() = default;

    virtual void brightnessKeyPressed(bool raises, float level) = 0;
};

/// Gives other services access to the main display's backlight.
class BrightnessControlling {
public:
    virtual ~BrightnessControlling() = default;

    virtual bool isAvailable() const = 0;

    /// Returns the backlight level (0.0–1.0), or `std::nullopt` if it cannot be read.
    virtual std::optional<float> readBrightness() = 0;
};

/// Checks whether the main display's backlight can be read, reads it, and watches the brightness
/// keys. The controller exists for the lifetime of the process.
class BrightnessController final : public BrightnessControlling {
public:
    /// Calls `probe`. Until the list of displays is first refreshed, the probe finds no backlight,
    /// so the application probes again after the refresh.
    BrightnessController(DisplayService& displayService, Backlight& backlight,
                         KeyEvents& keyEvents);
    BrightnessController(const BrightnessController&) = delete;
    BrightnessController& operator=(const BrightnessController&) = delete;

    static BrightnessController& shared();

    /// Sets `isAvailable`: whether there is a main display whose backlight can be read.
    void probe();

    bool isAvailable() const override { return isAvailable_; }
    std::optional<float> readBrightness() override;

    void startKeyboardMonitoring();

    /// Optional; the controller does not keep it alive.
    std::weak_ptr<BrightnessKeyboardDelegate> delegate;

private:
    std::optional<float> levelOfMainDisplay();
    void handle(const SystemDefinedEvent& event);

    bool isAvailable_ = false;
    DisplayService& displayService_;
    Backlight& backlight_;
    KeyEvents& keyEvents_;
    Subscription keyboardMonitor_;
};

} // namespace nocta
