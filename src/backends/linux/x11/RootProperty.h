#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace nocta {

/// A list of numbers that is kept on the X server itself, in a property of a root window, so that
/// it outlives the process that wrote it. Any client may write to this property, so it contains a
/// version and a checksum, and `read` ignores a property that does not match them. Each function
/// sends its requests without flushing; only reading waits for the answer.
class RootProperty {
public:
    RootProperty(xcb_connection_t* connection, xcb_window_t root, std::string_view name);

    /// The numbers that `write` stored; empty if there are none or the property is invalid.
    std::vector<std::uint32_t> read() const;

    /// Replaces all numbers. An empty list removes the property.
    void write(std::span<const std::uint32_t> numbers) const;

private:
    xcb_connection_t* connection_;
    xcb_window_t root_;
    xcb_atom_t property_;
};

} // namespace nocta
