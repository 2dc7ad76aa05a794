#include "backends/linux/backlight/SysfsBacklight.h"
#include "support/EventLoop.h"
#include "support/PrivateBus.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <gtest/gtest.h>

namespace nocta {
namespace {

constexpr auto systemBus = "DBUS_SYSTEM_BUS_ADDRESS";

/// A fake logind session that records all calls.
class Session final : public QDBusVirtualObject {
public:
    QList<QDBusMessage> calls;

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        calls << message;
        return connection.send(message.createReply());
    }
    QString introspect(const QString& /*path*/) const override { return {}; }
};

TEST(LogindBrightness, AsksLogindForThisSession) {
    const PrivateBus bus(systemBus);
    auto logind = QDBusConnection::connectToBus(QDBusConnection::SystemBus, "logind");
    Session session;
    ASSERT_TRUE(logind.registerVirtualObject("/org/freedesktop/login1/session/auto", &session));
    ASSERT_TRUE(logind.registerService("org.freedesktop.login1"));

    ASSERT_TRUE(setBrightnessThroughLogind("intel_backlight", 10666));
    ASSERT_TRUE(serveUntil([&] { return !session.calls.isEmpty(); }));
    const auto& call = session.calls[0];
    EXPECT_EQ(call.interface(), "org.freedesktop.login1.Session");
    EXPECT_EQ(call.member(), "SetBrightness");
    EXPECT_EQ(call.signature(), "ssu");
    EXPECT_EQ(call.arguments(), (QVariantList{"backlight", "intel_backlight", 10666U}));
}

TEST(LogindBrightness, FailsWhileTheSystemBusIsUnavailable) {
    {
        const PrivateBus bus(systemBus);
        EXPECT_TRUE(setBrightnessThroughLogind("intel_backlight", 1));
    }
    EXPECT_TRUE(serveUntil([] { return !setBrightnessThroughLogind("intel_backlight", 1); }));
    const PrivateBus bus(systemBus);
    EXPECT_TRUE(setBrightnessThroughLogind("intel_backlight", 1))
        << "the call should succeed once the bus is back";
}

} // namespace
} // namespace nocta
