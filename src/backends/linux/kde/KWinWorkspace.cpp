#include "backends/linux/kde/KWinWorkspace.h"

#include "backends/linux/applications/ApplicationIdentity.h"
#include "backends/linux/bus/AsyncCall.h"
#include "backends/linux/bus/MessageBus.h"
#include "backends/linux/bus/NameOwner.h"
#include "backends/linux/files/PrivateFolder.h"

#include <QDBusVirtualObject>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <fstream>
#include <string>
#include <system_error>
#include <utility>

namespace nocta {

namespace {

const auto service = QStringLiteral("org.kde.KWin");
const auto scriptName = QStringLiteral("nocta");
const auto reportPath = QStringLiteral("/nocta/windows");
const auto reportInterface = QStringLiteral("nocta.Windows");
constexpr qsizetype maxReportSize = 1 << 20; // characters

/// Reports the application in front, the screen of its window, and the sizes of all windows on the
/// current desktop. KWin 6 renamed most of the signals, functions and properties that the script
/// uses. Wallpapers, panels and layers are not in the taskbar, and are ignored. The timer delays
/// the report until the current event has been processed, because no window is active for a moment
/// when the user switches windows.
constexpr auto script = R"(
const isNew = workspace.windowActivated !== undefined;
const changes = isNew
    ? [workspace.windowActivated, workspace.windowAdded, workspace.windowRemoved]
    : [workspace.clientActivated, workspace.clientAdded, workspace.clientRemoved];

function isOfApplication(window) {
    return window && !window.skipTaskbar;
}

function isOnScreen(window) {
    const desktop = workspace.currentDesktop;
    return isOfApplication(window) && !window.minimized &&
        (window.onAllDesktops ||
            (isNew ? window.desktops.includes(desktop) : window.desktop === desktop));
}

function report() {
    const front = isNew ? workspace.activeWindow : workspace.activeClient;
    const active = isOfApplication(front) ? front : null;
    const windows = isNew ? workspace.windowList() : workspace.clientList();
    const screen = active ? workspace.clientArea(KWin.ScreenArea, active) : null;
    callDBus(receiver, path, interface, "report", JSON.stringify({
        application: active
            ? [active.desktopFileName, active.resourceClass, active.caption].map(String)
            : null,
        screen: screen ? [screen.x, screen.y, screen.width, screen.height] : null,
        windows: windows.filter(isOnScreen).map((window) =>
            [window.frameGeometry.width, window.frameGeometry.height].map(Math.round)),
    }));
}

const endOfTurn = new QTimer();
endOfTurn.singleShot = true;
endOfTurn.timeout.connect(report);
changes.forEach((change) => change.connect(() => endOfTurn.start(0)));
report();
)";

/// Returns false if the file cannot be written.
bool writeScript(const std::filesystem::path& file, const QString& receiver) {
    createPrivateFolders(file.parent_path());
    std::ofstream output(file, std::ios::trunc);
    const auto define = [&](const char* name, const QString& value) {
        output << "const " << name << " = \"" << value.toStdString() << "\";\n";
    };
    define("receiver", receiver);
    define("path", reportPath);
    define("interface", reportInterface);
    output << script;
    output.close();
    return output.good();
}

/// `names` contains the name of the desktop file, the window class and the title.
std::optional<RunningApplication> applicationOf(const std::array<std::string, 3>& names) {
    const auto& [desktopFile, windowClass, title] = names;
    const RunningApplication application{
        .bundleIdentifier = bundleIdentifierOf(
            {.flatpak = {}, .desktopFile = desktopFile, .windowClass = windowClass}),
        .localizedName = windowClass.empty() ? title : windowClass};
    return application == RunningApplication{} ? std::nullopt : std::optional(application);
}

} // namespace

/// The D-Bus object that the script calls.
class KWinWorkspace::Receiver final : public QDBusVirtualObject {
public:
    explicit Receiver(KWinWorkspace& workspace) : workspace_(workspace) {}

    QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message,
                       const QDBusConnection& /*connection*/) override {
        workspace_.receive(message);
        return false; // the script does not wait for an answer
    }

private:
    KWinWorkspace& workspace_;
};

KWinWorkspace::KWinWorkspace(SessionDisplays& displays, std::filesystem::path scriptFile,
                             std::function<bool()> shouldReduceMotion)
    : displays_(displays), scriptFile_(std::move(scriptFile)),
      shouldReduceMotion_(std::move(shouldReduceMotion)),
      receiver_(std::make_unique<Receiver>(*this)) {
    kwin_.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    kwin_.addWatchedService(service);
    QObject::connect(&kwin_, &QDBusServiceWatcher::serviceOwnerChanged,
                     [this](const QString& /*name*/, const QString& /*oldOwner*/,
                            const QString& newOwner) { load(newOwner); });
    sessionBus_ =
        MessageBus::session().whenConnected([this](const QDBusConnection& bus) { follow(bus); });
}

KWinWorkspace::~KWinWorkspace() {
    if (!owner_.isEmpty()) {
        bus_.send(message("unloadScript", {scriptName}));
        std::error_code error;
        std::filesystem::remove(scriptFile_, error);
    }
}

Subscription KWinWorkspace::observeDidActivateApplication(
    std::function<void(const std::optional<RunningApplication>&)> callback) {
    return activated_.add(std::move(callback));
}

std::optional<RunningApplication> KWinWorkspace::frontmostApplication() {
    return report_.frontmost;
}

std::optional<std::vector<WindowInfo>> KWinWorkspace::copyWindowInfo() {
    return report_.windows;
}

std::optional<Rect> KWinWorkspace::mainScreenFrame() {
    if (report_.screen) {
        return report_.screen;
    }
    const auto ids = displays_.ids();
    const auto main =
        std::ranges::find_if(ids, [this](DisplayId id) { return displays_.displayIsMain(id); });
    return main == ids.end() ? std::nullopt : std::optional(displays_.displayBounds(*main));
}

void KWinWorkspace::follow(const QDBusConnection& bus) {
    bus_ = bus;
    kwin_.setConnection(bus);
    bus_.registerVirtualObject(reportPath, receiver_.get());
    callAsync(bus_, nameOwnerQuestion(service), &kwin_, [this](const QDBusMessage& reply) {
        if (reply.type() == QDBusMessage::ReplyMessage) {
            load(reply.arguments().value(0).toString());
        }
    });
}

/// Loads the script into the KWin process with this unique name. If Nocta was killed earlier, its
/// script may still be loaded there. KWin removes a script only after it has answered the call, so
/// each call is made only after the previous one has been answered.
void KWinWorkspace::load(const QString& owner) {
    owner_ = owner;
    take({});
    if (owner.isEmpty() || !writeScript(scriptFile_, bus_.baseService())) {
        return;
    }
    call("unloadScript", {scriptName}, [this] {
        const auto file = QString::fromStdString(scriptFile_.string());
        call("loadScript", {file, scriptName}, [this] { call("start", {}, [] {}); });
    });
}

void KWinWorkspace::call(const char* method, const QVariantList& arguments,
                         std::function<void()> answered) {
    callAsync(bus_, message(method, arguments), &kwin_,
              [this, owner = owner_, answered = std::move(answered)](const auto& /*reply*/) {
                  if (owner == owner_) {
                      answered();
                  }
              });
}

QDBusMessage KWinWorkspace::message(const char* method, const QVariantList& arguments) const {
    auto message = QDBusMessage::createMethodCall(owner_, QStringLiteral("/Scripting"),
                                                  QStringLiteral("org.kde.kwin.Scripting"),
                                                  QString::fromUtf8(method));
    message.setArguments(arguments);
    return message;
}

void KWinWorkspace::receive(const QDBusMessage& message) {
    if (message.service() != owner_ || message.signature() != QStringLiteral("s")) {
        return; // any program in the session can call us
    }
    if (auto report = parse(message.arguments().constFirst().toString())) {
        take(std::move(*report));
    }
}

std::optional<KWinWorkspace::Report> KWinWorkspace::parse(const QString& text) {
    if (text.size() > maxReportSize) {
        return std::nullopt;
    }
    try {
        const auto json = nlohmann::json::parse(text.toStdString());
        Report report;
        if (const auto& names = json.at("application"); !names.is_null()) {
            report.frontmost = applicationOf(names.get<std::array<std::string, 3>>());
        }
        if (const auto& screen = json.at("screen"); !screen.is_null()) {
            const auto [x, y, width, height] = screen.get<std::array<double, 4>>();
            report.screen = Rect{x, y, width, height};
        }
        report.windows.emplace();
        for (const auto& size : json.at("windows")) {
            const auto [width, height] = size.get<std::array<double, 2>>();
            report.windows->push_back({.width = width, .height = height});
        }
        return report;
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;
    }
}

/// Stores the report. Notifies the observers if the application in front has changed.
void KWinWorkspace::take(Report report) {
    const auto isSame = isSameApplication(report.frontmost, report_.frontmost);
    report_ = std::move(report);
    if (!isSame) {
        activated_.call(report_.frontmost);
    }
}

} // namespace nocta
