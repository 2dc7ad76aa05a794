#include "backends/linux/shell/SystemTray.h"

#include "backends/linux/shell/QtRunLoop.h"
#include "support/EventLoop.h"
#include "support/PrivateBus.h"
#include "support/XClient.h"
#include "support/XServer.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <gtest/gtest.h>

#include <cstdlib>

namespace nocta {
namespace {

/// A fake StatusNotifierWatcher, which a panel usually provides.
class Watcher final : public QDBusVirtualObject {
public:
    explicit Watcher(const PrivateBus& bus)
        : connection_(
              QDBusConnection::connectToBus(QString::fromStdString(bus.address()), "a panel")) {
        EXPECT_TRUE(connection_.registerVirtualObject("/StatusNotifierWatcher", this));
        EXPECT_TRUE(connection_.registerService("org.kde.StatusNotifierWatcher"));
    }
    ~Watcher() override { QDBusConnection::disconnectFromBus("a panel"); }

    int questions = 0;

    void registerHost() {
        hasHost_ = true;
        connection_.send(QDBusMessage::createSignal("/StatusNotifierWatcher",
                                                    "org.kde.StatusNotifierWatcher",
                                                    "StatusNotifierHostRegistered"));
    }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        ++questions;
        return connection.send(message.createReply(QVariant::fromValue(QDBusVariant(hasHost_))));
    }
    QString introspect(const QString& /*path*/) const override { return {}; }

private:
    QDBusConnection connection_;
    bool hasHost_ = false;
};

class SystemTrayTest : public ::testing::Test {
protected:
    PrivateBus bus{"DBUS_SESSION_BUS_ADDRESS"};
    int told = 0;

    void listenTo(SystemTray& tray) {
        tray.whenAvailable([this] { ++told; });
    }
};

// One test covers all cases, because the D-Bus library connects to the session bus only once per
// process.
TEST_F(SystemTrayTest, HostThatStartsLateIsReportedOnce) {
    SystemTray tray(nullptr);
    listenTo(tray);
    EXPECT_FALSE(tray.isAvailable());
    {
        Watcher watcher(bus);
        ASSERT_TRUE(serveUntil([&] { return watcher.questions > 0; }));
        EXPECT_FALSE(tray.isAvailable()) << "a watcher without a host should not count as a tray";
        watcher.registerHost();
        ASSERT_TRUE(serveUntil([&] { return tray.isAvailable(); }));
        EXPECT_EQ(told, 1);
        watcher.registerHost();

        SystemTray second(nullptr);
        listenTo(second);
        EXPECT_TRUE(serveUntil([&] { return second.isAvailable(); }))
            << "an existing host should be found";
    }
    EXPECT_EQ(told, 2);
}

TEST(SystemTray, XEmbedTrayThatStartsLateIsReported) {
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
    const XServer server(XServer::Kind::xvfb);
    QtRunLoop runLoop;
    X11Connection connection(runLoop);
    SystemTray tray(&connection);
    int told = 0;
    tray.whenAvailable([&] { ++told; });
    EXPECT_FALSE(tray.isAvailable());
    connection.synchronize();
    XClient panel;
    panel.becomeSystemTray();
    EXPECT_TRUE(serveUntil([&] { return tray.isAvailable(); }));
    EXPECT_EQ(told, 1);
    const SystemTray second(&connection);
    EXPECT_TRUE(second.isAvailable()) << "an existing tray should be found";
}

} // namespace
} // namespace nocta
