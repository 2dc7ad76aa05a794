#pragma once

#include "backends/linux/bus/BusSignal.h"
#include "backends/linux/x11/X11Connection.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QVariantList>

#include <functional>

namespace nocta {

/// Finds out whether the desktop has a place for icons: a host of StatusNotifierItems on the
/// session bus, or an XEmbed tray on the X server. A panel often starts after the programs of a
/// session, and Qt looks for a tray only once, so no icon may be created before there is a place
/// for it. Even for an icon in an XEmbed tray, Qt queries the watcher of StatusNotifierItems and
/// blocks until the watcher answers, so the icon must wait for the watcher in both cases. This
/// class never blocks, and queries the watcher again only after a change.
class SystemTray {
public:
    /// `connection` is null without an X server.
    explicit SystemTray(X11Connection* connection);

    bool isAvailable() const { return isAvailable_; }

    /// Calls `action` once, as soon as there is a place for icons. If there already is one, calls
    /// `action` immediately.
    void whenAvailable(std::function<void()> action);

private:
    void follow(const QDBusConnection& bus);
    void askForHost();
    void ask(const QString& interface, const QString& method, const QVariantList& arguments,
             std::function<void(const QDBusMessage&)> answered);
    void answered(const QDBusMessage& answer);
    void lookForXEmbedTray();
    void becomeAvailable();

    X11Connection* connection_;
    xcb_atom_t selection_ = XCB_ATOM_NONE;
    bool isAvailable_ = false;
    bool isWatcherMute_ = false; ///< the watcher's answer is outstanding
    bool hasXEmbedTray_ = false;
    std::function<void()> action_;
    QDBusServiceWatcher watcher_;
    BusSignal hostRegistered_{[this] { askForHost(); }};
    Subscription sessionBus_;
    Subscription events_;
};

} // namespace nocta
