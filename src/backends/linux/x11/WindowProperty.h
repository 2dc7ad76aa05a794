#pragma once

#include "backends/linux/x11/X11Connection.h"

#include <QString>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace nocta {

/// A property of another client's window. The constructor sends the request, and reading waits for
/// the reply, so several requests can be sent before the first wait. Read the property exactly
/// once. A window that is gone has no properties, and a property of an unexpected type counts as
/// missing.
class WindowProperty {
public:
    /// `length` is the maximum to read, in units of 32 bits.
    WindowProperty(const X11Connection& connection, xcb_window_t window, xcb_atom_t property,
                   xcb_atom_t type, std::uint32_t length)
        : connection_(connection), type_(type),
          request_(xcb_get_property(connection.get(), 0, window, property, type, 0, length)) {}

    std::optional<std::vector<std::uint32_t>> numbers() const {
        const auto reply = answer();
        if (!reply || reply->type != type_ || reply->format != 32) {
            return std::nullopt;
        }
        const auto* const numbers =
            static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
        return std::vector(numbers, numbers + reply->value_len);
    }

    /// The strings in the property, which are separated by null characters.
    std::vector<std::string> texts() const {
        const auto reply = answer();
        if (!reply || reply->format != 8) {
            return {};
        }
        const auto* const bytes = static_cast<const char*>(xcb_get_property_value(reply.get()));
        const auto length = static_cast<qsizetype>(reply->value_len);
        const auto all = reply->type == XCB_ATOM_STRING ? QString::fromLatin1(bytes, length)
                                                        : QString::fromUtf8(bytes, length);
        std::vector<std::string> texts;
        for (const auto& text : all.split(QChar::Null)) {
            texts.push_back(text.toStdString());
        }
        return texts;
    }

private:
    XcbReply<xcb_get_property_reply_t> answer() const {
        return XcbReply<xcb_get_property_reply_t>(
            xcb_get_property_reply(connection_.get(), request_, nullptr));
    }

    const X11Connection& connection_;
    xcb_atom_t type_;
    xcb_get_property_cookie_t request_;
};

} // namespace nocta
