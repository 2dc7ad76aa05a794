#pragma once

#include "backends/virtual/Trace.h"
#include "base/CallbackList.h"
#include "platform/KeyEvents.h"

namespace nocta {

/// A keyboard in memory. A brightness key sends the same events as on a real keyboard: a
/// system-defined event to the global monitors, and then a key-down event to the taps.
class VirtualKeyboard final : public KeyEvents {
public:
    explicit VirtualKeyboard(Trace& trace) : trace_(trace) {}

    // For tests: what the user does.
    void pressBrightnessUp() { pressBrightnessKey(brightnessUpKeyCode); }
    void pressBrightnessDown() { pressBrightnessKey(brightnessDownKeyCode); }
    void pressKey(std::int64_t keyCode) { taps_.call(KeyDownEvent{keyCode}); }
    void sendSystemDefined(SystemDefinedEvent event) { monitors_.call(event); }
    bool monitorIsRefused = false;
    bool tapIsRefused = false;

    // For the program: the functions of the port.
    Subscription addGlobalMonitorForSystemDefinedEvents(
        std::function<void(const SystemDefinedEvent&)> handler) override {
        trace_.record("addGlobalMonitorForSystemDefinedEvents");
        return monitorIsRefused ? Subscription() : monitors_.add(std::move(handler));
    }
    Subscription createKeyDownTap(std::function<void(const KeyDownEvent&)> handler) override {
        trace_.record("createKeyDownTap");
        return tapIsRefused ? Subscription() : taps_.add(std::move(handler));
    }

private:
    void pressBrightnessKey(std::int64_t keyCode) {
        sendSystemDefined({.subtype = auxiliaryControlButtonsSubtype,
                           .data1 = keyCode << 16 | auxiliaryControlButtonDown});
        pressKey(keyCode);
    }

    Trace& trace_;
    CallbackList<SystemDefinedEvent> monitors_;
    CallbackList<KeyDownEvent> taps_;
};

} // namespace nocta
