#pragma once

#include "support/EventLoop.h"
#include "support/PrivateBus.h"
#include "support/Process.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <QVariantMap>

#include <algorithm>
#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

namespace nocta {

/// A mock location service. It records every call; the test chooses which calls the service
/// answers.
class MockGeoClue final : public QDBusVirtualObject {
public:
    enum class Start { agrees, refuses, waits };

    MockGeoClue()
        : bus_(QDBusConnection::connectToBus(QDBusConnection::SystemBus, "mock-geoclue")) {
        bus_.registerVirtualObject("/org/freedesktop/GeoClue2", this, QDBusConnection::SubPath);
        bus_.registerService("org.freedesktop.GeoClue2");
    }
    MockGeoClue(const MockGeoClue&) = delete;
    MockGeoClue& operator=(const MockGeoClue&) = delete;
    ~MockGeoClue() override { QDBusConnection::disconnectFromBus("mock-geoclue"); }

    bool answersCreateClient = true;
    Start start = Start::agrees;
    QVariantMap place = {{"Latitude", 52.5}, {"Longitude", 13.4}};
    std::vector<std::string> calls; ///< the methods, each with its last argument, if any

    void emitLocationUpdated() {
        auto signal = QDBusMessage::createSignal(client(), "org.freedesktop.GeoClue2.Client",
                                                 "LocationUpdated");
        signal << QVariant::fromValue(QDBusObjectPath("/"))
               << QVariant::fromValue(QDBusObjectPath("/org/freedesktop/GeoClue2/Location/0"));
        bus_.send(signal);
    }

    // These functions answer a pending `Start`.
    void answerStart() { bus_.send(waitingStart_.createReply()); }
    void refuseStart() {
        bus_.send(waitingStart_.createErrorReply(QDBusError::AccessDenied, "refused"));
    }

    bool hasSeen(const std::string& call) const {
        return std::count(calls.begin(), calls.end(), call) > 0;
    }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& /*bus*/) override {
        const auto member = message.member().toStdString();
        if (member == "Settle") {
            return bus_.send(message.createReply());
        }
        calls.push_back(member + argument(message));
        if (member == "CreateClient") {
            ++clients_;
            return !answersCreateClient || bus_.send(message.createReply(path(client())));
        }
        if (member == "Start") {
            waitingStart_ = message;
            if (start == Start::refuses) {
                refuseStart();
            } else if (start == Start::agrees) {
                answerStart();
            }
            return true;
        }
        if (member == "Get") {
            return bus_.send(message.createReply(
                QVariant::fromValue(QDBusVariant(path("/org/freedesktop/GeoClue2/Location/0")))));
        }
        return bus_.send(member == "GetAll" ? message.createReply(place) : message.createReply());
    }
    QString introspect(const QString& /*path*/) const override { return {}; }

private:
    QString client() const { return QString("/org/freedesktop/GeoClue2/Client/%1").arg(clients_); }
    static QVariant path(const QString& text) { return QVariant::fromValue(QDBusObjectPath(text)); }
    static std::string argument(const QDBusMessage& message) {
        if (message.arguments().isEmpty()) {
            return {};
        }
        auto last = message.arguments().last();
        if (last.canConvert<QDBusObjectPath>()) {
            return " " + qvariant_cast<QDBusObjectPath>(last).path().toStdString();
        }
        if (last.canConvert<QDBusVariant>()) {
            last = qvariant_cast<QDBusVariant>(last).variant();
        }
        return " " + last.toString().toStdString();
    }

    QDBusConnection bus_;
    QDBusMessage waitingStart_;
    int clients_ = 0;
};

/// The real GeoClue on the private system bus. It gets its location from a server in the test.
class GeoClueDaemon {
public:
    GeoClueDaemon() {
        server_.listen(QHostAddress::LocalHost);
        QObject::connect(&server_, &QTcpServer::newConnection, [this] {
            auto* const socket = server_.nextPendingConnection();
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                socket->readAll();
                isAsked_ = true;
                questions_.push_back(socket);
                answer();
            });
        });
        writeFile(configuration(), "[agent]\nwhitelist=nocta-test\n"
                                   "[network-nmea]\nenable=false\n"
                                   "[3g]\nenable=false\n[cdma]\nenable=false\n"
                                   "[modem-gps]\nenable=false\n[compass]\nenable=false\n"
                                   "[wifi]\nenable=true\nsubmit-data=false\nurl=http://127.0.0.1:" +
                                       std::to_string(server_.serverPort()) + "/\n");
    }

    /// Whether this machine allows a process to mount a configuration file in a namespace.
    bool canStart() const { return runToEnd(inNamespace("true")) == 0; }

    /// Starts the daemon without cached locations. If the daemon is already running, it is
    /// restarted.
    void start() {
        process_.reset();
        isAsked_ = false;
        process_.emplace(inNamespace("exec /usr/libexec/geoclue -t 0"), Process::Environment{},
                         folder_.path() + "/output");
    }

    /// From now on, leaves location requests unanswered.
    void hidePlace() { place_.clear(); }

    /// From now on, answers every location request with this location, including pending ones.
    void setPlace(double latitude, double longitude) {
        place_ = QString(R"({"location":{"lat":%1,"lng":%2},"accuracy":1000})")
                     .arg(latitude)
                     .arg(longitude)
                     .toUtf8();
        answer();
    }
    bool isAsked() const { return isAsked_; }

private:
    std::string configuration() const { return folder_.path() + "/geoclue.conf"; }

    std::vector<std::string> inNamespace(const std::string& command) const {
        return {"unshare", getuid() == 0 ? "-m" : "-rm", "sh", "-c",
                "mount --bind " + configuration() + " /etc/geoclue/geoclue.conf && " + command};
    }

    void answer() {
        if (place_.isEmpty()) {
            return;
        }
        for (auto* const socket : std::exchange(questions_, {})) {
            socket->write("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\n"
                          "Connection: close\r\nContent-Length: " +
                          QByteArray::number(place_.size()) + "\r\n\r\n" + place_);
            socket->disconnectFromHost();
        }
    }

    TemporaryFolder folder_;
    QTcpServer server_;
    std::vector<QTcpSocket*> questions_;
    QByteArray place_;
    bool isAsked_ = false;
    std::optional<Process> process_;
};

/// The user's location agent. It reports to GeoClue the highest location accuracy that the user
/// allows, if any. GeoClue requests authorization for individual programs only if they are
/// sandboxed.
class LocationAgent final : public QDBusVirtualObject {
public:
    explicit LocationAgent(bool allows)
        : allows_(allows),
          bus_(QDBusConnection::connectToBus(QDBusConnection::SystemBus, "location-agent")) {
        bus_.registerVirtualObject("/org/freedesktop/GeoClue2/Agent", this);
    }
    LocationAgent(const LocationAgent&) = delete;
    LocationAgent& operator=(const LocationAgent&) = delete;
    ~LocationAgent() override { QDBusConnection::disconnectFromBus("location-agent"); }

    /// Registers with the daemon. Returns false if the daemon is not running or refuses this agent.
    bool registerWithDaemon() {
        auto call = QDBusMessage::createMethodCall("org.freedesktop.GeoClue2",
                                                   "/org/freedesktop/GeoClue2/Manager",
                                                   "org.freedesktop.GeoClue2.Manager", "AddAgent");
        call << "nocta-test";
        const auto pending = bus_.asyncCall(call); // the daemon calls the agent before it answers
        return serveUntil([&] { return pending.isFinished(); }) && !pending.isError();
    }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& /*bus*/) override {
        return bus_.send(message.createReply(
            QVariantMap{{"MaxAccuracyLevel", QVariant::fromValue(allows_ ? 8U : 0U)}}));
    }
    QString introspect(const QString& /*path*/) const override { return {}; }

private:
    bool allows_;
    QDBusConnection bus_;
};

} // namespace nocta
