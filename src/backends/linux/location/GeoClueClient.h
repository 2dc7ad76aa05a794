#pragma once

#include "platform/LocationManager.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QTimer>

#include <functional>
#include <memory>
#include <string>

namespace nocta {

/// One client of GeoClue 2, the location service of the system bus, from its creation to its
/// deletion. Nothing waits: everything is told to the callbacks, from the run loop, and nothing
/// any more once the client has been destroyed, which may happen inside a callback.
class GeoClueClient : public std::enable_shared_from_this<GeoClueClient> {
public:
    struct Callbacks {
        /// The user, or who speaks for the user, agrees. Places follow.
        std::function<void()> started;
        std::function<void(Location)> located;
        /// The user refuses.
        std::function<void()> refused;
        /// This system has no location service, or no bus to reach it by.
        std::function<void()> absent;
        /// Anything else; nothing follows.
        std::function<void(const std::string& description)> failed;
    };

    static std::shared_ptr<GeoClueClient> create(Callbacks callbacks);
    GeoClueClient(const GeoClueClient&) = delete;
    GeoClueClient& operator=(const GeoClueClient&) = delete;
    ~GeoClueClient();

private:
    using Answer = std::function<void(const QDBusMessage&)>;

    explicit GeoClueClient(Callbacks callbacks);
    void open();
    void findOwner();
    void start();
    void readPlace();
    void call(const QDBusMessage& message, int timeout, Answer answer);
    void end(const QDBusMessage& error);

    Callbacks callbacks_;
    QDBusConnection bus_;
    QString service_; ///< its name; once it has made the client, the unique name of the process
    QString path_;
    QDBusServiceWatcher watcher_;
    // A D-Bus signal can start a timer by itself.
    QTimer moved_;
    QTimer busLost_;
};

} // namespace nocta
