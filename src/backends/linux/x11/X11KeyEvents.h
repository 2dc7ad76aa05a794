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

/// The brightness keys, heard through raw XInput 2 events on the root window: without a grab,
/// whichever client has the focus or a grab of its own. Each becomes what it is elsewhere, a
/// system-defined event and a key-down; of other keys it notes only when they were pressed. Raw
/// events do not repeat while a key is held, so this repeats them, at the keyboard's own pace.
class X11KeyEvents final : public KeyEvents {
public:
    X11KeyEvents(X11Connection& connection, RunLoop& runLoop);

    Subscription addGlobalMonitorForSystemDefinedEvents(
        std::function<void(const SystemDefinedEvent&)> handler) override;
    Subscription createKeyDownTap(std::function<void(const KeyDownEvent&)> handler) override;

    /// What is typed, in any window. Without XInput 2 nothing is.
    const Typing& typing() const { return typing_; }

private:
    struct BrightnessKey {
        xcb_keysym_t symbol;
        std::int64_t keyCode;
        std::vector<xcb_keycode_t> codes; ///< the keyboard's own, as it is mapped now
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
    std::uint8_t inputExtension_ = 0; ///< the major opcode; 0 where the server has no XInput 2
    std::vector<BrightnessKey> keys_;
    std::uint8_t firstKeyboardEvent_ = 0; ///< of the XKB extension; 0 where the server has none
    bool mappingIsRead_ = false;
    CallbackList<SystemDefinedEvent> monitors_;
    CallbackList<KeyDownEvent> taps_;
    Typing typing_;
    std::uint32_t lastServerTime_ = 0; ///< milliseconds, of the key that was pressed last
    Subscription events_;
    xcb_keycode_t heldCode_ = 0;
    Timer repeat_;
};

} // namespace nocta
