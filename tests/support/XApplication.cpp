#include "support/XApplication.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <utility>

namespace nocta {

namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <class Reply>
using Owned = std::unique_ptr<Reply, Free>;

} // namespace

XApplication::XApplication(std::string instance, std::string windowClass)
    : x_(xcb_connect(nullptr, nullptr)) {
    if (xcb_connection_has_error(x_) != 0) {
        throw std::runtime_error("cannot connect to the X server");
    }
    root_ = xcb_setup_roots_iterator(xcb_get_setup(x_)).data->root;
    if (!windowClass.empty()) {
        classes_ = std::move(instance) + '\0' + std::move(windowClass) + '\0';
    }
}

XApplication::~XApplication() {
    xcb_disconnect(x_);
}

xcb_window_t XApplication::make(const Rect& frame) {
    const auto window = xcb_generate_id(x_);
    xcb_create_window(x_, XCB_COPY_FROM_PARENT, window, root_, static_cast<std::int16_t>(frame.x),
                      static_cast<std::int16_t>(frame.y), static_cast<std::uint16_t>(frame.width),
                      static_cast<std::uint16_t>(frame.height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    if (!classes_.empty()) {
        setText(window, "WM_CLASS", classes_, "STRING");
    }
    synchronize();
    return window;
}

void XApplication::show(xcb_window_t window) {
    xcb_map_window(x_, window);
    synchronize();
}

xcb_window_t XApplication::open(const Rect& frame) {
    const auto window = make(frame);
    show(window);
    return window;
}

void XApplication::close(xcb_window_t window) {
    xcb_destroy_window(x_, window);
    synchronize();
}

void XApplication::activate(xcb_window_t window) {
    constexpr std::uint32_t pager = 2; // window managers treat a pager's request like a user action
    ask(window, "_NET_ACTIVE_WINDOW", {pager, XCB_CURRENT_TIME});
}

void XApplication::minimize(xcb_window_t window) {
    constexpr std::uint32_t iconic = 3;
    ask(window, "WM_CHANGE_STATE", {iconic});
}

void XApplication::enterFullScreen(xcb_window_t window) {
    constexpr std::uint32_t add = 1;
    ask(window, "_NET_WM_STATE", {add, atom("_NET_WM_STATE_FULLSCREEN")});
}

void XApplication::moveToDesktop(xcb_window_t window, std::uint32_t desktop) {
    ask(window, "_NET_WM_DESKTOP", {desktop});
}

void XApplication::setText(xcb_window_t window, const std::string& property,
                           const std::string& text, const std::string& type) {
    xcb_change_property(x_, XCB_PROP_MODE_REPLACE, window, atom(property), atom(type), 8,
                        static_cast<std::uint32_t>(text.size()), text.data());
    synchronize();
}

void XApplication::setNumbers(xcb_window_t window, const std::string& property,
                              const std::vector<std::uint32_t>& numbers, const std::string& type) {
    xcb_change_property(x_, XCB_PROP_MODE_REPLACE, window, atom(property), atom(type), 32,
                        static_cast<std::uint32_t>(numbers.size()), numbers.data());
    synchronize();
}

void XApplication::removeProperty(xcb_window_t window, const std::string& property) {
    xcb_delete_property(x_, window, atom(property));
    synchronize();
}

xcb_atom_t XApplication::atom(const std::string& name) {
    const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        x_, xcb_intern_atom(x_, 0, static_cast<std::uint16_t>(name.size()), name.c_str()),
        nullptr));
    if (!reply) {
        throw std::runtime_error("the X server did not answer");
    }
    return reply->atom;
}

std::uint32_t XApplication::rootNumber(const std::string& property) {
    const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        x_, xcb_get_property(x_, 0, root_, atom(property), XCB_ATOM_ANY, 0, 1), nullptr));
    return reply && reply->format == 32 && reply->value_len > 0
               ? *static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()))
               : 0;
}

void XApplication::ask(xcb_window_t window, const std::string& what,
                       std::vector<std::uint32_t> data) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atom(what);
    std::ranges::copy(data, message.data.data32);
    xcb_send_event(x_, 0, root_,
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message));
    synchronize();
}

void XApplication::synchronize() {
    const Owned<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(x_, xcb_get_input_focus(x_), nullptr));
}

} // namespace nocta
