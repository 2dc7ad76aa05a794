#pragma once

#include "backends/linux/x11/X11Connection.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QTimer>
#include <QVariantList>

#include <functional>

namespace nocta {

/// Knows whether the desktop has a place for icons: a host of StatusNotifierItems on the session
/// bus, or an XEmbed tray on the X server. A panel often starts after the programs of a session,
/// and the toolkit looks only once, so no icon may be made before there is a place for it. The
/// toolkit asks the watcher of the items even for an icon in an XEmbed tray, and waits for it, so
/// that a watcher that does not answer must keep it from both. Nobody is waited for here, and
/// nothing is asked again unless something has changed.
class SystemTray {
public:
    /// `connection` may be null: no X server.
    explicit SystemTray(X11Connection* connection);

    bool isAvailable() const { return isAvailable_; }

    /// Called once, when there is a place; at once if there is one already.
    void whenAvailable(std::function<void()> action);

private:
    void follow(QDBusConnection bus);
    void askForHost();
    void ask(const QString& interface, const QString& method, const QVariantList& arguments,
             std::function<void(const QDBusMessage&)> answered);
    void answered(const QDBusMessage& answer);
    void lookForXEmbedTray();
    void becomeAvailable();

    X11Connection* connection_;
    xcb_atom_t selection_ = XCB_ATOM_NONE;
    bool isAvailable_ = false;
    bool isWatcherMute_ = false; ///< as long as it has not answered
    bool hasXEmbedTray_ = false;
    std::function<void()> action_;
    QDBusServiceWatcher watcher_;
    QTimer question_; ///< asks at the end of the turn; a D-Bus signal can start a timer by itself
    Subscription sessionBus_;
    Subscription events_;
};

} // namespace nocta
