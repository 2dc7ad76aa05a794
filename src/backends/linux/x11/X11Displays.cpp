#include "backends/linux/x11/X11Displays.h"

#include "backends/linux/backlight/ConnectorName.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <utility>

namespace nocta {

namespace {

template <class Reply>
std::string nameOf(const Reply& output) {
    return {reinterpret_cast<const char*>(xcb_randr_get_output_info_name(&output)),
            output.name_len};
}

std::span<const xcb_randr_output_t>
outputsOf(const xcb_randr_get_screen_resources_current_reply_t& resources) {
    return {xcb_randr_get_screen_resources_current_outputs(&resources), resources.num_outputs};
}

std::optional<DisplayMode> modeOf(const xcb_randr_get_screen_resources_current_reply_t& resources,
                                  xcb_randr_mode_t mode) {
    const auto modes =
        std::span(xcb_randr_get_screen_resources_current_modes(&resources), resources.num_modes);
    const auto found = std::ranges::find(modes, mode, &xcb_randr_mode_info_t::id);
    return found == modes.end() ? std::nullopt
                                : std::optional(DisplayMode{found->width, found->height});
}

} // namespace

X11Displays::X11Displays(X11Connection& connection, RunLoop& runLoop,
                         NotificationCenter& notificationCenter)
    : SessionDisplays(notificationCenter), connection_(connection),
      refresh_(runLoop, [this] { refresh(); }) {
    auto* const x = connection_.get();
    const auto* const extension = findExtension(x, xcb_randr_id);
    const XcbReply<xcb_randr_query_version_reply_t> version(
        extension != nullptr
            ? xcb_randr_query_version_reply(x, xcb_randr_query_version(x, 1, 5), nullptr)
            : nullptr);
    if (!version || std::pair(version->major_version, version->minor_version) < std::pair(1U, 3U)) {
        return;
    }
    firstEvent_ = extension->first_event;
    xcb_randr_select_input(x, connection_.root(),
                           XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                               XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
    publish(readDisplays());
    events_ = connection_.observeEvents([this](const X11Connection::Event& event) {
        auto const type = event.response_type & 0x7f;
        if (type == firstEvent_ + XCB_RANDR_SCREEN_CHANGE_NOTIFY ||
            type == firstEvent_ + XCB_RANDR_NOTIFY) {
            refresh_.request(); // one change sends several events
        }
    });
    connection_.finishTurn();
}

bool X11Displays::isEmulation() const {
    auto* const x = connection_.get();
    const auto property = connection_.existingAtom("RANDR Emulation");
    const XcbReply<xcb_randr_get_screen_resources_current_reply_t> resources(
        property == XCB_ATOM_NONE
            ? nullptr
            : xcb_randr_get_screen_resources_current_reply(
                  x, xcb_randr_get_screen_resources_current(x, connection_.root()), nullptr));
    return resources && std::ranges::any_of(outputsOf(*resources), [&](xcb_randr_output_t output) {
               XcbReply<xcb_randr_get_output_property_reply_t> const reply(
                   xcb_randr_get_output_property_reply(
                       x,
                       xcb_randr_get_output_property(x, output, property, XCB_ATOM_ANY, 0, 1, 0, 0),
                       nullptr));
               return reply && reply->type != XCB_ATOM_NONE;
           });
}

bool X11Displays::hasRamps() const {
    if (firstEvent_ == 0) {
        return false; // the server has no RandR 1.3
    }
    auto* const x = connection_.get();
    const XcbReply<xcb_randr_get_screen_resources_current_reply_t> resources(
        xcb_randr_get_screen_resources_current_reply(
            x, xcb_randr_get_screen_resources_current(x, connection_.root()), nullptr));
    return resources && std::ranges::any_of(
                            std::span(xcb_randr_get_screen_resources_current_crtcs(resources.get()),
                                      resources->num_crtcs),
                            [x](xcb_randr_crtc_t crtc) {
                                const XcbReply<xcb_randr_get_crtc_gamma_size_reply_t> size(
                                    xcb_randr_get_crtc_gamma_size_reply(
                                        x, xcb_randr_get_crtc_gamma_size(x, crtc), nullptr));
                                return size && size->size > 0;
                            });
}

std::vector<SessionDisplays::Display> X11Displays::readDisplays() const {
    auto* const x = connection_.get();
    const auto root = connection_.root();
    const auto primaryRequest = xcb_randr_get_output_primary(x, root);
    const auto resourcesRequest = xcb_randr_get_screen_resources_current(x, root);
    const XcbReply<xcb_randr_get_output_primary_reply_t> primary(
        xcb_randr_get_output_primary_reply(x, primaryRequest, nullptr));
    const XcbReply<xcb_randr_get_screen_resources_current_reply_t> resources(
        xcb_randr_get_screen_resources_current_reply(x, resourcesRequest, nullptr));
    if (!resources) {
        return {};
    }

    const auto ids = std::span(xcb_randr_get_screen_resources_current_outputs(resources.get()),
                               resources->num_outputs);
    std::vector<xcb_randr_get_output_info_cookie_t> infoRequests;
    std::ranges::transform(ids, std::back_inserter(infoRequests), [&](xcb_randr_output_t id) {
        return xcb_randr_get_output_info(x, id, resources->config_timestamp);
    });

    std::vector<Display> displays;
    std::vector<xcb_randr_get_crtc_info_cookie_t> crtcRequests;
    for (std::size_t i = 0; i < ids.size(); ++i) {
        const XcbReply<xcb_randr_get_output_info_reply_t> info(
            xcb_randr_get_output_info_reply(x, infoRequests[i], nullptr));
        if (!info || info->crtc == XCB_NONE) {
            continue; // unplugged in the meantime, or off
        }
        const auto name = nameOf(*info);
        displays.push_back({.id = ids[i],
                            .name = name,
                            .isMain = primary && primary->output == ids[i],
                            .isBuiltIn = ConnectorName(name).isBuiltIn() || isPanel(ids[i]),
                            .bounds = {},
                            .mode = {},
                            .crtc = info->crtc});
        crtcRequests.push_back(xcb_randr_get_crtc_info(x, info->crtc, resources->config_timestamp));
    }
    for (std::size_t i = 0; i < displays.size(); ++i) {
        const XcbReply<xcb_randr_get_crtc_info_reply_t> crtc(
            xcb_randr_get_crtc_info_reply(x, crtcRequests[i], nullptr));
        if (crtc) {
            displays[i].bounds = {static_cast<double>(crtc->x), static_cast<double>(crtc->y),
                                  static_cast<double>(crtc->width),
                                  static_cast<double>(crtc->height)};
            displays[i].mode = modeOf(*resources, crtc->mode);
        }
    }
    return displays;
}

/// Some drivers name a laptop's panel like any other output, and mark it as a panel with a
/// property.
bool X11Displays::isPanel(xcb_randr_output_t output) const {
    auto* const x = connection_.get();
    const auto property = connection_.existingAtom("ConnectorType");
    const auto panel = connection_.existingAtom("Panel");
    if (property == XCB_ATOM_NONE || panel == XCB_ATOM_NONE) {
        return false;
    }
    const XcbReply<xcb_randr_get_output_property_reply_t> type(xcb_randr_get_output_property_reply(
        x, xcb_randr_get_output_property(x, output, property, XCB_ATOM_ATOM, 0, 1, 0, 0), nullptr));
    if (!type || type->type != XCB_ATOM_ATOM || type->format != 32 || type->num_items != 1) {
        return false;
    }
    xcb_atom_t value = XCB_ATOM_NONE;
    std::memcpy(&value, xcb_randr_get_output_property_data(type.get()), sizeof value);
    return value == panel;
}

void X11Displays::refresh() {
    auto displays = readDisplays();
    connection_.finishTurn();
    publish(std::move(displays));
}

} // namespace nocta
