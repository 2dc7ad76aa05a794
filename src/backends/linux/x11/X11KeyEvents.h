#pragma once

#include "backends/linux/x11/X11Connection.h"
#include "base/RunLoop.h"
#include "base/Timer.h"
#include "base/Typing.h"
#include "platform/KeyEvents.h"

#include <xcb/xproto.h>

#include <cstdint>
#include <vector>

namespace nocta {

/// The brightness keys, from raw XInput 2 events on the root window. Raw events need no grab, and
/// arrive no matter which client has the focus or a grab. Each press of a brightness key becomes a
/// system-defined event and a key-down event, as on other platforms; for other keys only the time
/// of the press is kept. Raw events do not repeat while a key is held, so this class repeats them
/// at the keyboard's own rate.
class X11KeyEvents final : public KeyEvents {
public:
    X11KeyEvents(X11Connection& connection, RunLoop& runLoop);

    Subscription addGlobalMonitorForSystemDefinedEvents(
        std::function<void(const SystemDefinedEvent&)> handler) override;
    Subscription createKeyDownTap(std::function<void(const KeyDownEvent&)> handler) override;

    /// The times at which keys were typed in any window. Without XInput 2, no times are recorded.
    const Typing& typing() const { return typing_; }

private:
    struct BrightnessKey {
        xcb_keysym_t symbol;
        std::int64_t keyCode;
        std::vector<xcb_keycode_t> codes; ///< the physical keys in the current mapping
    };

    void handle(const X11Connection::Event& event);
    MonotonicTime timeOf(std::uint32_t serverTime);
    void press(xcb_keycode_t code);
    void release(xcb_keycode_t code);
    void send(std::int64_t keyCode);
    void repeatWhileHeld(std::int64_t keyCode);
    void followKeyboard();
    void readMapping();

    X11Connection& connection_;
    RunLoop& runLoop_;
    std::uint8_t inputExtension_ = 0; ///< the major opcode; 0 if the server has no XInput 2
    std::vector<BrightnessKey> keys_;
    std::uint8_t firstKeyboardEvent_ = 0; ///< XKB's first event; 0 without XKB
    bool mappingIsRead_ = false;
    CallbackList<SystemDefinedEvent> monitors_;
    CallbackList<KeyDownEvent> taps_;
    Typing typing_;
    std::uint32_t lastServerTime_ = 0; ///< the time of the last key press, in milliseconds
    Subscription events_;
    xcb_keycode_t heldCode_ = 0;
    Timer repeat_;
};

} // namespace nocta
