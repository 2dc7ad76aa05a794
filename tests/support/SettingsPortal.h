#pragma once

#include "support/EventLoop.h"
#include "support/PrivateBus.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QMap>
#include <QVariantMap>
#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>

namespace nocta {

/// A portal on the test's bus, with settings that the test chooses.
class SettingsPortal final : public QDBusVirtualObject {
public:
    explicit SettingsPortal(const PrivateBus& bus)
        : bus_(QDBusConnection::connectToBus(QString::fromStdString(bus.address()), "a portal")) {
        EXPECT_TRUE(bus_.registerVirtualObject("/org/freedesktop/portal/desktop", this));
        EXPECT_TRUE(bus_.registerService("org.freedesktop.portal.Desktop"));
    }
    SettingsPortal(const SettingsPortal&) = delete;
    SettingsPortal& operator=(const SettingsPortal&) = delete;
    ~SettingsPortal() override { QDBusConnection::disconnectFromBus("a portal"); }

    int questions = 0;
    std::map<std::string, QVariantMap> settings;
    std::optional<QVariant> invalidAnswer; ///< if set, this value is sent instead of the settings

    void emitSettingChanged() {
        auto signal = QDBusMessage::createSignal(
            "/org/freedesktop/portal/desktop", "org.freedesktop.portal.Settings", "SettingChanged");
        signal << "org.freedesktop.appearance"
               << "reduced-motion" << QVariant::fromValue(QDBusVariant(0U));
        bus_.send(signal);
    }
    /// Returns once the program has processed the answer. The program reads the settings again
    /// after a second change only if it has processed the first answer.
    void emitSettingChangedAndWait() {
        for (int i = 0; i < 2; ++i) {
            const auto before = questions;
            emitSettingChanged();
            ASSERT_TRUE(serveUntil([&] { return questions == before + 1; }));
        }
    }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        if (message.interface() != "org.freedesktop.portal.Settings") {
            return false; // Qt itself calls other portals
        }
        ++questions;
        EXPECT_EQ(message.member(), "ReadAll");
        if (invalidAnswer) {
            return bus.send(message.createReply(*invalidAnswer));
        }
        QDBusArgument answer;
        answer.beginMap(QMetaType::fromType<QString>(), QMetaType::fromType<QVariantMap>());
        for (const auto& name : message.arguments().value(0).toStringList()) {
            if (const auto group = settings.find(name.toStdString()); group != settings.end()) {
                answer.beginMapEntry();
                answer << name << group->second;
                answer.endMapEntry();
            }
        }
        answer.endMap();
        return bus.send(message.createReply(QVariant::fromValue(answer)));
    }
    QString introspect(const QString& /*path*/) const override { return {}; }

private:
    QDBusConnection bus_;
};

} // namespace nocta
