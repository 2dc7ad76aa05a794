#include "backends/linux/x11/FactoryRamps.h"

#include "backends/linux/x11/XcbReply.h"

#include <span>
#include <string_view>

namespace nocta {

namespace {

constexpr std::string_view propertyName = "_NOCTA_FACTORY_RAMPS";

// The property is a list of 16-bit numbers, one record after the other: the CRTC's upper and lower
// half, the size, and size levels each of red, green and blue.
constexpr std::size_t headerLength = 3;

/// In 32-bit units: more than all the CRTCs of a server can need.
constexpr std::uint32_t longestProperty = 1U << 22;

xcb_atom_t property(xcb_connection_t* connection) {
    const XcbReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, propertyName.size(), propertyName.data()),
        nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

} // namespace

FactoryRamps readFactoryRamps(xcb_connection_t* connection, xcb_window_t root) {
    const XcbReply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(connection,
                               xcb_get_property(connection, 0, root, property(connection),
                                                XCB_ATOM_CARDINAL, 0, longestProperty),
                               nullptr));
    FactoryRamps ramps;
    if (!reply || reply->format != 16) {
        return ramps;
    }
    auto rest = std::span(static_cast<const std::uint16_t*>(xcb_get_property_value(reply.get())),
                          reply->value_len);
    while (rest.size() > headerLength) {
        const auto crtc = static_cast<xcb_randr_crtc_t>(rest[0]) << 16 | rest[1];
        const auto size = std::size_t{rest[2]};
        rest = rest.subspan(headerLength);
        if (size == 0 || rest.size() < 3 * size) {
            break;
        }
        const auto channel = [&](std::size_t index) {
            auto const levels = rest.subspan(index * size, size);
            return std::vector<std::uint16_t>(levels.begin(), levels.end());
        };
        ramps.insert_or_assign(
            crtc, GammaRamp{.red = channel(0), .green = channel(1), .blue = channel(2)});
        rest = rest.subspan(3 * size);
    }
    return ramps;
}

void keepFactoryRamp(xcb_connection_t* connection, xcb_window_t root, xcb_randr_crtc_t crtc,
                     const GammaRamp& ramp) {
    std::vector<std::uint16_t> record = {static_cast<std::uint16_t>(crtc >> 16),
                                         static_cast<std::uint16_t>(crtc),
                                         static_cast<std::uint16_t>(ramp.size())};
    for (const auto* const channel : {&ramp.red, &ramp.green, &ramp.blue}) {
        record.insert(record.end(), channel->begin(), channel->end());
    }
    xcb_change_property(connection, XCB_PROP_MODE_APPEND, root, property(connection),
                        XCB_ATOM_CARDINAL, 16, static_cast<std::uint32_t>(record.size()),
                        record.data());
}

void giveBack(xcb_connection_t* connection, xcb_window_t root, const FactoryRamps& ramps) {
    for (const auto& [crtc, ramp] : ramps) {
        xcb_randr_set_crtc_gamma(connection, crtc, static_cast<std::uint16_t>(ramp.size()),
                                 ramp.red.data(), ramp.green.data(), ramp.blue.data());
    }
    xcb_delete_property(connection, root, property(connection));
}

} // namespace nocta
