#include "support/XClient.h"

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

/// A key code that keyboards leave free.
constexpr xcb_keycode_t spareKey = 248;

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

void XClient::press(xcb_keysym_t symbol) {
    auto* const symbols = xcb_key_symbols_alloc(x_);
    const Owned<xcb_keycode_t> codes(xcb_key_symbols_get_keycode(symbols, symbol));
    auto code = codes == nullptr ? xcb_keycode_t{0} : *codes;
    xcb_key_symbols_free(symbols);
    if (code == 0) {
        code = spareKey + static_cast<xcb_keycode_t>(symbol & 1);
        xcb_change_keyboard_mapping(x_, 1, code, 1, &symbol);
    }
    xcb_test_fake_input(x_, XCB_KEY_PRESS, code, XCB_CURRENT_TIME, root_, 0, 0, 0);
    xcb_test_fake_input(x_, XCB_KEY_RELEASE, code, XCB_CURRENT_TIME, root_, 0, 0, 0);
    needed(xcb_get_input_focus_reply(x_, xcb_get_input_focus(x_), nullptr));
}

void XClient::setOutputProperty(const std::string& name, std::uint32_t value) {
    const auto atom = needed(xcb_intern_atom_reply(
        x_, xcb_intern_atom(x_, 0, static_cast<std::uint16_t>(name.size()), name.c_str()),
        nullptr));
    const auto resources = needed(xcb_randr_get_screen_resources_current_reply(
        x_, xcb_randr_get_screen_resources_current(x_, root_), nullptr));
    const auto* const outputs = xcb_randr_get_screen_resources_current_outputs(resources.get());
    for (int i = 0; i < resources->num_outputs; ++i) {
        if (crtcOf(outputs[i]) != XCB_NONE) {
            xcb_randr_change_output_property(x_, outputs[i], atom->atom, XCB_ATOM_INTEGER, 32,
                                             XCB_PROP_MODE_REPLACE, 1, &value);
        }
    }
    needed(xcb_get_input_focus_reply(x_, xcb_get_input_focus(x_), nullptr));
}

std::vector<xcb_window_t> XClient::windowsOfSize(int width, int height) {
    const auto tree = needed(xcb_query_tree_reply(x_, xcb_query_tree(x_, root_), nullptr));
    std::vector<xcb_window_t> found;
    for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
        const auto window = xcb_query_tree_children(tree.get())[i];
        const Owned<xcb_get_geometry_reply_t> size(
            xcb_get_geometry_reply(x_, xcb_get_geometry(x_, window), nullptr));
        const Owned<xcb_get_window_attributes_reply_t> state(
            xcb_get_window_attributes_reply(x_, xcb_get_window_attributes(x_, window), nullptr));
        if (size && state && state->map_state == XCB_MAP_STATE_VIEWABLE && size->width == width &&
            size->height == height) {
            found.push_back(window);
        }
    }
    return found;
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
