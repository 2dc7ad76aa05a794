#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace nocta {

/// A list of numbers that is kept on an X server itself, in a property of a root window, so that it
/// outlives whoever wrote it. Any client may write to such a property, so a version and a checksum
/// go with the numbers, and what does not fit them is not read. Each function sends its requests
/// and flushes nothing, except that reading waits for the answer.
class RootProperty {
public:
    RootProperty(xcb_connection_t* connection, xcb_window_t root, std::string_view name);

    /// What `write` has kept; empty where there is nothing, or something else.
    std::vector<std::uint32_t> read() const;

    /// Replaces all of it. No numbers remove the property.
    void write(std::span<const std::uint32_t> numbers) const;

private:
    xcb_connection_t* connection_;
    xcb_window_t root_;
    xcb_atom_t property_;
};

} // namespace nocta
