#include "backends/linux/DisplayServerName.h"
#include "backends/linux/LibUuidSource.h"
#include "backends/linux/SessionFilter.h"
#include "backends/linux/Unavailable.h"
#include "backends/linux/backlight/SysfsBacklight.h"
#include "backends/linux/bus/FreedesktopNotifications.h"
#include "backends/linux/bus/ReducedMotion.h"
#include "backends/linux/bus/SystemWake.h"
#include "backends/linux/files/AutostartLoginItem.h"
#include "backends/linux/files/FileDescriptor.h"
#include "backends/linux/files/IniDefaultsStore.h"
#include "backends/linux/files/PrivateFolder.h"
#include "backends/linux/gnome/MagnifierFilter.h"
#include "backends/linux/location/GeoClueLocationManager.h"
#include "backends/linux/network/CurlUrlSession.h"
#include "backends/linux/process/StandardStreams.h"
#include "backends/linux/shell/AccessibilityGate.h"
#include "backends/linux/shell/BusGate.h"
#include "backends/linux/shell/ColorScheme.h"
#include "backends/linux/shell/EndingSignals.h"
#include "backends/linux/shell/QtAppWindows.h"
#include "backends/linux/shell/QtApplication.h"
#include "backends/linux/shell/QtOverlayWindows.h"
#include "backends/linux/shell/QtPopover.h"
#include "backends/linux/shell/QtRunLoop.h"
#include "backends/linux/shell/QtStatusBar.h"
#include "backends/linux/shell/SingleInstance.h"
#include "backends/linux/shell/SymbolIcon.h"
#include "backends/linux/shell/SystemTray.h"
#include "backends/linux/updates/AppcastUpdater.h"
#include "backends/linux/updates/OpenPackage.h"
#include "backends/linux/wayland/ToplevelWorkspace.h"
#include "backends/linux/wayland/WaylandConnection.h"
#include "backends/linux/wayland/WaylandDisplays.h"
#include "backends/linux/wayland/WlrGammaOutput.h"
#include "backends/linux/x11/Guardian.h"
#include "backends/linux/x11/X11ColorMatrixFilter.h"
#include "backends/linux/x11/X11Connection.h"
#include "backends/linux/x11/X11Displays.h"
#include "backends/linux/x11/X11GammaOutput.h"
#include "backends/linux/x11/X11KeyEvents.h"
#include "backends/linux/x11/X11Workspace.h"
#include "base/Checked.h"
#include "platform/Desktop.h"

#include <QApplication>
#include <QDir>

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <gnu/libc-version.h>
#include <iostream>
#include <string>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

namespace nocta {

namespace {

constexpr rlim_t minDescriptors = 64; // about twice what Nocta uses

std::string environment(const char* name) {
    const auto* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

/// One of the user's base directories. The variable overrides the default; a relative path is
/// ignored.
std::filesystem::path baseDirectory(const char* variable, const char* usual) {
    const auto chosen = std::filesystem::path(environment(variable));
    return chosen.is_absolute() ? chosen
                                : std::filesystem::path(QDir::homePath().toStdString()) / usual;
}

std::filesystem::path configFolder() {
    return baseDirectory("XDG_CONFIG_HOME", ".config");
}

std::filesystem::path settingsFile() {
    return configFolder() / "nocta" / "nocta.conf";
}

/// The folder for data that Nocta remembers but that is not a setting.
std::filesystem::path stateFolder() {
    return baseDirectory("XDG_STATE_HOME", ".local/state") / "nocta";
}

/// The folder of the lock and the socket that belong to the running process.
std::filesystem::path runtimeFolder() {
    const std::filesystem::path folder = environment("XDG_RUNTIME_DIR");
    if (folder.is_absolute()) {
        createPrivateFolders(folder); // as Qt will; every start must use the same folder
    }
    return folder.is_absolute() && isPrivateFolder(folder) ? folder : stateFolder();
}

/// The folder for files that can be downloaded again.
std::filesystem::path cacheFolder() {
    return baseDirectory("XDG_CACHE_HOME", ".cache") / "nocta";
}

bool canConnectToX() {
    auto* const connection = xcb_connect(nullptr, nullptr);
    const auto isConnected = xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    return isConnected;
}

/// Whether the compositor lets its clients set gamma tables. Nocta then leaves X alone, because a
/// connection to it would start an Xwayland that may not be needed.
bool canSetGammaOnWayland() {
    return !environment("WAYLAND_DISPLAY").empty() &&
           WaylandConnection::isOffered(zwlr_gamma_control_manager_v1_interface);
}

bool canConnectToWayland(const std::string& display) {
    const auto path = waylandSocket(environment("XDG_RUNTIME_DIR"), display);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (display.empty() || path.native().size() >= sizeof address.sun_path) {
        return false;
    }
    path.native().copy(address.sun_path, path.native().size());
    const FileDescriptor server(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    return connect(server.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

/// The libraries cannot handle running out of file descriptors: some wait forever.
bool hasEnoughDescriptors() {
    rlimit limit{};
    return getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= minDescriptors;
}

/// Opens /dev/null for each standard stream that the parent process closed. Otherwise the next file
/// or connection would get its number, along with everything printed to it.
void keepStandardStreams() {
    int descriptor = open("/dev/null", O_RDWR);
    while (descriptor >= 0 && descriptor <= STDERR_FILENO) {
        descriptor = dup(descriptor);
    }
    close(descriptor);
}

/// The address of the accessibility bus that the X server publishes, or empty if it publishes none.
std::string accessibilityBus(X11Connection& connection) {
    constexpr std::uint32_t maxLength = 256; // in units of four bytes
    auto* const x = connection.get();
    const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        x,
        xcb_get_property(x, 0, connection.root(), connection.atom("AT_SPI_BUS"), XCB_ATOM_STRING, 0,
                         maxLength),
        nullptr));
    connection.finishTurn();
    return reply ? std::string(static_cast<const char*>(xcb_get_property_value(reply.get())),
                               static_cast<std::size_t>(xcb_get_property_value_length(reply.get())))
                 : std::string();
}

/// The ports that this session supports for displays, gamma, grayscale, keys and applications. This
/// is the only place that chooses them.
struct DisplayServer {
    std::unique_ptr<WaylandConnection> wayland;
    std::unique_ptr<X11Connection> connection;
    std::unique_ptr<Guardian> guardian;
    std::unique_ptr<Displays> displays;
    SysfsBacklight::OutputName outputName = [](DisplayId) { return std::string(); };
    std::unique_ptr<GammaOutput> gammaOutput;
    Subscription gammaAfterWake;
    std::unique_ptr<GrayscaleFilter> grayscale;
    std::unique_ptr<KeyEvents> keyEvents;
    const Typing* typing = nullptr; ///< null if keys cannot be observed
    std::unique_ptr<Workspace> workspace;
};

DisplayServer probeDisplayServer(RunLoop& runLoop, NotificationCenter& notificationCenter,
                                 SystemWake& wake, std::function<bool()> shouldReduceMotion) {
    DisplayServer server;
    if (auto magnifier = std::make_unique<MagnifierFilter>(stateFolder() / "magnifier");
        magnifier->isAvailable()) {
        server.grayscale = std::move(magnifier);
    }
    if (canSetGammaOnWayland()) {
        server.wayland = std::make_unique<WaylandConnection>(runLoop);
        auto displays =
            std::make_unique<WaylandDisplays>(*server.wayland, runLoop, notificationCenter);
        auto gamma = std::make_unique<WlrGammaOutput>(*server.wayland, *displays, runLoop);
        server.gammaAfterWake = wake.observe([output = gamma.get()] { output->sendAgain(); });
        server.gammaOutput = std::move(gamma);
        server.outputName = [names = displays.get()](DisplayId id) {
            return names->outputName(id);
        };
        // Without the protocol for it, it reports no applications.
        server.workspace = std::make_unique<ToplevelWorkspace>(*server.wayland, *displays, runLoop,
                                                               std::move(shouldReduceMotion));
        server.displays = std::move(displays);
        server.keyEvents = std::make_unique<UnavailableKeyEvents>();
        return server;
    }
    auto connection = std::make_unique<X11Connection>(runLoop);
    if (!connection->isOpen()) {
        std::cerr << "nocta: gamma and brightness keys are not supported in this session yet"
                  << std::endl;
        server.displays = std::make_unique<UnavailableDisplays>();
        server.gammaOutput = std::make_unique<UnavailableGammaOutput>();
        server.keyEvents = std::make_unique<UnavailableKeyEvents>();
        server.workspace = std::make_unique<UnavailableWorkspace>(std::move(shouldReduceMotion));
        return server;
    }
    server.guardian = std::make_unique<Guardian>(*connection, runLoop);
    auto displays = std::make_unique<X11Displays>(*connection, runLoop, notificationCenter);
    if (displays->isEmulation()) {
        std::cerr << "nocta: gamma is not supported in this Wayland session yet" << std::endl;
        server.gammaOutput = std::make_unique<UnavailableGammaOutput>();
        // This X server sees keys only while an X window has the focus.
        server.keyEvents = std::make_unique<UnavailableKeyEvents>();
    } else {
        auto keyEvents = std::make_unique<X11KeyEvents>(*connection, runLoop);
        server.typing = &keyEvents->typing();
        server.keyEvents = std::move(keyEvents);
        auto gamma = std::make_unique<X11GammaOutput>(*connection, *displays, *server.guardian);
        server.gammaAfterWake = wake.observe([output = gamma.get()] { output->sendAgain(); });
        server.gammaOutput = std::move(gamma);
        auto matrices = std::make_unique<X11ColorMatrixFilter>(
            *connection, *displays, notificationCenter, *server.guardian);
        if (server.grayscale == nullptr && matrices->isAvailable()) {
            server.grayscale = std::move(matrices);
        }
    }
    server.workspace = std::make_unique<X11Workspace>(*connection, *displays, runLoop,
                                                      std::move(shouldReduceMotion));
    server.outputName = [names = displays.get()](DisplayId id) { return names->outputName(id); };
    server.displays = std::move(displays);
    server.connection = std::move(connection);
    return server;
}

/// The Qt application, which is created before anything that needs it. Qt gets no arguments to
/// parse.
struct Toolkit {
    int argumentCount = 1;
    char name[6] = "nocta";
    char* arguments[2] = {name, nullptr};
    QApplication application{argumentCount, arguments};

    Toolkit() {
        QApplication::setQuitOnLastWindowClosed(false);
        QApplication::setApplicationName(QStringLiteral("nocta"));
        QApplication::setApplicationDisplayName(QStringLiteral("Nocta"));
        QApplication::setWindowIcon(symbolIcon(QStringLiteral("eye")));
    }
    Toolkit(const Toolkit&) = delete;
    Toolkit& operator=(const Toolkit&) = delete;
    /// Deletes the objects whose `deleteLater` was called after the last event loop ended.
    ~Toolkit() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }
};

class LinuxDesktop {
public:
    LinuxDesktop(SingleInstance instance, const Bundle& bundle)
        : instance_(std::move(instance)), bundle_(bundle) {
        setOriginAdvice("correct it in " + settingsFile().string());
        if (server_.connection != nullptr) {
            server_.connection->onLost = [this] {
                std::cerr << "nocta: the X server has closed the connection" << std::endl;
                application_.fail();
            };
        }
        if (server_.wayland != nullptr) {
            server_.wayland->onLost = [this] {
                std::cerr << "nocta: the Wayland compositor has closed the connection" << std::endl;
                application_.fail();
            };
        }
        busGate_.start();
        accessibilityGate_.start(
            server_.connection == nullptr ? "" : accessibilityBus(*server_.connection));
    }

private:
    SingleInstance instance_;
    const Bundle& bundle_;
    BusGate busGate_;
    AccessibilityGate accessibilityGate_;
    Toolkit toolkit_;
    ColorScheme colorScheme_;
    QtRunLoop runLoop_;
    NotificationCenter notificationCenter_;
    IniDefaultsStore userDefaults_{settingsFile(), runLoop_};
    LibUuidSource uuidSource_;
    ReducedMotion reducedMotion_;
    SystemWake wake_;
    DisplayServer server_ = probeDisplayServer(runLoop_, notificationCenter_, wake_,
                                               [this] { return reducedMotion_.isRequested(); });
    SysfsBacklight backlight_{*server_.displays, server_.outputName, setBrightnessThroughLogind};
    GeoClueLocationManager locationManager_{runLoop_, stateFolder() / "location-granted"};
    AutostartLoginItem loginItem_{configFolder() / "autostart" / "nocta.desktop",
                                  QCoreApplication::applicationFilePath().toStdString()};
    SessionFilter filter_{std::move(server_.grayscale)};
    FreedesktopNotifications userNotificationCenter_;
    CurlUrlSession urlSession_{runLoop_};
    AppcastUpdater updater_{
        runLoop_,
        urlSession_,
        bundle_,
        gnu_get_libc_version(), // the newest libc that a downloaded program may need
        {.memory = stateFolder() / "updates.json", .downloads = cacheFolder() / "updates"},
        openPackage};
    QtOverlayWindows overlayWindows_{runLoop_, *server_.displays, server_.connection.get(),
                                     server_.typing};
    SystemTray tray_{server_.connection.get()};
    QtStatusBar statusBar_{tray_};
    QtPopover popover_{server_.connection.get()};
    QtAppWindows appWindows_;
    QtApplication application_{runLoop_, instance_, [this] { return tray_.isAvailable(); }};

public:
    Desktop ports{.bundle = bundle_,
                  .runLoop = runLoop_,
                  .notificationCenter = notificationCenter_,
                  .userDefaults = userDefaults_,
                  .uuidSource = uuidSource_,
                  .displays = *server_.displays,
                  .gammaOutput = *server_.gammaOutput,
                  .backlight = backlight_,
                  .keyEvents = *server_.keyEvents,
                  .locationManager = locationManager_,
                  .loginItem = loginItem_,
                  .dynamicLibraries = filter_,
                  .displayFilter = filter_,
                  .workspace = *server_.workspace,
                  .userNotificationCenter = userNotificationCenter_,
                  .urlSession = urlSession_,
                  .updater = updater_,
                  .overlayWindows = overlayWindows_,
                  .statusBar = statusBar_,
                  .popover = popover_,
                  .appWindows = appWindows_,
                  .application = application_};
};

} // namespace

DesktopSession makeDesktop(const Bundle& bundle) {
    EndingSignals::unblock();
    keepStandardStreams();
    makeOutputNonBlocking();
    if (!hasEnoughDescriptors()) {
        std::cerr << "nocta: the limit on open files is below " << minDescriptors << std::endl;
        return {.desktop = nullptr, .exitStatus = EXIT_FAILURE};
    }
    const auto wayland = environment("WAYLAND_DISPLAY");
    const auto hasX = !canSetGammaOnWayland() && canConnectToX();
    if (!hasX && !canConnectToWayland(wayland)) {
        const auto display = environment("DISPLAY");
        std::cerr << "nocta: cannot connect to the display \""
                  << (display.empty() ? wayland : display) << "\"" << std::endl;
        return {.desktop = nullptr, .exitStatus = EXIT_FAILURE};
    }
    SingleInstance instance(hasX ? xServerName(environment("DISPLAY"))
                                 : waylandSocket(environment("XDG_RUNTIME_DIR"), wayland).native(),
                            runtimeFolder());
    if (instance.role() == SingleInstance::Role::unanswered) {
        std::cerr << "nocta: another Nocta is running here but does not answer" << std::endl;
        return {.desktop = nullptr, .exitStatus = EXIT_FAILURE};
    }
    if (instance.role() == SingleInstance::Role::answered) {
        return {.desktop = nullptr, .exitStatus = EXIT_SUCCESS};
    }
    const auto desktop = std::make_shared<LinuxDesktop>(std::move(instance), bundle);
    return {.desktop = std::shared_ptr<Desktop>(desktop, &desktop->ports)};
}

} // namespace nocta
