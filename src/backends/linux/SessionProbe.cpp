#include "backends/linux/SessionProbe.h"

#include "backends/linux/DisplayServerName.h"
#include "backends/linux/Environment.h"
#include "backends/linux/Unavailable.h"
#include "backends/linux/bus/MessageBus.h"
#include "backends/linux/files/FileDescriptor.h"
#include "backends/linux/gnome/GnomeSession.h"
#include "backends/linux/gnome/MagnifierFilter.h"
#include "backends/linux/gnome/MutterCalibration.h"
#include "backends/linux/gnome/MutterDisplays.h"
#include "backends/linux/gnome/MutterGammaOutput.h"
#include "backends/linux/kde/KWinWorkspace.h"
#include "backends/linux/kde/NightLightGammaOutput.h"
#include "backends/linux/wayland/TintGammaOutput.h"
#include "backends/linux/wayland/ToplevelWorkspace.h"
#include "backends/linux/wayland/WaylandDisplays.h"
#include "backends/linux/wayland/WlrGammaOutput.h"
#include "backends/linux/x11/X11ColorMatrixFilter.h"
#include "backends/linux/x11/X11Displays.h"
#include "backends/linux/x11/X11GammaOutput.h"
#include "backends/linux/x11/X11KeyEvents.h"
#include "backends/linux/x11/X11Workspace.h"

#include <QCoreApplication>
#include <QDir>

#include <algorithm>
#include <iostream>
#include <sys/socket.h>
#include <sys/un.h>
#include <utility>

namespace nocta {

namespace {

bool canConnectToX() {
    auto* const connection = xcb_connect(nullptr, nullptr);
    const auto isConnected = xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    return isConnected;
}

std::filesystem::path compositorSocket() {
    return waylandSocket(environment("XDG_RUNTIME_DIR"), environment("WAYLAND_DISPLAY"));
}

bool canConnectToWayland() {
    const auto path = compositorSocket();
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (environment("WAYLAND_DISPLAY").empty() || path.native().size() >= sizeof address.sun_path) {
        return false;
    }
    path.native().copy(address.sun_path, path.native().size());
    const FileDescriptor server(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    return connect(server.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

/// Whether Qt can run on Wayland, or has been configured to use another platform. Qt's Wayland
/// plugin is in a separate package, and Qt aborts if it finds no plugin.
bool hasQtForWayland() {
    const auto folders = QCoreApplication::libraryPaths();
    return !environment("QT_QPA_PLATFORM").empty() ||
           std::ranges::any_of(folders, [](const QString& folder) {
               return !QDir(folder + QStringLiteral("/platforms"))
                           .entryList({QStringLiteral("libqwayland*.so")})
                           .isEmpty();
           });
}

/// Uses `output` for gamma. Resends its ramps after the system wakes, because they may be lost
/// while the machine sleeps.
template <class Output>
void useGamma(SessionPorts& ports, std::unique_ptr<Output> output, SystemWake& wake) {
    ports.gammaAfterWake = wake.observe([gamma = output.get()] { gamma->sendAgain(); });
    ports.gammaOutput = std::move(output);
}

void probeRealX(SessionPorts& ports, std::unique_ptr<X11Displays> displays,
                const SessionContext& context) {
    auto keyEvents = std::make_unique<X11KeyEvents>(*ports.x11, context.runLoop);
    ports.typing = &keyEvents->typing();
    ports.seesPointer = true;
    ports.keyEvents = std::move(keyEvents);
    if (displays->hasRamps()) {
        useGamma(ports, std::make_unique<X11GammaOutput>(*ports.x11, *displays, *ports.guardian),
                 context.wake);
    } else {
        std::cerr << "nocta: this X server has no RandR 1.3 or no gamma ramps; its displays cannot "
                     "be dimmed"
                  << std::endl;
        ports.gammaOutput = std::make_unique<UnavailableGammaOutput>();
    }
    auto matrices = std::make_unique<X11ColorMatrixFilter>(
        *ports.x11, *displays, context.notificationCenter, *ports.guardian);
    if (matrices->isAvailable()) {
        ports.grayscale = std::move(matrices);
    }
    ports.displays = std::move(displays);
}

/// An X server inside a Wayland session has no hardware, but on GNOME the compositor can be asked.
void probeXwayland(SessionPorts& ports, std::unique_ptr<X11Displays> displays,
                   const SessionContext& context) {
    const auto bus = sessionBus();
    auto monitors = std::make_unique<MutterDisplays>(bus, context.notificationCenter);
    if (monitors->isAvailable()) {
        auto ramps = std::make_unique<MutterGammaOutput>(bus, *monitors, context.runLoop,
                                                         context.stateFolder / "ramps");
        if (ramps->isAvailable()) {
            useGamma(ports, std::move(ramps), context.wake);
        } else {
            // Ramps are preferred, because the compositor of GNOME 51 crashes when a monitor that
            // has a calibration session is unplugged.
            useGamma(ports, std::make_unique<MutterCalibration>(bus, *monitors, context.runLoop),
                     context.wake);
        }
        ports.displays = std::move(monitors);
    } else {
        ports.gammaOutput = std::make_unique<UnavailableGammaOutput>();
        ports.displays = std::move(displays);
    }
    if (!ports.gammaOutput->isAvailable()) {
        std::cerr << "nocta: gamma is not supported in this Wayland session yet" << std::endl;
    }
    // This X server receives key events only while an X window has the focus.
    ports.keyEvents = std::make_unique<UnavailableKeyEvents>();
}

SessionPorts probeX11(const SessionContext& context) {
    SessionPorts ports;
    ports.x11 = std::make_unique<X11Connection>(context.runLoop);
    ports.guardian = std::make_unique<Guardian>(*ports.x11, context.runLoop);
    auto displays =
        std::make_unique<X11Displays>(*ports.x11, context.runLoop, context.notificationCenter);
    const auto probe = displays->isEmulation() ? probeXwayland : probeRealX;
    probe(ports, std::move(displays), context);
    ports.workspace = std::make_unique<X11Workspace>(*ports.x11, *ports.displays, context.runLoop,
                                                     context.shouldReduceMotion);
    return ports;
}

/// KDE's compositor has no gamma control; there, a layer dims the displays, and KDE's Night Light
/// warms them.
void probeWaylandGamma(SessionPorts& ports, WaylandDisplays& displays,
                       const SessionContext& context) {
    auto gamma = std::make_unique<WlrGammaOutput>(*ports.wayland, displays, context.runLoop);
    if (gamma->isAvailable()) {
        useGamma(ports, std::move(gamma), context.wake);
        return;
    }
    auto tint = std::make_unique<TintGammaOutput>(*ports.wayland, displays);
    if (!tint->isAvailable()) {
        std::cerr << "nocta: gamma is not supported in this Wayland session yet" << std::endl;
        ports.gammaOutput = std::make_unique<UnavailableGammaOutput>();
        return;
    }
    auto nightLight = std::make_unique<NightLight>(sessionBus(), context.runLoop,
                                                   context.stateFolder / "night-light");
    if (nightLight->isAvailable()) {
        ports.gammaOutput =
            std::make_unique<NightLightGammaOutput>(std::move(tint), std::move(nightLight));
        return;
    }
    std::cerr << "nocta: this compositor has no gamma control; the displays are dimmed by a layer, "
                 "which cannot warm them"
              << std::endl;
    ports.gammaOutput = std::move(tint);
}

SessionPorts probeWayland(const SessionContext& context) {
    SessionPorts ports;
    ports.wayland = std::make_unique<WaylandConnection>(context.runLoop);
    auto displays = std::make_unique<WaylandDisplays>(*ports.wayland, context.runLoop,
                                                      context.notificationCenter);
    probeWaylandGamma(ports, *displays, context);
    ports.keyEvents = std::make_unique<UnavailableKeyEvents>(); // not observable on Wayland
    auto toplevels = std::make_unique<ToplevelWorkspace>(*ports.wayland, *displays, context.runLoop,
                                                         context.shouldReduceMotion);
    if (toplevels->isAvailable()) {
        ports.workspace = std::move(toplevels);
    } else { // without KWin, this reports no applications
        ports.workspace = std::make_unique<KWinWorkspace>(
            *displays, context.stateFolder / "kwin.js", context.shouldReduceMotion);
    }
    ports.displays = std::move(displays);
    return ports;
}

} // namespace

std::optional<WindowSystem> probeWindowSystem() {
    const auto prefersX = isGnomeSession() || environment("QT_QPA_PLATFORM").starts_with("xcb");
    const auto hasWayland = canConnectToWayland();
    if (hasWayland && !prefersX && hasQtForWayland()) {
        return WindowSystem::wayland;
    }
    if (canConnectToX()) {
        return WindowSystem::x11;
    }
    if (hasWayland && hasQtForWayland()) {
        return WindowSystem::wayland;
    }
    if (hasWayland) {
        std::cerr << "nocta: Qt's Wayland plugin is missing; install the package qt6-wayland"
                  << std::endl;
    } else {
        const auto display = environment("DISPLAY");
        std::cerr << "nocta: cannot connect to the display \""
                  << (display.empty() ? environment("WAYLAND_DISPLAY") : display) << "\""
                  << std::endl;
    }
    return std::nullopt;
}

std::string serverName(WindowSystem system) {
    return system == WindowSystem::x11 ? xServerName(environment("DISPLAY"))
                                       : compositorSocket().native();
}

std::string qtPlatform(WindowSystem system) {
    if (!environment("QT_QPA_PLATFORM").empty()) {
        return "";
    }
    return system == WindowSystem::x11 ? "xcb" : "wayland";
}

void SessionPorts::observeLoss(const std::function<void()>& lost) const {
    const auto report = [lost](const char* what) {
        return [lost, what] {
            std::cerr << "nocta: the " << what << " has closed the connection" << std::endl;
            lost();
        };
    };
    if (x11 != nullptr) {
        x11->onLost = report("X server");
    }
    if (wayland != nullptr) {
        wayland->onLost = report("Wayland compositor");
    }
}

SessionPorts probeSession(WindowSystem system, const SessionContext& context) {
    auto ports = system == WindowSystem::x11 ? probeX11(context) : probeWayland(context);
    if (auto magnifier = std::make_unique<MagnifierFilter>(context.stateFolder / "magnifier");
        magnifier->isAvailable()) {
        ports.grayscale = std::move(magnifier);
    }
    return ports;
}

} // namespace nocta
