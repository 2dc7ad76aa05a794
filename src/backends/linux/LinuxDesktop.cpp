#include "backends/linux/Environment.h"
#include "backends/linux/LibUuidSource.h"
#include "backends/linux/SessionFilter.h"
#include "backends/linux/SessionProbe.h"
#include "backends/linux/backlight/SysfsBacklight.h"
#include "backends/linux/bus/FreedesktopNotifications.h"
#include "backends/linux/bus/ReducedMotion.h"
#include "backends/linux/files/AutostartLoginItem.h"
#include "backends/linux/files/IniDefaultsStore.h"
#include "backends/linux/files/PrivateFolder.h"
#include "backends/linux/gnome/GnomeSession.h"
#include "backends/linux/kde/ScreenBrightnessBacklight.h"
#include "backends/linux/location/GeoClueLocationManager.h"
#include "backends/linux/network/CurlUrlSession.h"
#include "backends/linux/network/FetchUpdateSource.h"
#include "backends/linux/process/StandardStreams.h"
#include "backends/linux/shell/AccessibilityGate.h"
#include "backends/linux/shell/BusGate.h"
#include "backends/linux/shell/ColorScheme.h"
#include "backends/linux/shell/EndingSignals.h"
#include "backends/linux/shell/GnomeFont.h"
#include "backends/linux/shell/LayerShell.h"
#include "backends/linux/shell/QtAppWindows.h"
#include "backends/linux/shell/QtApplication.h"
#include "backends/linux/shell/QtOverlayWindows.h"
#include "backends/linux/shell/QtPopover.h"
#include "backends/linux/shell/QtRunLoop.h"
#include "backends/linux/shell/QtStatusBar.h"
#include "backends/linux/shell/SingleInstance.h"
#include "backends/linux/shell/SymbolIcon.h"
#include "backends/linux/shell/SystemTray.h"
#include "base/Checked.h"
#include "platform/Desktop.h"
#include "updates/UpdateService.h"

#include <QApplication>
#include <QDir>

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <gnu/libc-version.h>
#include <iostream>
#include <optional>
#include <string>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

namespace nocta {

namespace {

constexpr rlim_t minDescriptors = 64; // about twice what Nocta uses

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

/// The folder for persistent data other than settings.
std::filesystem::path stateFolder() {
    return baseDirectory("XDG_STATE_HOME", ".local/state") / "nocta";
}

/// The folder for the lock and the socket of the running process.
std::filesystem::path runtimeFolder() {
    const std::filesystem::path folder = environment("XDG_RUNTIME_DIR");
    if (folder.is_absolute()) {
        createPrivateFolders(folder); // Qt does this later; every start must use the same folder
    }
    return folder.is_absolute() && isPrivateFolder(folder) ? folder : stateFolder();
}

/// The folder for files that can be downloaded again.
std::filesystem::path cacheFolder() {
    return baseDirectory("XDG_CACHE_HOME", ".cache") / "nocta";
}

/// The system that updates must fit: the newest C library that they may need, and the architecture
/// by Debian's name for it.
UpdateSystem updateSystem() {
#if defined(__x86_64__)
    constexpr auto architecture = "amd64";
#elif defined(__aarch64__)
    constexpr auto architecture = "arm64";
#elif defined(__i386__)
    constexpr auto architecture = "i386";
#elif defined(__riscv)
    constexpr auto architecture = "riscv64";
#else
    constexpr auto architecture = ""; // no package matches
#endif
    return {.version = gnu_get_libc_version(), .architecture = architecture};
}

/// The libraries cannot handle running out of file descriptors: some wait forever.
bool hasEnoughDescriptors() {
    rlimit limit{};
    return getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= minDescriptors;
}

/// Opens /dev/null for each standard stream that the parent process closed. Otherwise the next file
/// or connection would get the stream's number, and everything printed to the stream would go
/// there.
void keepStandardStreams() {
    int descriptor = open("/dev/null", O_RDWR);
    while (descriptor >= 0 && descriptor <= STDERR_FILENO) {
        descriptor = dup(descriptor);
    }
    close(descriptor);
}

/// Returns the address of the accessibility bus that the X server publishes, or an empty string.
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

/// The Qt application, which is created before anything that needs it.
class Toolkit {
public:
    explicit Toolkit(WindowSystem system) : platform_(qtPlatform(system)) {
        QApplication::setQuitOnLastWindowClosed(false);
        QApplication::setApplicationName(QStringLiteral("nocta"));
        QApplication::setApplicationDisplayName(QStringLiteral("Nocta"));
        QApplication::setWindowIcon(symbolIcon(QStringLiteral("eye")));
        if (!hiddenDesktops_.empty()) {
            qputenv(desktopsVariable, QByteArray::fromStdString(hiddenDesktops_));
            gnomeFont_.emplace();
        }
    }
    Toolkit(const Toolkit&) = delete;
    Toolkit& operator=(const Toolkit&) = delete;
    /// Deletes the objects whose `deleteLater` was called after the last event loop ended.
    ~Toolkit() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

private:
    /// Hides GNOME from Qt until the application object exists. On GNOME, Qt loads GTK for its
    /// theme, which triples the program's memory use, although our windows use nothing from it. A
    /// theme that the user has chosen for Qt is still loaded.
    static std::string hideGnome() {
        const auto hides = isGnomeSession() && environment("QT_QPA_PLATFORMTHEME").empty();
        const auto desktops = hides ? environment(desktopsVariable) : "";
        if (hides) {
            qputenv(desktopsVariable, "unknown");
        }
        return desktops;
    }

    static constexpr auto desktopsVariable = "XDG_CURRENT_DESKTOP";
    std::string hiddenDesktops_ = hideGnome();
    std::string platform_;
    std::string name_ = "nocta";
    std::string option_ = "-platform";
    char* arguments_[4] = {name_.data(), option_.data(), platform_.data(), nullptr};
    int argumentCount_ = platform_.empty() ? 1 : 3;
    QApplication application_{argumentCount_, arguments_};
    std::optional<GnomeFont> gnomeFont_;
};

class LinuxDesktop {
public:
    LinuxDesktop(WindowSystem windowSystem, SingleInstance instance, const Bundle& bundle)
        : windowSystem_(windowSystem), instance_(std::move(instance)), bundle_(bundle) {
        setOriginAdvice("correct it in " + settingsFile().string());
        session_.observeLoss([this] { application_.fail(); });
        busGate_.start();
        accessibilityGate_.start(session_.x11 == nullptr ? "" : accessibilityBus(*session_.x11));
    }

private:
    WindowSystem windowSystem_;
    SingleInstance instance_;
    const Bundle& bundle_;
    BusGate busGate_;
    AccessibilityGate accessibilityGate_;
    Toolkit toolkit_{windowSystem_};
    ColorScheme colorScheme_;
    QtRunLoop runLoop_;
    NotificationCenter notificationCenter_;
    IniDefaultsStore userDefaults_{settingsFile(), runLoop_};
    LibUuidSource uuidSource_;
    ReducedMotion reducedMotion_;
    SystemWake wake_;
    SessionPorts session_ = probeSession(
        windowSystem_, {.runLoop = runLoop_,
                        .notificationCenter = notificationCenter_,
                        .wake = wake_,
                        .shouldReduceMotion = [this] { return reducedMotion_.isRequested(); },
                        .stateFolder = stateFolder()});
    SysfsBacklight sysfsBacklight_{
        *session_.displays, [this](DisplayId id) { return session_.displays->outputName(id); },
        setBrightnessThroughLogind};
    ScreenBrightnessBacklight backlight_{*session_.displays, sysfsBacklight_};
    GeoClueLocationManager locationManager_{runLoop_, stateFolder() / "location-granted"};
    AutostartLoginItem loginItem_{configFolder() / "autostart" / "nocta.desktop",
                                  QCoreApplication::applicationFilePath().toStdString()};
    SessionFilter filter_{std::move(session_.grayscale)};
    FreedesktopNotifications userNotificationCenter_;
    CurlUrlSession urlSession_{runLoop_};
    FetchUpdateSource updateSource_{runLoop_, bundle_, cacheFolder() / "updates"};
    IniDefaultsStore updateRecord_{stateFolder() / "updates.conf", runLoop_};
    UpdateService updater_{runLoop_, updateSource_, updateRecord_, bundle_, updateSystem()};
    LayerShell layerShell_;
    QtOverlayWindows overlayWindows_{
        runLoop_,        *session_.displays,
        layerShell_,     session_.x11.get(),
        session_.typing, [this] { return session_.workspace->mainScreenFrame(); }};
    SystemTray tray_{session_.x11.get()};
    QtStatusBar statusBar_{tray_};
    QtPopover popover_{layerShell_, session_.x11.get(), session_.seesPointer};
    QtAppWindows appWindows_{session_.x11.get()};
    QtApplication application_{runLoop_, instance_, [this] { return tray_.isAvailable(); }};

public:
    Desktop ports{.bundle = bundle_,
                  .runLoop = runLoop_,
                  .notificationCenter = notificationCenter_,
                  .userDefaults = userDefaults_,
                  .uuidSource = uuidSource_,
                  .displays = *session_.displays,
                  .gammaOutput = *session_.gammaOutput,
                  .backlight = backlight_,
                  .keyEvents = *session_.keyEvents,
                  .locationManager = locationManager_,
                  .loginItem = loginItem_,
                  .dynamicLibraries = filter_,
                  .displayFilter = filter_,
                  .workspace = *session_.workspace,
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
    const auto windowSystem = probeWindowSystem();
    if (!windowSystem) {
        return {.desktop = nullptr, .exitStatus = EXIT_FAILURE};
    }
    LayerShell::prepare();
    SingleInstance instance(serverName(*windowSystem), runtimeFolder());
    if (instance.role() == SingleInstance::Role::unanswered) {
        std::cerr << "nocta: another Nocta is running here but does not answer" << std::endl;
        return {.desktop = nullptr, .exitStatus = EXIT_FAILURE};
    }
    if (instance.role() == SingleInstance::Role::answered) {
        return {.desktop = nullptr, .exitStatus = EXIT_SUCCESS};
    }
    const auto desktop = std::make_shared<LinuxDesktop>(*windowSystem, std::move(instance), bundle);
    return {.desktop = std::shared_ptr<Desktop>(desktop, &desktop->ports)};
}

} // namespace nocta
