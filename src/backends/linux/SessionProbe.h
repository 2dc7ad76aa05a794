#pragma once

#include "backends/linux/GrayscaleFilter.h"
#include "backends/linux/SessionDisplays.h"
#include "backends/linux/bus/SystemWake.h"
#include "backends/linux/wayland/WaylandConnection.h"
#include "backends/linux/x11/Guardian.h"
#include "backends/linux/x11/X11Connection.h"
#include "base/NotificationCenter.h"
#include "base/Typing.h"
#include "platform/GammaOutput.h"
#include "platform/KeyEvents.h"
#include "platform/Workspace.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace nocta {

/// The window system that shows Nocta's windows.
enum class WindowSystem { x11, wayland };

/// Chooses the window system of this session. If there is a Wayland compositor, this does not
/// connect to X, because that could start an Xwayland that no other program needs. GNOME is the
/// exception, because its compositor lets only X clients cover the screen. If no window can be
/// shown, this prints the reason.
std::optional<WindowSystem> probeWindowSystem();

/// The canonical name of the display server.
std::string serverName(WindowSystem system);

/// Qt's name for the window system; empty if the user has already chosen a platform for Qt.
std::string qtPlatform(WindowSystem system);

/// The ports that depend on the display server: displays, gamma, grayscale, keys and applications.
struct SessionPorts {
    std::unique_ptr<WaylandConnection> wayland; ///< null on X11
    std::unique_ptr<X11Connection> x11;         ///< null on Wayland
    std::unique_ptr<Guardian> guardian;
    std::unique_ptr<SessionDisplays> displays;
    std::unique_ptr<GammaOutput> gammaOutput;
    Subscription gammaAfterWake;
    std::unique_ptr<GrayscaleFilter> grayscale;
    std::unique_ptr<KeyEvents> keyEvents;
    const Typing* typing = nullptr; ///< null if keys cannot be observed
    bool seesPointer = false;       ///< the X server sees the pointer everywhere
    std::unique_ptr<Workspace> workspace;

    /// When the connection to the display server is lost, prints a line and calls `lost`.
    void observeLoss(const std::function<void()>& lost) const;
};

/// The parts of the desktop that the ports depend on.
struct SessionContext {
    RunLoop& runLoop;
    NotificationCenter& notificationCenter;
    SystemWake& wake;
    std::function<bool()> shouldReduceMotion;
    std::filesystem::path stateFolder; ///< for what a later start has to find
};

/// Creates the ports that this session supports. The choice depends on what the display server
/// offers, not on the name of the desktop.
SessionPorts probeSession(WindowSystem system, const SessionContext& context);

} // namespace nocta
