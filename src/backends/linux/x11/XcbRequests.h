#pragma once

#include "backends/linux/x11/XcbReply.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <string_view>

namespace nocta {

// X requests that both the program and the guardian use. Each call waits for the server.

/// Returns XCB_ATOM_NONE if the server is gone, or if the atom does not exist and `onlyIfExists` is
/// set.
inline xcb_atom_t internAtom(xcb_connection_t* connection, std::string_view name,
                             bool onlyIfExists = false) {
    const auto request = xcb_intern_atom(connection, onlyIfExists ? 1 : 0,
                                         static_cast<std::uint16_t>(name.size()), name.data());
    const XcbReply<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(connection, request, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

/// The window that owns a selection, or XCB_NONE.
inline xcb_window_t selectionOwner(xcb_connection_t* connection, xcb_atom_t selection) {
    const XcbReply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        connection, xcb_get_selection_owner(connection, selection), nullptr));
    return reply ? reply->owner : xcb_window_t{XCB_NONE};
}

/// The screen with the given number, or else the last screen.
inline xcb_screen_t* screenOf(xcb_connection_t* connection, int number) {
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; number > 0 && screens.rem > 1; --number) {
        xcb_screen_next(&screens);
    }
    return screens.data;
}

/// Returns null if the server does not have the extension.
inline const xcb_query_extension_reply_t* findExtension(xcb_connection_t* connection,
                                                        xcb_extension_t& extension) {
    const auto* const data = xcb_get_extension_data(connection, &extension);
    return data != nullptr && data->present != 0 ? data : nullptr;
}

} // namespace nocta
