#pragma once

#include <cstdint>

namespace nocta {

// Types of the events that an event tap receives, with the numbers of CGEventType.
inline constexpr std::uint32_t keyDownEventType = 10;
inline constexpr std::uint32_t tapDisabledByTimeoutEventType = 0xFFFFFFFE;
inline constexpr std::uint32_t tapDisabledByUserInputEventType = 0xFFFFFFFF;

/// Why an event tap's callback is called.
enum class TapEvent { keyDown, disabled, other };

/// The system disables a tap if its callback is too slow even once, or if it interferes with the
/// user's input. The system sends a special event when it disables a tap, and the tap stays
/// disabled until it is enabled again.
constexpr TapEvent tapEvent(std::uint32_t type) {
    switch (type) {
    case keyDownEventType:
        return TapEvent::keyDown;
    case tapDisabledByTimeoutEventType:
    case tapDisabledByUserInputEventType:
        return TapEvent::disabled;
    default:
        return TapEvent::other;
    }
}

} // namespace nocta
