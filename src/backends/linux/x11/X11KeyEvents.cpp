#include "backends/linux/x11/X11KeyEvents.h"

#include <xcb/xcb_keysyms.h>
#include <xcb/xinput.h>

// This C header has a field named `explicit`.
#ifdef __clang__
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wkeyword-macro"
#endif
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit
#ifdef __clang__
#pragma clang diagnostic pop
#endif

#include <algorithm>
#include <chrono>
#include <iostream>
#include <memory>
#include <utility>

namespace nocta {

namespace {

constexpr xcb_keysym_t brightnessUpSymbol = 0x1008FF02;   // XF86XK_MonBrightnessUp
constexpr xcb_keysym_t brightnessDownSymbol = 0x1008FF03; // XF86XK_MonBrightnessDown

struct FreeSymbols {
    void operator()(xcb_key_symbols_t* symbols) const { xcb_key_symbols_free(symbols); }
};

} // namespace

X11KeyEvents::X11KeyEvents(X11Connection& connection, RunLoop& runLoop)
    : connection_(connection),
      runLoop_(runLoop), keys_{{brightnessUpSymbol, brightnessUpKeyCode, {}},
                               {brightnessDownSymbol, brightnessDownKeyCode, {}}} {
    auto* const x = connection_.get();
    const auto* const extension = findExtension(x, xcb_input_id);
    const XcbReply<xcb_input_xi_query_version_reply_t> version(
        extension != nullptr
            ? xcb_input_xi_query_version_reply(x, xcb_input_xi_query_version(x, 2, 2), nullptr)
            : nullptr);
    if (!version || version->major_version < 2) {
        std::cerr << "nocta: this X server has no XInput 2; brightness keys do not work"
                  << std::endl;
        return;
    }
    inputExtension_ = extension->major_opcode;
    followKeyboard();

    struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } const rawKeys{.head = {.deviceid = XCB_INPUT_DEVICE_ALL_MASTER, .mask_len = 1},
                    .mask = XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS |
                            XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE};
    xcb_input_xi_select_events(x, connection_.root(), 1, &rawKeys.head);
    events_ =
        connection_.observeEvents([this](const X11Connection::Event& event) { handle(event); });
    connection_.finishTurn();
}

Subscription X11KeyEvents::addGlobalMonitorForSystemDefinedEvents(
    std::function<void(const SystemDefinedEvent&)> handler) {
    return inputExtension_ == 0 ? Subscription() : monitors_.add(std::move(handler));
}

Subscription X11KeyEvents::createKeyDownTap(std::function<void(const KeyDownEvent&)> handler) {
    return inputExtension_ == 0 ? Subscription() : taps_.add(std::move(handler));
}

void X11KeyEvents::handle(const X11Connection::Event& event) {
    const auto type = event.response_type & 0x7f;
    if (type == XCB_MAPPING_NOTIFY || type == firstKeyboardEvent_) {
        mappingIsRead_ = false; // reread on the next key press
    } else if (type == XCB_GE_GENERIC) {
        const auto& raw = reinterpret_cast<const xcb_input_raw_key_press_event_t&>(event);
        if (raw.extension != inputExtension_) {
            return;
        }
        if (raw.event_type == XCB_INPUT_RAW_KEY_PRESS) {
            typing_.press(timeOf(raw.time));
            press(static_cast<xcb_keycode_t>(raw.detail));
        } else if (raw.event_type == XCB_INPUT_RAW_KEY_RELEASE) {
            release(static_cast<xcb_keycode_t>(raw.detail));
        }
    }
}

/// The time on this process's clock at which a key was pressed, even if its event is read late. The
/// server's clock, which wraps around, gives the time since the previous key.
MonotonicTime X11KeyEvents::timeOf(std::uint32_t serverTime) {
    const auto now = runLoop_.monotonicNow();
    const auto sinceLast = std::chrono::milliseconds(serverTime - lastServerTime_);
    lastServerTime_ = serverTime;
    return typing_.last() ? std::min(now, *typing_.last() + sinceLast) : now;
}

void X11KeyEvents::press(xcb_keycode_t code) {
    repeat_.invalidate(); // any other key ends the repeat, as on a real keyboard
    if (!std::exchange(mappingIsRead_, true)) {
        readMapping();
    }
    for (const auto& key : keys_) {
        if (std::ranges::find(key.codes, code) != key.codes.end()) {
            heldCode_ = code;
            send(key.keyCode);
            repeatWhileHeld(key.keyCode);
        }
    }
}

void X11KeyEvents::release(xcb_keycode_t code) {
    if (code == heldCode_) {
        repeat_.invalidate();
    }
}

void X11KeyEvents::send(std::int64_t keyCode) {
    monitors_.call({.subtype = auxiliaryControlButtonsSubtype,
                    .data1 = keyCode << 16 | auxiliaryControlButtonDown});
    taps_.call({.keyCode = keyCode});
}

void X11KeyEvents::repeatWhileHeld(std::int64_t keyCode) {
    auto* const x = connection_.get();
    const XcbReply<xcb_xkb_get_controls_reply_t> controls(
        xcb_xkb_get_controls_reply(x, xcb_xkb_get_controls(x, XCB_XKB_ID_USE_CORE_KBD), nullptr));
    connection_.finishTurn();
    if (!controls || firstKeyboardEvent_ == 0 || controls->repeatInterval == 0 ||
        (controls->enabledControls & XCB_XKB_BOOL_CTRL_REPEAT_KEYS) == 0) {
        return;
    }
    const auto interval = std::chrono::milliseconds(controls->repeatInterval);
    repeat_.start(runLoop_, std::chrono::milliseconds(controls->repeatDelay), Repeat::no,
                  [this, interval, keyCode] {
                      send(keyCode);
                      repeat_.start(runLoop_, interval, Repeat::yes,
                                    [this, keyCode] { send(keyCode); });
                  });
}

/// Asks XKB to report changes of the mapping. A client that uses XKB cannot receive these changes
/// in any other way, and this client needs XKB for the repeat rate.
void X11KeyEvents::followKeyboard() {
    auto* const x = connection_.get();
    const auto* const extension = xcb_get_extension_data(x, &xcb_xkb_id);
    const XcbReply<xcb_xkb_use_extension_reply_t> use(
        extension != nullptr
            ? xcb_xkb_use_extension_reply(x, xcb_xkb_use_extension(x, 1, 0), nullptr)
            : nullptr);
    if (!use || use->supported == 0) {
        return;
    }
    firstKeyboardEvent_ = extension->first_event;
    constexpr std::uint16_t changes =
        XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
    constexpr std::uint16_t symbols = XCB_XKB_MAP_PART_KEY_SYMS;
    xcb_xkb_select_events(x, XCB_XKB_ID_USE_CORE_KBD, changes, 0, changes, symbols, symbols,
                          nullptr);
}

void X11KeyEvents::readMapping() {
    const std::unique_ptr<xcb_key_symbols_t, FreeSymbols> symbols(
        xcb_key_symbols_alloc(connection_.get()));
    for (auto& key : keys_) {
        key.codes.clear();
        const XcbReply<xcb_keycode_t> codes(xcb_key_symbols_get_keycode(symbols.get(), key.symbol));
        for (const auto* code = codes.get(); code != nullptr && *code != XCB_NO_SYMBOL; ++code) {
            key.codes.push_back(*code);
        }
    }
    connection_.finishTurn();
}

} // namespace nocta
