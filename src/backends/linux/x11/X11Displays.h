#pragma once

#include "backends/linux/SessionDisplays.h"
#include "backends/linux/x11/X11Connection.h"

#include <xcb/randr.h>

#include <cstdint>
#include <vector>

namespace nocta {

/// The outputs of an X server that have a CRTC, from RandR. A display's ID is its output's XID, and
/// the primary output is the main display. A connector of type eDP, LVDS or DSI is built in, and so
/// is an output that the server marks as a panel. The list is reread only when the server reports a
/// change. Without RandR 1.3 there are no displays.
class X11Displays final : public SessionDisplays {
public:
    X11Displays(X11Connection& connection, RunLoop& runLoop,
                NotificationCenter& notificationCenter);

    /// The CRTC that drives a display, or XCB_NONE.
    xcb_randr_crtc_t crtcOf(DisplayId display) const {
        return find(display).crtc.value_or(XCB_NONE);
    }

    /// Whether the server only emulates RandR, as an X server inside a Wayland session does. On
    /// such a server, gamma ramps can be written but have no effect.
    bool isEmulation() const;

    /// Whether the server has gamma ramps. Servers in virtual machines and over the network may
    /// have none.
    bool hasRamps() const;

private:
    std::vector<Display> readDisplays() const;
    bool isPanel(xcb_randr_output_t output) const;
    void refresh();

    X11Connection& connection_;
    std::uint8_t firstEvent_ = 0;
    Deferred refresh_;
    Subscription events_;
};

} // namespace nocta
