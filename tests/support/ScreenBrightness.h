#pragma once

#include "support/EventLoop.h"
#include "support/PrivateBus.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QStringList>
#include <QVariantMap>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

namespace nocta {

/// Simulates Plasma's brightness service on the test's bus, with displays that the test chooses. As
/// in Plasma, levels are limited to the display's maximum, and each change is announced before the
/// call is answered.
class ScreenBrightness final : public QDBusVirtualObject {
public:
    explicit ScreenBrightness(const PrivateBus& bus)
        : bus_(QDBusConnection::connectToBus(QString::fromStdString(bus.address()), "Plasma")) {
        EXPECT_TRUE(bus_.registerVirtualObject(path, this, QDBusConnection::SubPath));
    }
    ScreenBrightness(const ScreenBrightness&) = delete;
    ScreenBrightness& operator=(const ScreenBrightness&) = delete;
    ~ScreenBrightness() override { QDBusConnection::disconnectFromBus("Plasma"); }

    void provide() { ASSERT_TRUE(bus_.registerService(interface)); }
    void withdraw() { ASSERT_TRUE(bus_.unregisterService(interface)); }

    static QVariantMap display(bool isInternal, int level, int maxLevel = 10000) {
        return {{"Label", isInternal ? "Built-in Screen" : "A monitor"},
                {"IsInternal", isInternal},
                {"Brightness", level},
                {"MaxBrightness", maxLevel}};
    }

    std::map<QString, QVariantMap> displays; ///< by object name
    QVariant names;                          ///< if set, sent instead of the displays' names
    QVariant properties;                     ///< if set, sent instead of a display's properties
    QString emptyAnswers; ///< the name of a method that is answered without a value
    std::vector<int> written;
    std::vector<unsigned> flags;
    int readings = 0;
    bool isAnswering = true; ///< if false, calls are kept until `answerAll`

    int level(const QString& name) { return displays[name]["Brightness"].toInt(); }

    void answerAll() {
        isAnswering = true;
        while (!kept_.empty()) {
            answerFirst();
        }
    }
    void answerFirst() {
        const auto call = kept_.front();
        kept_.erase(kept_.begin());
        answer(call);
    }
    std::size_t keptCalls() const { return kept_.size(); }

    /// Changes the level as if the user had pressed the brightness keys.
    void change(const QString& name, int level) {
        displays[name]["Brightness"] = level;
        emitSignal("BrightnessChanged", {name, level, "", ""});
    }
    void emitSignal(const QString& name, const QVariantList& arguments) {
        auto signal = QDBusMessage::createSignal(path, interface, name);
        signal.setArguments(arguments);
        bus_.send(signal);
    }
    /// Returns once the program has read the displays. The program starts the second reading only
    /// after it has finished the first one.
    void announceAndWait(const QString& signal = "DisplayAdded") {
        for (int i = 0; i < 2; ++i) {
            const auto before = readings;
            emitSignal(signal, {"display0"});
            ASSERT_TRUE(serveUntil([&] { return readings > before; }));
        }
    }

    /// Returns once the bus has forwarded everything that the service has sent.
    void flush() {
        const auto bus = QStringLiteral("org.freedesktop.DBus");
        bus_.call(QDBusMessage::createMethodCall(bus, "/", bus + ".Peer", "Ping"));
    }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& /*bus*/) override {
        kept_.push_back(message);
        if (isAnswering) {
            answerAll();
        }
        return true;
    }
    QString introspect(const QString& /*path*/) const override { return {}; }

private:
    static constexpr auto path = "/org/kde/ScreenBrightness";
    static constexpr auto interface = "org.kde.ScreenBrightness";

    void answer(const QDBusMessage& call) {
        const auto name = call.path().section('/', 4);
        if (call.member() == "Get") {
            EXPECT_EQ(call.arguments(), (QVariantList{interface, "DisplaysDBusNames"}));
            ++readings;
            QStringList known;
            for (const auto& [key, display] : displays) {
                known << key;
            }
            const auto value = names.isValid() ? names : QVariant(known);
            reply(call, QVariant::fromValue(QDBusVariant(value)));
        } else if (!displays.contains(name)) {
            bus_.send(call.createErrorReply(QDBusError::UnknownObject, "no such display"));
        } else if (call.member() == "GetAll") {
            reply(call, properties.isValid() ? properties : QVariant(displays[name]));
        } else {
            set(call, name);
        }
    }
    void reply(const QDBusMessage& call, const QVariant& value) {
        bus_.send(call.member() == emptyAnswers ? call.createReply() : call.createReply(value));
    }
    void set(const QDBusMessage& call, const QString& name) {
        EXPECT_EQ(call.interface(), "org.kde.ScreenBrightness.Display");
        EXPECT_EQ(call.member(), "SetBrightness");
        EXPECT_EQ(call.signature(), "iu");
        written.push_back(call.arguments().value(0).toInt());
        flags.push_back(call.arguments().value(1).toUInt());
        change(name, std::min(written.back(), displays[name]["MaxBrightness"].toInt()));
        bus_.send(call.createReply());
    }

    QDBusConnection bus_;
    std::vector<QDBusMessage> kept_;
};

} // namespace nocta
