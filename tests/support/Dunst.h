#pragma once

#include "backends/linux/bus/MessageBus.h"
#include "support/EventLoop.h"
#include "support/Process.h"
#include "support/XServer.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVariant>

#include <stdexcept>
#include <string>

namespace nocta {

/// A real notification daemon on the private session bus, with a private screen. If the daemon asks
/// which of several buttons to press, the simulated user chooses the one that contains `word`.
class Dunst {
public:
    Dunst(const std::string& sessionBusAddress, const std::string& word)
        : environment_{{"DISPLAY", server_.display()},
                       {"WAYLAND_DISPLAY", ""},
                       {"HOME", folder_.path()},
                       {"DBUS_SESSION_BUS_ADDRESS", sessionBusAddress}},
          process_({"dunst", "-conf", configuration(word)}, environment_, log()) {
        if (!serveUntil([] {
                return sessionBus().interface()->isServiceRegistered(serviceName).value();
            })) {
            throw std::runtime_error("the notification daemon did not start: " + contentOf(log()));
        }
    }

    /// The number of notifications on the screen.
    static int displayed() {
        return sessionBus()
            .call(QDBusMessage::createMethodCall(serviceName, "/org/freedesktop/Notifications",
                                                 "org.freedesktop.DBus.Properties", "Get")
                      << "org.dunstproject.cmd0"
                      << "displayedLength",
                  QDBus::BlockWithGui)
            .arguments()
            .value(0)
            .value<QDBusVariant>()
            .variant()
            .toInt();
    }

    /// Presses a button of the notification. There must be only one notification.
    bool press() const { return runToEnd({"dunstctl", "action", "0"}, environment_) == 0; }

private:
    static constexpr auto serviceName = "org.freedesktop.Notifications";

    std::string log() const { return folder_.path() + "/log"; }
    std::string configuration(const std::string& word) const {
        auto file = folder_.path() + "/dunstrc";
        writeFile(file, "[global]\ndmenu = /bin/grep " + word + "\n");
        return file;
    }

    XServer server_{XServer::Kind::xvfb};
    TemporaryFolder folder_;
    Process::Environment environment_;
    Process process_;
};

} // namespace nocta
