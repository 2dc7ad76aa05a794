#include "support/NoctaProcess.h"
#include "support/PrivateBus.h"

#include <QDBusConnection>
#include <QDBusMessage>

namespace nocta {
namespace {

/// The program on a machine whose logind announces sleep.
class NoctaWakeTest : public NoctaProcess {
protected:
    PrivateBus bus{"DBUS_SYSTEM_BUS_ADDRESS"};
    QDBusConnection logind = QDBusConnection::connectToBus(QString::fromStdString(bus.address()),
                                                           QStringLiteral("logind-of-wake"));

    void TearDown() override { QDBusConnection::disconnectFromBus(logind.name()); }

    void prepareForSleep(bool isStarting) {
        auto signal = QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/login1"),
                                                 QStringLiteral("org.freedesktop.login1.Manager"),
                                                 QStringLiteral("PrepareForSleep"));
        signal << isStarting;
        ASSERT_TRUE(logind.send(signal));
    }
};
INSTANTIATE_TEST_SUITE_P(Servers, NoctaWakeTest, everyServer, serverName);

TEST_P(NoctaWakeTest, RampsLostDuringSleepAreRestored) {
    auto variables = environment();
    variables["DBUS_SYSTEM_BUS_ADDRESS"] = bus.address();
    nocta = std::make_unique<Process>(std::vector{programFolder() + "/nocta"}, variables, output);
    ASSERT_TRUE(waitForBrightness(0.75)) << contentOf(output);
    prepareForSleep(true);
    for (const auto crtc : client.activeCrtcs()) {
        client.setRamp(crtc, factory());
    }
    ASSERT_FALSE(shows(0.75));
    prepareForSleep(false);
    EXPECT_TRUE(waitForBrightness(0.75));
    nocta->signal(SIGTERM);
    EXPECT_EQ(nocta->wait(), 0);
    EXPECT_TRUE(isGivenBack());
}

} // namespace
} // namespace nocta
