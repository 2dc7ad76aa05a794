#pragma once

#include "backends/linux/bus/BusSignal.h"
#include "platform/LocationManager.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>

#include <functional>
#include <memory>
#include <string>

namespace nocta {

/// One client of GeoClue 2, the location service on the system bus, from its creation to its
/// deletion. No call blocks: the run loop passes all results to the callbacks. After the client has
/// been destroyed, which may happen inside a callback, no callback is called.
class GeoClueClient : public std::enable_shared_from_this<GeoClueClient> {
public:
    struct Callbacks {
        /// The user, or the agent on the user's behalf, has granted access. Locations follow.
        std::function<void()> started;
        std::function<void(Location)> located;
        /// The user has refused.
        std::function<void()> refused;
        /// This system has no location service, or no bus through which to reach the service.
        std::function<void()> absent;
        /// Any other failure; no more callbacks follow.
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
    void endWithoutBus();

    Callbacks callbacks_;
    QDBusConnection bus_;
    QString service_; ///< well-known name; the unique name of its process once the client exists
    QString path_;
    QDBusServiceWatcher watcher_;
    BusSignal moved_{[this] { readPlace(); }};
    BusSignal busLost_{[this] { endWithoutBus(); }};
};

} // namespace nocta
