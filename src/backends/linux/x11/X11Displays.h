#pragma once

#include "backends/linux/x11/X11Connection.h"
#include "base/NotificationCenter.h"
#include "platform/Displays.h"

#include <xcb/randr.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace nocta {

/// The outputs of an X server that have a CRTC, from RandR. A display's ID is its output's XID, and
/// the primary output is the main display. A connector of type eDP, LVDS or DSI is built in, and so
/// is an output that the server marks as a panel. The list is reread only when the server reports a
/// change.
class X11Displays final : public Displays {
public:
    X11Displays(X11Connection& connection, RunLoop& runLoop,
                NotificationCenter& notificationCenter);

    Status getActiveDisplayList(std::span<DisplayId> ids, std::uint32_t& count) override;
    Rect displayBounds(DisplayId display) override;
    bool displayIsMain(DisplayId display) override;
    bool displayIsBuiltin(DisplayId display) override;
    std::optional<DisplayMode> displayCopyDisplayMode(DisplayId display) override;

    /// The IDs of all displays, for the other parts of this backend.
    std::vector<DisplayId> ids() const;

    /// The name of a display's output, which RandR takes from the connector: "eDP-1", "HDMI-2".
    std::string outputName(DisplayId display) const;

    /// The CRTC that drives a display, or XCB_NONE.
    xcb_randr_crtc_t crtcOf(DisplayId display) const;

    /// Whether the server only emulates RandR, as one inside a Wayland session does: its gamma
    /// ramps can be written but have no effect.
    bool isEmulation() const;

private:
    struct Output {
        DisplayId id = 0;
        xcb_randr_crtc_t crtc = XCB_NONE;
        std::string name;
        bool isPrimary = false;
        bool isBuiltIn = false;
        Rect bounds;
        std::optional<DisplayMode> mode;
        bool operator==(const Output&) const = default;
    };

    std::vector<Output> readOutputs() const;
    bool isPanel(xcb_randr_output_t output) const;
    void refresh();
    const Output* find(DisplayId display) const;

    X11Connection& connection_;
    NotificationCenter& notificationCenter_;
    std::uint8_t firstEvent_ = 0;
    std::vector<Output> outputs_;
    Deferred refresh_;
    Subscription events_;
};

} // namespace nocta
