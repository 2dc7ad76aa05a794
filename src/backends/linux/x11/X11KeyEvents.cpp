#include "backends/linux/x11/X11KeyEvents.h"

#include <xcb/xinput.h>

#include <algorithm>
#include <iostream>
#include <utility>

namespace nocta {

namespace {

constexpr xcb_keysym_t brightnessUpSymbol = 0x1008FF02;   // XF86XK_MonBrightnessUp
constexpr xcb_keysym_t brightnessDownSymbol = 0x1008FF03; // XF86XK_MonBrightnessDown
constexpr std::int64_t brightnessUpKey = 145;
constexpr std::int64_t brightnessDownKey = 144;

constexpr std::int16_t auxiliaryControlButtons = 8;
constexpr std::int64_t keyDown = 0xA00;

} // namespace

X11KeyEvents::X11KeyEvents(X11Connection& connection)
    : connection_(connection), keys_{{brightnessUpSymbol, brightnessUpKey, {}},
                                     {brightnessDownSymbol, brightnessDownKey, {}}} {
    auto* const x = connection_.get();
    const auto* const extension = xcb_get_extension_data(x, &xcb_input_id);
    const XcbReply<xcb_input_xi_query_version_reply_t> version(
        extension != nullptr && extension->present != 0
            ? xcb_input_xi_query_version_reply(x, xcb_input_xi_query_version(x, 2, 2), nullptr)
            : nullptr);
    if (!version || version->major_version < 2) {
        std::cerr << "nocta: this X server has no XInput 2; brightness keys are not heard"
                  << std::endl;
        return;
    }
    inputExtension_ = extension->major_opcode;
    symbols_.reset(xcb_key_symbols_alloc(x));
    readMapping();

    struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } const rawKeys{.head = {.deviceid = XCB_INPUT_DEVICE_ALL_MASTER, .mask_len = 1},
                    .mask = XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS};
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
    if (type == XCB_MAPPING_NOTIFY) {
        readMapping();
    } else if (type == XCB_GE_GENERIC) {
        const auto& raw = reinterpret_cast<const xcb_input_raw_key_press_event_t&>(event);
        if (raw.extension == inputExtension_ && raw.event_type == XCB_INPUT_RAW_KEY_PRESS) {
            press(static_cast<xcb_keycode_t>(raw.detail));
        }
    }
}

void X11KeyEvents::press(xcb_keycode_t code) {
    for (const auto& key : keys_) {
        if (std::ranges::find(key.codes, code) != key.codes.end()) {
            monitors_.call(
                {.subtype = auxiliaryControlButtons, .data1 = key.keyCode << 16 | keyDown});
            taps_.call({.keyCode = key.keyCode});
        }
    }
}

void X11KeyEvents::readMapping() {
    xcb_mapping_notify_event_t everything{};
    everything.request = XCB_MAPPING_KEYBOARD;
    xcb_refresh_keyboard_mapping(symbols_.get(), &everything);
    for (auto& key : keys_) {
        key.codes.clear();
        const XcbReply<xcb_keycode_t> codes(
            xcb_key_symbols_get_keycode(symbols_.get(), key.symbol));
        for (const auto* code = codes.get(); code != nullptr && *code != XCB_NO_SYMBOL; ++code) {
            key.codes.push_back(*code);
        }
    }
    connection_.finishTurn();
}

} // namespace nocta
