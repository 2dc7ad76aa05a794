#pragma once

#include <cstdint>

namespace nocta {

// Types of the events that reach an event tap, by the numbers of CGEventType.
inline constexpr std::uint32_t keyDownEventType = 10;
inline constexpr std::uint32_t tapDisabledByTimeoutEventType = 0xFFFFFFFE;
inline constexpr std::uint32_t tapDisabledByUserInputEventType = 0xFFFFFFFF;

/// What an event tap's callback is called for.
enum class TapEvent { keyDown, disabled, other };

/// The system disables a tap whose callback was slow once, and one that is in the way of the
/// user's input. It says so by an event of its own, and the tap stays disabled until it is enabled
/// again.
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
