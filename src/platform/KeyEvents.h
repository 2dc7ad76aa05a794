#pragma once

#include "base/Subscription.h"

#include <cstdint>
#include <functional>

namespace nocta {

// Virtual key codes.
inline constexpr std::int64_t spaceKeyCode = 49;
inline constexpr std::int64_t brightnessDownKeyCode = 144;
inline constexpr std::int64_t brightnessUpKeyCode = 145;

// The subtype of a system-defined event for an auxiliary control button, and the state in its data
// for a button that goes down.
inline constexpr std::int16_t auxiliaryControlButtonsSubtype = 8;
inline constexpr std::int64_t auxiliaryControlButtonDown = 0xA00;

/// A system-defined event, which special keys send. For an auxiliary control button, bits 16–31
/// of `data1` are its key code and bits 8–15 its state.
struct SystemDefinedEvent {
    std::int16_t subtype = 0;
    std::int64_t data1 = 0;
};

/// A key going down, by its virtual key code.
struct KeyDownEvent {
    std::int64_t keyCode = 0;
};

/// The keyboard, whichever application has the focus. Handlers run on the main thread and cannot
/// keep an event from other programs. A subscription is false if the desktop refused it.
class KeyEvents {
public:
    virtual ~KeyEvents() = default;

    /// Stands for addGlobalMonitorForEventsMatchingMask:handler: with system-defined events
    /// (mask 1 << 14).
    virtual Subscription addGlobalMonitorForSystemDefinedEvents(
        std::function<void(const SystemDefinedEvent&)> handler) = 0;

    /// An enabled active tap at the head of the login session's list, for key-down events (mask
    /// 1 << 10), with its source on the main run loop. Stands for CGEventTapCreate,
    /// CFMachPortCreateRunLoopSource and CGEventTapEnable.
    virtual Subscription createKeyDownTap(std::function<void(const KeyDownEvent&)> handler) = 0;
};

} // namespace nocta
