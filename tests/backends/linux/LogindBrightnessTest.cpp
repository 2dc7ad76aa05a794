#include "backends/linux/SysfsBacklight.h"
#include "support/EventLoop.h"
#include "support/Process.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace nocta {
namespace {

/// A system bus of the test's own. All have one address, as the D-Bus library asks for it once.
class PrivateSystemBus {
public:
    PrivateSystemBus() {
        static TemporaryFolder const folder;
        auto const address = "unix:path=" + folder.path() + "/bus";
        auto const configuration = folder.path() + "/bus.conf";
        std::filesystem::remove(folder.path() + "/bus");
        writeFile(configuration, "<busconfig><listen>" + address +
                                     "</listen><auth>EXTERNAL</auth><policy context=\"default\">"
                                     "<allow user=\"*\"/><allow own=\"*\"/>"
                                     "<allow send_destination=\"*\" send_requested_reply=\"true\"/>"
                                     "<allow send_destination=\"*\"/>"
                                     "<allow receive_sender=\"*\"/></policy></busconfig>");
        setenv("DBUS_SYSTEM_BUS_ADDRESS", address.c_str(), 1);
        process_.emplace(std::vector<std::string>{
            "dbus-daemon", "--config-file=" + configuration, "--nofork"});
        EXPECT_TRUE(waitUntil([&] {
            auto const isUp = QDBusConnection::connectToBus(QString::fromStdString(address), "up")
                                  .isConnected();
            QDBusConnection::disconnectFromBus("up");
            return isUp;
        }));
    }

private:
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

TEST(LogindBrightness, NobodyCanBeAskedWhileTheSystemBusIsGone) {
    {
        PrivateSystemBus const bus;
        EXPECT_TRUE(setBrightnessThroughLogind("intel_backlight", 1));
    }
    EXPECT_TRUE(serveUntil([] { return !setBrightnessThroughLogind("intel_backlight", 1); }));
    PrivateSystemBus const bus;
    EXPECT_TRUE(setBrightnessThroughLogind("intel_backlight", 1)) << "the bus has come up again";
}

} // namespace
} // namespace nocta
