#include "backends/linux/bus/FreedesktopNotifications.h"

#include "backends/linux/bus/AsyncCall.h"
#include "backends/linux/bus/MessageBus.h"
#include "backends/linux/bus/NameOwner.h"

#include <QCoreApplication>
#include <QDBusError>
#include <QDBusPendingReply>
#include <QTimer>
#include <QVariantMap>

#include <algorithm>
#include <optional>

namespace nocta {

namespace {

QString translated(const std::string& english) {
    return QCoreApplication::translate("Nocta", english.c_str());
}

const auto service = QStringLiteral("org.freedesktop.Notifications");
const auto path = QStringLiteral("/org/freedesktop/Notifications");

const auto applicationName = QStringLiteral("Nocta");
const auto desktopEntry = QStringLiteral("nocta");
const auto soundName = QStringLiteral("message-new-instant");

QDBusMessage methodCall(const QString& method) {
    return QDBusMessage::createMethodCall(service, path, service, method);
}

/// Describes an error on one line, even if the service's message has several.
std::string description(const QDBusError& error) {
    return error.type() == QDBusError::ServiceUnknown
               ? "this desktop has no notification service"
               : "the notification service does not answer: " +
                     error.message().simplified().toStdString();
}

} // namespace

FreedesktopNotifications::FreedesktopNotifications() {
    signals_.invoked = [this](const QString& sender, unsigned int id, const QString& action) {
        if (shown_.erase({sender, id}) != 0 && delegate_ != nullptr) {
            delegate_->didReceiveResponse(action.toStdString(), [] {});
        }
    };
    signals_.closed = [this](const QString& sender, unsigned int id) {
        shown_.erase({sender, id});
    };
    sessionBus_ =
        MessageBus::session().whenConnected([this](const QDBusConnection& bus) { follow(bus); });
}

void FreedesktopNotifications::follow(const QDBusConnection& bus) {
    bus_ = bus;
    // Signals are accepted from any sender: given a service name, Qt would block while it asks the
    // bus which process owns the name. A signal counts only if its sender showed the notification.
    bus_.connect(QString(), path, service, QStringLiteral("ActionInvoked"), &signals_,
                 SLOT(actionInvoked(unsigned int, QString, QDBusMessage)));
    bus_.connect(QString(), path, service, QStringLiteral("NotificationClosed"), &signals_,
                 SLOT(notificationClosed(unsigned int, unsigned int, QDBusMessage)));
}

void FreedesktopNotifications::requestAuthorization(std::uint32_t /*options*/,
                                                    AuthorizationHandler completionHandler) {
    if (!bus_.isConnected()) {
        QTimer::singleShot(0, &signals_, [handler = std::move(completionHandler)] {
            handler(false, "there is no session bus to reach a notification service");
        });
        return;
    }
    callAsync(bus_, methodCall(QStringLiteral("GetCapabilities")), &signals_,
              [handler = std::move(completionHandler)](const QDBusMessage& answer) {
                  const QDBusPendingReply<QStringList> capabilities(answer);
                  handler(capabilities.isValid(),
                          capabilities.isValid()
                              ? std::nullopt
                              : std::optional(description(capabilities.error())));
              });
}

void FreedesktopNotifications::setNotificationCategories(
    std::vector<UserNotificationCategory> categories) {
    categories_ = std::move(categories);
}

void FreedesktopNotifications::add(const UserNotification& notification) {
    const auto presentation = delegate_ == nullptr ? 0 : delegate_->willPresentNotification();
    if ((presentation & (notificationAlert | notificationBanner)) == 0 || !bus_.isConnected()) {
        return;
    }
    // Ask every time, because another service may have replaced the previous one.
    callAsync(bus_, methodCall(QStringLiteral("GetCapabilities")), &signals_,
              [this, notification, presentation](const QDBusMessage& answer) {
                  const QDBusPendingReply<QStringList> capabilities(answer);
                  if (capabilities.isValid()) {
                      findOwner([=, this, names = capabilities.value()](const QString& owner) {
                          show(notification, presentation, names, owner);
                      });
                  }
              });
}

/// Does not call back if the service has exited in the meantime.
void FreedesktopNotifications::findOwner(std::function<void(const QString&)> found) {
    callAsync(bus_, nameOwnerQuestion(service), &signals_,
              [found = std::move(found)](const QDBusMessage& answer) {
                  if (const QDBusPendingReply<QString> owner(answer); owner.isValid()) {
                      found(owner.value());
                  }
              });
}

void FreedesktopNotifications::show(const UserNotification& notification,
                                    std::uint32_t presentation, const QStringList& capabilities,
                                    const QString& owner) {
    const auto category = std::ranges::find(categories_, notification.categoryIdentifier,
                                            &UserNotificationCategory::identifier);
    QStringList actions;
    // Some services without buttons would show a dialog instead.
    if (category != categories_.end() && capabilities.contains(QStringLiteral("actions"))) {
        for (const auto& action : category->actions) {
            actions << QString::fromStdString(action.identifier) << translated(action.title);
        }
    }
    const auto body = translated(notification.body);
    QVariantMap hints{{QStringLiteral("desktop-entry"), desktopEntry}};
    if ((presentation & notificationSound) != 0) {
        hints.insert(QStringLiteral("sound-name"), soundName);
    }
    // Send the call to the process, not to the service name, because only answers from that process
    // will count.
    auto message = QDBusMessage::createMethodCall(owner, path, service, QStringLiteral("Notify"));
    message << applicationName << 0U /* new */ << QString() /* the desktop entry's icon */
            << translated(notification.title)
            << (capabilities.contains(QStringLiteral("body-markup")) ? body.toHtmlEscaped() : body)
            << actions << hints << -1 /* the service chooses the timeout */;
    callAsync(
        bus_, message, &signals_,
        [this, owner](const QDBusMessage& answer) {
            if (const QDBusPendingReply<unsigned int> id(answer); id.isValid()) {
                shown_.emplace(owner, id.value());
            }
        },
        noTimeout); // the ID is needed even if the notification is shown late
}

} // namespace nocta
