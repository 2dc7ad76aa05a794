#include "support/XClient.h"

#include "support/Process.h"

#include <xcb/xcb_keysyms.h>
#include <xcb/xtest.h>

#include <cmath>
#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace nocta {

namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <class Reply>
using Owned = std::unique_ptr<Reply, Free>;

template <class Reply>
Owned<Reply> needed(Reply* reply) {
    if (reply == nullptr) {
        throw std::runtime_error("the X server did not answer");
    }
    return Owned<Reply>(reply);
}

/// A key code that no real key uses.
constexpr xcb_keycode_t spareKey = 248;

/// Milliseconds before a key event. A key that is released and pressed in the same millisecond
/// counts as an auto-repeat.
constexpr std::uint32_t keyDelay = 2;

} // namespace

XClient::XClient() : x_(xcb_connect(nullptr, nullptr)) {
    if (xcb_connection_has_error(x_) != 0) {
        throw std::runtime_error("cannot connect to the X server");
    }
    root_ = xcb_setup_roots_iterator(xcb_get_setup(x_)).data->root;
}

XClient::~XClient() {
    xcb_disconnect(x_);
}

std::vector<xcb_randr_crtc_t> XClient::activeCrtcs() {
    const auto resources = needed(xcb_randr_get_screen_resources_current_reply(
        x_, xcb_randr_get_screen_resources_current(x_, root_), nullptr));
    const auto* const outputs = xcb_randr_get_screen_resources_current_outputs(resources.get());
    std::vector<xcb_randr_crtc_t> crtcs;
    for (int i = 0; i < resources->num_outputs; ++i) {
        if (const auto crtc = crtcOf(outputs[i]); crtc != XCB_NONE) {
            crtcs.push_back(crtc);
        }
    }
    return crtcs;
}

xcb_randr_crtc_t XClient::crtcOf(xcb_randr_output_t output) {
    const auto info = needed(xcb_randr_get_output_info_reply(
        x_, xcb_randr_get_output_info(x_, output, XCB_CURRENT_TIME), nullptr));
    return info->crtc;
}

XClient::Ramp XClient::ramp(xcb_randr_crtc_t crtc) {
    const auto reply =
        needed(xcb_randr_get_crtc_gamma_reply(x_, xcb_randr_get_crtc_gamma(x_, crtc), nullptr));
    Ramp ramp;
    std::array const channels = {xcb_randr_get_crtc_gamma_red(reply.get()),
                                 xcb_randr_get_crtc_gamma_green(reply.get()),
                                 xcb_randr_get_crtc_gamma_blue(reply.get())};
    for (std::size_t channel = 0; channel < ramp.size(); ++channel) {
        ramp[channel].assign(channels[channel], channels[channel] + reply->size);
    }
    return ramp;
}

void XClient::setRamp(xcb_randr_crtc_t crtc, const Ramp& ramp) {
    const auto request =
        xcb_randr_set_crtc_gamma_checked(x_, crtc, static_cast<std::uint16_t>(ramp[0].size()),
                                         ramp[0].data(), ramp[1].data(), ramp[2].data());
    if (const Owned<xcb_generic_error_t> error(xcb_request_check(x_, request)); error) {
        throw std::runtime_error("the X server refused a gamma ramp");
    }
}

double XClient::top(xcb_randr_crtc_t crtc) {
    return ramp(crtc)[0].back() / 65535.0;
}

std::uint32_t XClient::pixel(xcb_window_t window, std::int16_t x, std::int16_t y) {
    return translucentPixel(window, x, y) & 0xFFFFFFU;
}

std::uint32_t XClient::translucentPixel(xcb_window_t window, std::int16_t x, std::int16_t y) {
    const auto image = needed(xcb_get_image_reply(
        x_, xcb_get_image(x_, XCB_IMAGE_FORMAT_Z_PIXMAP, window, x, y, 1, 1, ~0U), nullptr));
    const auto* const bytes = xcb_get_image_data(image.get()); // in BGRA order
    return static_cast<std::uint32_t>(bytes[3]) << 24U |
           static_cast<std::uint32_t>(bytes[2] << 16 | bytes[1] << 8 | bytes[0]);
}

void XClient::press(xcb_keysym_t symbol) {
    hold(symbol);
    release(symbol);
}

void XClient::hold(xcb_keysym_t symbol) {
    key(symbol, XCB_KEY_PRESS);
}

void XClient::release(xcb_keysym_t symbol) {
    key(symbol, XCB_KEY_RELEASE);
}

void XClient::key(xcb_keysym_t symbol, std::uint8_t event) {
    auto* const symbols = xcb_key_symbols_alloc(x_);
    const Owned<xcb_keycode_t> codes(xcb_key_symbols_get_keycode(symbols, symbol));
    auto code = codes == nullptr ? xcb_keycode_t{0} : *codes;
    xcb_key_symbols_free(symbols);
    if (code == 0) {
        code = spareKey + static_cast<xcb_keycode_t>(symbol & 1);
        xcb_change_keyboard_mapping(x_, 1, code, 1, &symbol);
    }
    xcb_test_fake_input(x_, event, code, keyDelay, root_, 0, 0, 0);
    synchronize();
}

void XClient::pointer(std::uint8_t event, std::uint8_t detail, int x, int y) {
    xcb_test_fake_input(x_, event, detail, XCB_CURRENT_TIME, root_, static_cast<std::int16_t>(x),
                        static_cast<std::int16_t>(y), 0);
    synchronize();
}

void XClient::moveTo(int x, int y) {
    pointer(XCB_MOTION_NOTIFY, 0, x, y);
}

void XClient::holdButton(std::uint8_t button) {
    pointer(XCB_BUTTON_PRESS, button, 0, 0);
}

void XClient::releaseButton(std::uint8_t button) {
    pointer(XCB_BUTTON_RELEASE, button, 0, 0);
}

void XClient::click(int x, int y, std::uint8_t button) {
    moveTo(x, y);
    holdButton(button);
    releaseButton(button);
}

std::vector<XClient::TopWindow>
XClient::windows(const std::function<bool(const TopWindow&)>& matches) {
    std::vector<TopWindow> found;
    collect(root_, found);
    std::erase_if(found, [&](const TopWindow& window) { return !matches(window); });
    return found;
}

void XClient::collect(xcb_window_t parent, std::vector<TopWindow>& found) {
    const Owned<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(x_, xcb_query_tree(x_, parent), nullptr));
    for (int i = 0; tree && i < xcb_query_tree_children_length(tree.get()); ++i) {
        const auto window = xcb_query_tree_children(tree.get())[i];
        const Owned<xcb_get_geometry_reply_t> size(
            xcb_get_geometry_reply(x_, xcb_get_geometry(x_, window), nullptr));
        const Owned<xcb_translate_coordinates_reply_t> place(xcb_translate_coordinates_reply(
            x_, xcb_translate_coordinates(x_, window, root_, 0, 0), nullptr));
        const Owned<xcb_get_window_attributes_reply_t> state(
            xcb_get_window_attributes_reply(x_, xcb_get_window_attributes(x_, window), nullptr));
        if (size && place && state && state->map_state == XCB_MAP_STATE_VIEWABLE) {
            found.push_back({window, place->dst_x, place->dst_y, size->width, size->height,
                             state->override_redirect != 0});
            collect(window, found);
        }
    }
}

std::vector<std::uint8_t> XClient::picture(const TopWindow& window) {
    const auto image = needed(xcb_get_image_reply(
        x_,
        xcb_get_image(x_, XCB_IMAGE_FORMAT_Z_PIXMAP, root_, static_cast<std::int16_t>(window.x),
                      static_cast<std::int16_t>(window.y), static_cast<std::uint16_t>(window.width),
                      static_cast<std::uint16_t>(window.height), ~0U),
        nullptr));
    const auto* const pixels = xcb_get_image_data(image.get());
    return {pixels, pixels + xcb_get_image_data_length(image.get())};
}

void XClient::askToClose(xcb_window_t window) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atom("WM_PROTOCOLS");
    message.data.data32[0] = atom("WM_DELETE_WINDOW");
    xcb_send_event(x_, 0, window, 0, reinterpret_cast<const char*>(&message));
    synchronize();
}

std::string XClient::nameOf(xcb_window_t window) {
    const Owned<xcb_get_property_reply_t> name(xcb_get_property_reply(
        x_, xcb_get_property(x_, 0, window, atom("_NET_WM_NAME"), atom("UTF8_STRING"), 0, 100),
        nullptr));
    return name ? std::string(static_cast<const char*>(xcb_get_property_value(name.get())),
                              static_cast<std::size_t>(xcb_get_property_value_length(name.get())))
                : std::string();
}

bool XClient::hasProperty(xcb_window_t window, const std::string& name) {
    const Owned<xcb_get_property_reply_t> property(xcb_get_property_reply(
        x_, xcb_get_property(x_, 0, window, atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, 1), nullptr));
    return property && property->type != XCB_NONE;
}

void XClient::disconnect(xcb_window_t window) {
    xcb_kill_client(x_, window);
    synchronize();
}

std::uint32_t XClient::number(xcb_window_t window, const std::string& property) {
    const auto reply = needed(xcb_get_property_reply(
        x_, xcb_get_property(x_, 0, window, atom(property), XCB_GET_PROPERTY_TYPE_ANY, 0, 1),
        nullptr));
    return reply->format == 32 && reply->value_len > 0
               ? *static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()))
               : 0;
}

void XClient::countWrites(xcb_window_t window) {
    writes_.clear();
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(x_, window, XCB_CW_EVENT_MASK, &mask);
    synchronize();
}

int XClient::writesTo(const std::string& property) {
    const auto name = atom(property); // the reply arrives after all earlier events
    while (const Owned<xcb_generic_event_t> event{xcb_poll_for_event(x_)}) {
        if ((event->response_type & 0x7f) == XCB_PROPERTY_NOTIFY) {
            ++writes_[reinterpret_cast<const xcb_property_notify_event_t&>(*event).atom];
        }
    }
    return writes_[name];
}

void XClient::becomeCompositor() {
    const auto window = xcb_generate_id(x_);
    xcb_create_window(x_, XCB_COPY_FROM_PARENT, window, root_, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_set_selection_owner(x_, window, atom("_NET_WM_CM_S0"), XCB_CURRENT_TIME);
    synchronize();
}

void XClient::becomeSystemTray() {
    const auto window = xcb_generate_id(x_);
    xcb_create_window(x_, XCB_COPY_FROM_PARENT, window, root_, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    const auto selection = atom("_NET_SYSTEM_TRAY_S0");
    xcb_set_selection_owner(x_, window, selection, XCB_CURRENT_TIME);
    xcb_client_message_event_t announcement{};
    announcement.response_type = XCB_CLIENT_MESSAGE;
    announcement.format = 32;
    announcement.window = root_;
    announcement.type = atom("MANAGER");
    announcement.data.data32[0] = XCB_CURRENT_TIME;
    announcement.data.data32[1] = selection;
    announcement.data.data32[2] = window;
    xcb_send_event(x_, 0, root_, XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&announcement));
    synchronize();
}

void XClient::setRootProperty(const std::string& name, std::uint8_t format,
                              const std::vector<std::uint8_t>& bytes) {
    xcb_change_property(x_, XCB_PROP_MODE_REPLACE, root_, atom(name), XCB_ATOM_CARDINAL, format,
                        static_cast<std::uint32_t>(bytes.size() / (format / 8)), bytes.data());
    synchronize();
}

std::vector<std::uint8_t> XClient::rootProperty(const std::string& name) {
    const auto reply = needed(xcb_get_property_reply(
        x_, xcb_get_property(x_, 0, root_, atom(name), XCB_ATOM_ANY, 0, 1U << 22), nullptr));
    const auto* const bytes = static_cast<const std::uint8_t*>(xcb_get_property_value(reply.get()));
    return {bytes, bytes + xcb_get_property_value_length(reply.get())};
}

void XClient::setRootText(const std::string& name, const std::string& text) {
    xcb_change_property(x_, XCB_PROP_MODE_REPLACE, root_, atom(name), XCB_ATOM_STRING, 8,
                        static_cast<std::uint32_t>(text.size()), text.data());
    synchronize();
}

void XClient::setOutputProperty(const std::string& name, const std::vector<std::uint32_t>& numbers,
                                xcb_atom_t type) {
    const auto resources = needed(xcb_randr_get_screen_resources_current_reply(
        x_, xcb_randr_get_screen_resources_current(x_, root_), nullptr));
    const auto* const outputs = xcb_randr_get_screen_resources_current_outputs(resources.get());
    for (int i = 0; i < resources->num_outputs; ++i) {
        xcb_randr_change_output_property(
            x_, outputs[i], atom(name), type, 32, XCB_PROP_MODE_REPLACE,
            static_cast<std::uint32_t>(numbers.size()), numbers.data());
    }
    synchronize();
}

std::vector<std::uint32_t> XClient::outputProperty(const std::string& name,
                                                   xcb_randr_output_t output) {
    const auto reply = needed(xcb_randr_get_output_property_reply(
        x_, xcb_randr_get_output_property(x_, output, atom(name), XCB_ATOM_INTEGER, 0, 100, 0, 0),
        nullptr));
    const auto* const numbers =
        reinterpret_cast<const std::uint32_t*>(xcb_randr_get_output_property_data(reply.get()));
    return {numbers, numbers + reply->num_items};
}

std::vector<xcb_randr_output_t> XClient::activeOutputs() {
    const auto resources = needed(xcb_randr_get_screen_resources_current_reply(
        x_, xcb_randr_get_screen_resources_current(x_, root_), nullptr));
    const auto* const outputs = xcb_randr_get_screen_resources_current_outputs(resources.get());
    std::vector<xcb_randr_output_t> active(outputs, outputs + resources->num_outputs);
    std::erase_if(active, [this](xcb_randr_output_t output) { return crtcOf(output) == XCB_NONE; });
    return active;
}

void XClient::synchronize() {
    needed(xcb_get_input_focus_reply(x_, xcb_get_input_focus(x_), nullptr));
}

xcb_atom_t XClient::atom(const std::string& name) {
    return needed(xcb_intern_atom_reply(
                      x_,
                      xcb_intern_atom(x_, 0, static_cast<std::uint16_t>(name.size()), name.c_str()),
                      nullptr))
        ->atom;
}

std::vector<XClient::TopWindow> XClient::topWindows() {
    const auto tree = needed(xcb_query_tree_reply(x_, xcb_query_tree(x_, root_), nullptr));
    std::vector<TopWindow> found;
    for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
        const auto window = xcb_query_tree_children(tree.get())[i];
        const Owned<xcb_get_geometry_reply_t> place(
            xcb_get_geometry_reply(x_, xcb_get_geometry(x_, window), nullptr));
        const Owned<xcb_get_window_attributes_reply_t> state(
            xcb_get_window_attributes_reply(x_, xcb_get_window_attributes(x_, window), nullptr));
        if (place && state && state->map_state == XCB_MAP_STATE_VIEWABLE) {
            found.push_back({window, place->x, place->y, place->width, place->height,
                             state->override_redirect != 0});
        }
    }
    return found;
}

std::vector<xcb_window_t> XClient::windowsOfSize(int width, int height) {
    std::vector<xcb_window_t> found;
    for (const auto& window : topWindows()) {
        if (window.width == width && window.height == height) {
            found.push_back(window.id);
        }
    }
    return found;
}

std::vector<XClient::TopWindow> XClient::activeFrames() {
    std::vector<TopWindow> frames;
    for (const auto crtc : activeCrtcs()) {
        const auto info = needed(xcb_randr_get_crtc_info_reply(
            x_, xcb_randr_get_crtc_info(x_, crtc, XCB_CURRENT_TIME), nullptr));
        frames.push_back({crtc, info->x, info->y, info->width, info->height, false});
    }
    return frames;
}

bool XClient::hasWindowManager() {
    const auto check = needed(xcb_get_property_reply(
        x_, xcb_get_property(x_, 0, root_, atom("_NET_SUPPORTING_WM_CHECK"), XCB_ATOM_WINDOW, 0, 1),
        nullptr));
    return check->value_len == 1;
}

xcb_window_t XClient::openWindow(bool fullScreen) {
    const auto window = xcb_generate_id(x_);
    xcb_create_window(x_, XCB_COPY_FROM_PARENT, window, root_, 50, 60, 300, 200, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    if (fullScreen) {
        const auto state = atom("_NET_WM_STATE_FULLSCREEN");
        xcb_change_property(x_, XCB_PROP_MODE_REPLACE, window, atom("_NET_WM_STATE"), XCB_ATOM_ATOM,
                            32, 1, &state);
    }
    // A window manager that is still starting may lose the request.
    const auto isShown = [&] {
        xcb_map_window(x_, window);
        return needed(xcb_get_window_attributes_reply(x_, xcb_get_window_attributes(x_, window),
                                                      nullptr))
                   ->map_state == XCB_MAP_STATE_VIEWABLE;
    };
    if (!waitUntil(isShown)) {
        throw std::runtime_error("the window was not shown");
    }
    return window;
}

xcb_window_t XClient::focus() {
    return needed(xcb_get_input_focus_reply(x_, xcb_get_input_focus(x_), nullptr))->focus;
}

void XClient::setFocus(xcb_window_t window) {
    xcb_set_input_focus(x_, XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
    synchronize();
}

XClient::Ramp calibration(std::size_t size, double exponent, std::array<double, 3> tops) {
    XClient::Ramp ramp;
    for (std::size_t channel = 0; channel < ramp.size(); ++channel) {
        for (std::size_t i = 0; i < size; ++i) {
            const auto level = static_cast<double>(i) / static_cast<double>(size - 1);
            ramp[channel].push_back(static_cast<std::uint16_t>(
                std::lround(65535 * tops[channel] * std::pow(level, exponent))));
        }
    }
    return ramp;
}

} // namespace nocta
