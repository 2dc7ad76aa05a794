#pragma once

#include "backends/linux/x11/X11Connection.h"
#include "platform/KeyEvents.h"

#include <xcb/xcb_keysyms.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace nocta {

/// The brightness keys, heard through raw XInput 2 events on the root window: without a grab,
/// whichever client has the focus or a grab of its own. Each becomes what it is elsewhere, a
/// system-defined event and a key-down; other keys are not passed on.
class X11KeyEvents final : public KeyEvents {
public:
    explicit X11KeyEvents(X11Connection& connection);

    Subscription addGlobalMonitorForSystemDefinedEvents(
        std::function<void(const SystemDefinedEvent&)> handler) override;
    Subscription createKeyDownTap(std::function<void(const KeyDownEvent&)> handler) override;

private:
    struct BrightnessKey {
        xcb_keysym_t symbol;
        std::int64_t keyCode;
        std::vector<xcb_keycode_t> codes; ///< the keyboard's own, as it is mapped now
    };

    struct FreeSymbols {
        void operator()(xcb_key_symbols_t* symbols) const { xcb_key_symbols_free(symbols); }
    };

    void handle(const X11Connection::Event& event);
    void press(xcb_keycode_t code);
    void readMapping();

    X11Connection& connection_;
    std::uint8_t inputExtension_ = 0; ///< the major opcode; 0 where the server has no XInput 2
    std::unique_ptr<xcb_key_symbols_t, FreeSymbols> symbols_;
    std::vector<BrightnessKey> keys_;
    CallbackList<SystemDefinedEvent> monitors_;
    CallbackList<KeyDownEvent> taps_;
    Subscription events_;
};

} // namespace nocta
