#include "backends/linux/gnome/MutterDisplays.h"

#include "backends/linux/bus/AsyncCall.h"

#include <QDBusArgument>
#include <QList>
#include <QVariantMap>

#include <cmath>
#include <map>
#include <utility>
#include <vector>

namespace nocta {

namespace {

const auto service = QStringLiteral("org.gnome.Mutter.DisplayConfig");
const auto path = QStringLiteral("/org/gnome/Mutter/DisplayConfig");
const auto resourcesSignature = QStringLiteral("ua(uxiiiiiuaua{sv})a(uxiausauaua{sv})a(uxuudu)ii");
const auto stateSignature =
    QStringLiteral("ua((ssss)a(siiddada{sv})a{sv})a(iiduba(ssss)a{sv})a{sv}");
constexpr int timeoutAtStart = 500; // milliseconds, for each call
constexpr int attemptsAtStart = 2;
constexpr auto logicalLayout = 1U;

struct Monitor {
    std::optional<DisplayMode> mode;
    bool isBuiltIn = false;
};

QDBusMessage methodCall(const char* method) {
    auto message =
        QDBusMessage::createMethodCall(service, path, service, QString::fromUtf8(method));
    message.setAutoStartService(false);
    return message;
}

/// Calls `read` for each structure in an array. `read` may leave the last members unread.
template <class Read>
void forEachStructure(const QDBusArgument& array, const Read& read) {
    array.beginArray();
    while (!array.atEnd()) {
        array.beginStructure();
        read(array);
        array.endStructure();
    }
    array.endArray();
}

QDBusArgument argument(const QDBusMessage& message, qsizetype index) {
    return message.arguments().at(index).value<QDBusArgument>();
}

/// Reads a connector's name from the four strings that identify a monitor.
std::string readConnector(const QDBusArgument& identity) {
    QString connector;
    identity.beginStructure();
    identity >> connector;
    identity.endStructure();
    return connector.toStdString();
}

std::map<std::string, std::uint32_t> readCrtcs(const QDBusMessage& resources) {
    std::map<std::string, std::uint32_t> crtcs;
    forEachStructure(argument(resources, 2), [&](const QDBusArgument& output) {
        quint32 id = 0;
        qint64 windowSystemId = 0;
        qint32 crtc = 0;
        QList<quint32> possibleCrtcs;
        QString name;
        output >> id >> windowSystemId >> crtc >> possibleCrtcs >> name;
        if (crtc >= 0) {
            crtcs.emplace(name.toStdString(), static_cast<std::uint32_t>(crtc));
        }
    });
    return crtcs;
}

std::map<std::string, Monitor> readMonitors(const QDBusMessage& state) {
    std::map<std::string, Monitor> monitors;
    forEachStructure(argument(state, 1), [&](const QDBusArgument& description) {
        auto& monitor = monitors[readConnector(description)];
        forEachStructure(description, [&](const QDBusArgument& mode) {
            QString id;
            qint32 width = 0;
            qint32 height = 0;
            double refreshRate = 0;
            double preferredScale = 0;
            QList<double> scales;
            QVariantMap properties;
            mode >> id >> width >> height >> refreshRate >> preferredScale >> scales >> properties;
            if (properties.value(QStringLiteral("is-current")).toBool() && width > 0 &&
                height > 0) {
                monitor.mode = {static_cast<std::uint32_t>(width),
                                static_cast<std::uint32_t>(height)};
            }
        });
        QVariantMap properties;
        description >> properties;
        monitor.isBuiltIn = properties.value(QStringLiteral("is-builtin")).toBool();
    });
    return monitors;
}

} // namespace

MutterDisplays::MutterDisplays(const QDBusConnection& bus, NotificationCenter& notificationCenter)
    : SessionDisplays(notificationCenter), bus_(bus) {
    if (!bus_.isConnected()) {
        return;
    }
    monitorsChanged_.connect(bus_, path, service, QStringLiteral("MonitorsChanged"));
    for (int attempt = 0; attempt < attemptsAtStart && !isAvailable_; ++attempt) {
        const auto resources = bus_.call(methodCall("GetResources"), QDBus::Block, timeoutAtStart);
        if (resources.type() != QDBusMessage::ReplyMessage) {
            return;
        }
        read(resources, bus_.call(methodCall("GetCurrentState"), QDBus::Block, timeoutAtStart));
    }
}

QDBusMessage MutterDisplays::call(const char* method, const QVariantList& arguments) const {
    auto message = methodCall(method);
    message.setArguments(QVariantList{serial_} + arguments);
    return message;
}

void MutterDisplays::refresh() {
    callAsync(bus_, methodCall("GetResources"), &monitorsChanged_,
              [this](const QDBusMessage& resources) {
                  callAsync(bus_, methodCall("GetCurrentState"), &monitorsChanged_,
                            [this, resources](const QDBusMessage& state) {
                                read(resources, state);
                                refreshed_.call();
                            });
              });
}

/// Ignores replies that are errors or have unexpected types, and replies between which the
/// configuration has changed: the compositor then announces the change.
void MutterDisplays::read(const QDBusMessage& resources, const QDBusMessage& state) {
    if (resources.signature() != resourcesSignature || state.signature() != stateSignature ||
        resources.arguments().at(0) != state.arguments().at(0)) {
        return;
    }
    isAvailable_ = true;
    serial_ = resources.arguments().at(0).toUInt();
    const auto crtcs = readCrtcs(resources);
    const auto monitors = readMonitors(state);
    QVariantMap properties;
    argument(state, 3) >> properties;
    const auto isLogical =
        properties.value(QStringLiteral("layout-mode")).toUInt() == logicalLayout;

    std::vector<Display> displays;
    forEachStructure(argument(state, 2), [&](const QDBusArgument& logical) {
        qint32 x = 0;
        qint32 y = 0;
        double scale = 1;
        quint32 transform = 0;
        bool isPrimary = false;
        logical >> x >> y >> scale >> transform >> isPrimary;
        const auto divisor = isLogical && scale > 0 ? scale : 1.0;
        logical.beginArray();
        while (!logical.atEnd()) {
            const auto name = readConnector(logical);
            const auto monitor = monitors.find(name);
            if (monitor == monitors.end() || !monitor->second.mode) {
                continue;
            }
            auto width = std::round(monitor->second.mode->width / divisor);
            auto height = std::round(monitor->second.mode->height / divisor);
            if (transform % 2 == 1) { // turned by 90 or 270 degrees
                std::swap(width, height);
            }
            const auto crtc = crtcs.find(name);
            displays.push_back(
                {.id = idOf(name),
                 .name = name,
                 .isMain = std::exchange(isPrimary, false), // only the first of mirrored monitors
                 .isBuiltIn = monitor->second.isBuiltIn,
                 .bounds = {static_cast<double>(x), static_cast<double>(y), width, height},
                 .mode = monitor->second.mode,
                 .crtc = crtc == crtcs.end() ? std::nullopt : std::optional(crtc->second)});
        }
        logical.endArray();
    });
    publish(std::move(displays));
}

} // namespace nocta
