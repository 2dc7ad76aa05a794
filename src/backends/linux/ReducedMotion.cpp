#include "backends/linux/ReducedMotion.h"

#include "backends/linux/MessageBus.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QMap>
#include <QStringList>
#include <QVariantMap>

namespace nocta {

namespace {

const auto service = QStringLiteral("org.freedesktop.portal.Desktop");
const auto path = QStringLiteral("/org/freedesktop/portal/desktop");
const auto interface = QStringLiteral("org.freedesktop.portal.Settings");

// Where desktops keep the wish, and where those do that know it as a switch for animations only.
const auto appearance = QStringLiteral("org.freedesktop.appearance");
const auto gnomeInterface = QStringLiteral("org.gnome.desktop.interface");

constexpr auto reducedMotion = 1U;

} // namespace

ReducedMotion::ReducedMotion() {
    auto bus = sessionBus();
    if (!bus.isConnected()) {
        return;
    }
    read_.setSingleShot(true);
    QObject::connect(&read_, &QTimer::timeout, [this] { read(); });
    portal_.setConnection(bus);
    portal_.setWatchMode(QDBusServiceWatcher::WatchForRegistration);
    portal_.addWatchedService(service);
    QObject::connect(&portal_, &QDBusServiceWatcher::serviceRegistered, [this] { read_.start(); });
    bus.connect(service, path, interface, QStringLiteral("SettingChanged"), &read_, SLOT(start()));
    read();
}

void ReducedMotion::read() {
    auto call = QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("ReadAll"));
    call << QStringList{appearance, gnomeInterface};
    auto* const answer = new QDBusPendingCallWatcher(sessionBus().asyncCall(call), &read_);
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, [this, answer] {
        answer->deleteLater();
        const auto reply = answer->reply();
        if (reply.signature() != QStringLiteral("a{sa{sv}}")) {
            return; // an error, or nonsense
        }
        QMap<QString, QVariantMap> settings;
        qvariant_cast<QDBusArgument>(reply.arguments().constFirst()) >> settings;
        const auto wish = settings[appearance].value(QStringLiteral("reduced-motion"));
        const auto animations = settings[gnomeInterface].value(QStringLiteral("enable-animations"));
        isWished_ = (wish.typeId() == QMetaType::UInt && wish.toUInt() == reducedMotion) ||
                    (animations.typeId() == QMetaType::Bool && !animations.toBool());
    });
}

} // namespace nocta
