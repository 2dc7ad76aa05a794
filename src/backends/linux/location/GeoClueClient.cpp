#include "backends/linux/location/GeoClueClient.h"

#include "backends/linux/bus/AsyncCall.h"
#include "backends/linux/bus/MessageBus.h"
#include "backends/linux/bus/NameOwner.h"

#include <QDBusError>
#include <QDBusObjectPath>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QVariantMap>

#include <chrono>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

namespace nocta {

namespace {

using namespace std::chrono_literals;

const auto serviceName = QStringLiteral("org.freedesktop.GeoClue2");
const auto managerPath = QStringLiteral("/org/freedesktop/GeoClue2/Manager");
const auto managerInterface = QStringLiteral("org.freedesktop.GeoClue2.Manager");
const auto clientInterface = QStringLiteral("org.freedesktop.GeoClue2.Client");
const auto locationInterface = QStringLiteral("org.freedesktop.GeoClue2.Location");
const auto propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

const auto desktopId = QStringLiteral("nocta");
constexpr auto cityAccuracy = 4U; // a few kilometers, which shift sunrise and sunset by seconds

// Without an agent that can ask the user, the service does not answer at all.
constexpr int answerTime = std::chrono::milliseconds(30s).count();

} // namespace

std::shared_ptr<GeoClueClient> GeoClueClient::create(Callbacks callbacks) {
    std::shared_ptr<GeoClueClient> client(new GeoClueClient(std::move(callbacks)));
    client->open();
    return client;
}

GeoClueClient::GeoClueClient(Callbacks callbacks)
    : callbacks_(std::move(callbacks)), bus_(systemBus()), service_(serviceName) {
    watcher_.setConnection(bus_);
    watcher_.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    QObject::connect(&watcher_, &QDBusServiceWatcher::serviceUnregistered, [this] {
        const auto alive = shared_from_this();
        callbacks_.failed("the location service has stopped");
    });
    busLost_.connect(bus_, QStringLiteral("/org/freedesktop/DBus/Local"),
                     QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"));
}

GeoClueClient::~GeoClueClient() {
    if (!path_.isEmpty()) {
        auto call = QDBusMessage::createMethodCall(service_, managerPath, managerInterface,
                                                   QStringLiteral("DeleteClient"));
        call << QVariant::fromValue(QDBusObjectPath(path_));
        bus_.send(call);
    }
}

void GeoClueClient::open() {
    if (!bus_.isConnected()) {
        busLost_.start();
        return;
    }
    call(QDBusMessage::createMethodCall(service_, managerPath, managerInterface,
                                        QStringLiteral("CreateClient")),
         answerTime, [this](const QDBusMessage& answer) {
             const QDBusPendingReply<QDBusObjectPath> path(answer);
             if (path.isError()) {
                 end(answer);
                 return;
             }
             path_ = path.value().path();
             findOwner();
         });
}

void GeoClueClient::findOwner() {
    call(nameOwnerQuestion(serviceName), answerTime, [this](const QDBusMessage& answer) {
        const QDBusPendingReply<QString> owner(answer);
        if (owner.isError()) {
            end(answer);
            return;
        }
        service_ = owner.value();
        start();
    });
}

void GeoClueClient::start() {
    watcher_.addWatchedService(service_);
    moved_.connect(bus_, path_, clientInterface, QStringLiteral("LocationUpdated"));
    const auto set = [this](const QString& property, const QVariant& value) {
        auto message = QDBusMessage::createMethodCall(service_, path_, propertiesInterface,
                                                      QStringLiteral("Set"));
        message << clientInterface << property << QVariant::fromValue(QDBusVariant(value));
        bus_.send(message);
    };
    set(QStringLiteral("DesktopId"), desktopId);
    set(QStringLiteral("RequestedAccuracyLevel"), cityAccuracy);
    call(QDBusMessage::createMethodCall(service_, path_, clientInterface, QStringLiteral("Start")),
         noTimeout, // the user may take any amount of time to decide
         [this](const QDBusMessage& answer) {
             if (answer.type() == QDBusMessage::ErrorMessage) {
                 end(answer);
             } else {
                 callbacks_.started();
             }
         });
}

void GeoClueClient::readPlace() {
    auto ofClient =
        QDBusMessage::createMethodCall(service_, path_, propertiesInterface, QStringLiteral("Get"));
    ofClient << clientInterface << QStringLiteral("Location");
    call(ofClient, answerTime, [this](const QDBusMessage& answer) {
        const QDBusPendingReply<QDBusVariant> reply(answer);
        if (reply.isError()) {
            return; // the next location is reported anyway
        }
        auto ofPlace = QDBusMessage::createMethodCall(
            service_, qvariant_cast<QDBusObjectPath>(reply.value().variant()).path(),
            propertiesInterface, QStringLiteral("GetAll"));
        ofPlace << locationInterface;
        call(ofPlace, answerTime, [this](const QDBusMessage& place) {
            const QDBusPendingReply<QVariantMap> values(place);
            const auto degrees = [&](const QString& name, double most) {
                const auto value = values.isError() ? QVariant() : values.value().value(name);
                const auto number = value.typeId() == QMetaType::Double
                                        ? value.toDouble()
                                        : std::numeric_limits<double>::quiet_NaN();
                return std::abs(number) <= most ? std::optional(number) : std::nullopt;
            };
            const auto latitude = degrees(QStringLiteral("Latitude"), 90);
            const auto longitude = degrees(QStringLiteral("Longitude"), 180);
            if (latitude && longitude) {
                callbacks_.located({*latitude, *longitude});
            }
        });
    });
}

/// Keeps this client alive until the answer has been handled, because handling it may release the
/// client.
void GeoClueClient::call(const QDBusMessage& message, int timeout, Answer answer) {
    callAsync(
        bus_, message, &moved_,
        [client = weak_from_this(), answer = std::move(answer)](const QDBusMessage& reply) {
            if (const auto alive = client.lock()) {
                answer(reply);
            }
        },
        timeout);
}

void GeoClueClient::end(const QDBusMessage& error) {
    const auto type = QDBusError(error).type();
    if (type == QDBusError::AccessDenied) {
        callbacks_.refused();
    } else if (type == QDBusError::ServiceUnknown || !bus_.isConnected()) {
        callbacks_.absent();
    } else {
        callbacks_.failed(error.errorMessage().toStdString());
    }
}

void GeoClueClient::endWithoutBus() {
    const auto alive = shared_from_this();
    if (MessageBus::system().isMute()) {
        callbacks_.failed("The system bus does not answer"); // it may answer later
    } else {
        callbacks_.absent();
    }
}

} // namespace nocta
