#pragma once

#include "backends/linux/x11/XcbReply.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace nocta {

/// A list of numbers that is kept on an X server itself, in a property of a root window, so that it
/// outlives whoever wrote it. Each function sends its requests and flushes nothing, except that
/// reading waits for the answer.
template <class Number>
class RootProperty {
public:
    RootProperty(xcb_connection_t* connection, xcb_window_t root, std::string_view name)
        : connection_(connection), root_(root) {
        const XcbReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
            connection,
            xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data()),
            nullptr));
        property_ = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    }

    /// Empty where there is no such property.
    std::vector<Number> read() const {
        const XcbReply<xcb_get_property_reply_t> reply(
            xcb_get_property_reply(connection_,
                                   xcb_get_property(connection_, 0, root_, property_,
                                                    XCB_ATOM_CARDINAL, 0, longestProperty),
                                   nullptr));
        if (!reply || reply->format != format) {
            return {};
        }
        const auto* const numbers = static_cast<const Number*>(xcb_get_property_value(reply.get()));
        return {numbers, numbers + reply->value_len};
    }

    void append(std::span<const Number> numbers) const {
        xcb_change_property(connection_, XCB_PROP_MODE_APPEND, root_, property_, XCB_ATOM_CARDINAL,
                            format, static_cast<std::uint32_t>(numbers.size()), numbers.data());
    }

    void remove() const { xcb_delete_property(connection_, root_, property_); }

private:
    static constexpr std::uint8_t format = 8 * sizeof(Number);

    /// In 32-bit units: more than all the displays of a server can need.
    static constexpr std::uint32_t longestProperty = 1U << 22;

    xcb_connection_t* connection_;
    xcb_window_t root_;
    xcb_atom_t property_ = XCB_ATOM_NONE;
};

} // namespace nocta
