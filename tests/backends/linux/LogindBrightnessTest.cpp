#include "backends/linux/SysfsBacklight.h"
#include "support/EventLoop.h"
#include "support/Process.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace nocta {
namespace {

/// A system bus of the test's own.
class PrivateSystemBus {
public:
    PrivateSystemBus() {
        writeFile(folder_.path() + "/bus.conf",
                  "<busconfig><listen>unix:path=" + folder_.path() +
                      "/bus</listen><auth>EXTERNAL</auth><policy context=\"default\">"
                      "<allow user=\"*\"/><allow own=\"*\"/><allow send_destination=\"*\"/>"
                      "<allow receive_sender=\"*\"/></policy></busconfig>");
        const auto address = "unix:path=" + folder_.path() + "/bus";
        setenv("DBUS_SYSTEM_BUS_ADDRESS", address.c_str(), 1);
        process_.emplace(std::vector<std::string>{
            "dbus-daemon", "--config-file=" + folder_.path() + "/bus.conf", "--nofork"});
        EXPECT_TRUE(waitUntil([&] {
            auto const isUp =
                QDBusConnection::connectToBus(QString::fromStdString(address), "up").isConnected();
            QDBusConnection::disconnectFromBus("up");
            return isUp;
        }));
    }

private:
    TemporaryFolder folder_;
    std::optional<Process> process_;
};

/// What logind is asked.
class Session final : public QDBusVirtualObject {
public:
    QList<QDBusMessage> calls;

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        calls << message;
        return connection.send(message.createReply());
    }
    QString introspect(const QString& /*path*/) const override { return {}; }
};

TEST(LogindBrightness, AsksTheSeatManagerForThisSession) {
    const PrivateSystemBus bus;
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

TEST(LogindBrightness, WithoutASystemBusNobodyCanBeAsked) {
    setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
    EXPECT_TRUE(serveUntil([] { return !setBrightnessThroughLogind("intel_backlight", 1); }));
    const PrivateSystemBus bus;
    EXPECT_TRUE(setBrightnessThroughLogind("intel_backlight", 1)) << "the bus has come up";
}

} // namespace
} // namespace nocta
