#pragma once

#include "base/Subscription.h"

#include <cstdint>
#include <functional>

namespace nocta {

// Virtual key codes.
inline constexpr std::int64_t spaceKeyCode = 49;
inline constexpr std::int64_t brightnessDownKeyCode = 144;
inline constexpr std::int64_t brightnessUpKeyCode = 145;

// The subtype of system-defined events for auxiliary control buttons, and the state that their data
// contains when a button is pressed.
inline constexpr std::int16_t auxiliaryControlButtonsSubtype = 8;
inline constexpr std::int64_t auxiliaryControlButtonDown = 0xA00;

/// The kind of event that special keys send. For an auxiliary control button, bits 16–31 of `data1`
/// are its key code and bits 8–15 its state.
struct SystemDefinedEvent {
    std::int16_t subtype = 0;
    std::int64_t data1 = 0;
};

/// A key press, identified by its virtual key code.
struct KeyDownEvent {
    std::int64_t keyCode = 0;
};

/// Observes the keyboard, no matter which application has focus. Handlers run on the main thread
/// and cannot keep events from reaching other programs. The returned subscription is false if the
/// desktop refused it.
class KeyEvents {
public:
    virtual ~KeyEvents() = default;

    /// Corresponds to addGlobalMonitorForEventsMatchingMask:handler: for system-defined events
    /// (mask 1 << 14) on macOS.
    virtual Subscription addGlobalMonitorForSystemDefinedEvents(
        std::function<void(const SystemDefinedEvent&)> handler) = 0;

    /// Calls `handler` for key-down events. On macOS this creates and enables an active event tap
    /// at the head of the login session's list (mask 1 << 10), with its source on the main run
    /// loop. Corresponds to CGEventTapCreate, CFMachPortCreateRunLoopSource and CGEventTapEnable.
    virtual Subscription createKeyDownTap(std::function<void(const KeyDownEvent&)> handler) = 0;
};

} // namespace nocta
