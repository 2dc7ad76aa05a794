#include "backends/linux/x11/RootProperty.h"

#include "backends/linux/x11/XcbRequests.h"

namespace nocta {

namespace {

// The property contains the version, the checksum and the numbers, 32 bits each.
constexpr std::uint32_t version = 1; // increase it when the meaning of the numbers changes
constexpr std::size_t headerLength = 2;
constexpr std::uint8_t format = 32;

/// In numbers. This is more than a server's displays can need.
constexpr std::uint32_t maxLength = 1U << 22;

/// The 32-bit FNV-1a hash of the numbers' bytes, lowest byte of each first.
std::uint32_t checksumOf(std::span<const std::uint32_t> numbers) {
    std::uint32_t hash = 0x811c9dc5;
    for (const auto number : numbers) {
        for (int shift = 0; shift < 32; shift += 8) {
            hash = (hash ^ (number >> shift & 0xff)) * 0x01000193;
        }
    }
    return hash;
}

} // namespace

RootProperty::RootProperty(xcb_connection_t* connection, xcb_window_t root, std::string_view name)
    : connection_(connection), root_(root), property_(internAtom(connection, name)) {}

std::vector<std::uint32_t> RootProperty::read() const {
    const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection_,
        xcb_get_property(connection_, 0, root_, property_, XCB_ATOM_CARDINAL, 0, maxLength),
        nullptr));
    if (!reply || reply->format != format || reply->value_len < headerLength) {
        return {};
    }
    const auto content = std::span(
        static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get())), reply->value_len);
    const auto numbers = content.subspan(headerLength);
    if (content[0] != version || content[1] != checksumOf(numbers)) {
        return {};
    }
    return {numbers.begin(), numbers.end()};
}

void RootProperty::write(std::span<const std::uint32_t> numbers) const {
    if (numbers.empty()) {
        xcb_delete_property(connection_, root_, property_);
        return;
    }
    std::vector<std::uint32_t> content = {version, checksumOf(numbers)};
    content.insert(content.end(), numbers.begin(), numbers.end());
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, root_, property_, XCB_ATOM_CARDINAL,
                        format, static_cast<std::uint32_t>(content.size()), content.data());
}

} // namespace nocta
