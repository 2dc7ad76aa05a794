#pragma once

#include "backends/linux/SessionDisplays.h"
#include "backends/linux/x11/X11Applications.h"
#include "backends/linux/x11/X11Connection.h"
#include "base/CallbackList.h"
#include "base/Deferred.h"
#include "platform/Workspace.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

namespace nocta {

/// The applications of an X11 session, as reported by its window manager through EWMH. Everything
/// is read on demand, without polling. Without a window manager there is no frontmost application,
/// and windows cannot be listed.
class X11Workspace final : public Workspace {
public:
    /// `processes` is the folder where the kernel lists the processes of the system.
    X11Workspace(X11Connection& connection, SessionDisplays& displays, RunLoop& runLoop,
                 std::function<bool()> shouldReduceMotion,
                 std::filesystem::path processes = "/proc");

    Subscription observeDidActivateApplication(
        std::function<void(const std::optional<RunningApplication>&)> callback) override;
    std::optional<RunningApplication> frontmostApplication() override;
    std::optional<std::vector<WindowInfo>> copyWindowInfo() override;
    std::optional<Rect> mainScreenFrame() override;
    bool accessibilityDisplayShouldReduceMotion() override { return shouldReduceMotion_(); }

private:
    struct Atoms {
        const X11Connection& connection;
        xcb_atom_t supportingWmCheck = connection.atom("_NET_SUPPORTING_WM_CHECK");
        xcb_atom_t activeWindow = connection.atom("_NET_ACTIVE_WINDOW");
        xcb_atom_t clientListStacking = connection.atom("_NET_CLIENT_LIST_STACKING");
        xcb_atom_t currentDesktop = connection.atom("_NET_CURRENT_DESKTOP");
        xcb_atom_t wmDesktop = connection.atom("_NET_WM_DESKTOP");
        xcb_atom_t wmState = connection.atom("_NET_WM_STATE");
        xcb_atom_t wmStateHidden = connection.atom("_NET_WM_STATE_HIDDEN");
        xcb_atom_t wmWindowType = connection.atom("_NET_WM_WINDOW_TYPE");
        xcb_atom_t wmWindowTypeDesktop = connection.atom("_NET_WM_WINDOW_TYPE_DESKTOP");
    };

    void noticeActivation();
    std::optional<std::vector<xcb_window_t>> managedWindows(xcb_atom_t property,
                                                            std::uint32_t most) const;
    xcb_window_t activeWindow() const;
    Rect frameOf(xcb_window_t window) const;
    std::vector<Rect> screenFrames() const;

    X11Connection& connection_;
    SessionDisplays& displays_;
    std::function<bool()> shouldReduceMotion_;
    X11Applications applications_;
    Atoms atoms_{connection_};
    std::optional<RunningApplication> frontmost_; ///< as last reported
    CallbackList<std::optional<RunningApplication>> activated_;
    Deferred noticeActivation_;
    Subscription events_;
};

} // namespace nocta
