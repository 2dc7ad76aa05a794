#include "backends/linux/ReducedMotion.h"

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
#include <utility>

namespace nocta {
namespace {

/// The portal's settings as the test wants them.
class Portal final : public QDBusVirtualObject {
public:
    explicit Portal(const PrivateBus& bus)
        : bus_(QDBusConnection::connectToBus(QString::fromStdString(bus.address()), "a portal")) {
        EXPECT_TRUE(bus_.registerVirtualObject("/org/freedesktop/portal/desktop", this));
        EXPECT_TRUE(bus_.registerService("org.freedesktop.portal.Desktop"));
    }
    Portal(const Portal&) = delete;
    Portal& operator=(const Portal&) = delete;
    ~Portal() override { QDBusConnection::disconnectFromBus("a portal"); }

    int questions = 0;
    std::map<std::string, QVariantMap> settings;
    std::optional<QVariant> nonsense; ///< answered instead

    void sayThatASettingHasChanged() {
        auto signal = QDBusMessage::createSignal(
            "/org/freedesktop/portal/desktop", "org.freedesktop.portal.Settings", "SettingChanged");
        signal << "org.freedesktop.appearance"
               << "reduced-motion" << QVariant::fromValue(QDBusVariant(0U));
        bus_.send(signal);
    }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        ++questions;
        EXPECT_EQ(message.member(), "ReadAll");
        if (nonsense) {
            return bus.send(message.createReply(*nonsense));
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

class ReducedMotionTest : public ::testing::Test {
protected:
    PrivateBus bus{"DBUS_SESSION_BUS_ADDRESS"};

    /// The answer to a change has come when that to a later one has.
    static void changeAndWait(Portal& portal) {
        for (int i = 0; i < 2; ++i) {
            const auto before = portal.questions;
            portal.sayThatASettingHasChanged();
            ASSERT_TRUE(serveUntil([&] { return portal.questions == before + 1; }));
        }
    }
};

TEST_F(ReducedMotionTest, FollowsTheWishAndTheSwitchForAnimations) {
    Portal portal(bus);
    portal.settings["org.freedesktop.appearance"]["reduced-motion"] = 1U;
    const ReducedMotion motion;
    EXPECT_FALSE(motion.isWished()) << "not known yet";
    ASSERT_TRUE(serveUntil([&] { return motion.isWished(); }));

    portal.settings["org.freedesktop.appearance"]["reduced-motion"] = 0U;
    portal.sayThatASettingHasChanged();
    ASSERT_TRUE(serveUntil([&] { return !motion.isWished(); }));

    portal.settings["org.gnome.desktop.interface"]["enable-animations"] = false;
    portal.sayThatASettingHasChanged();
    ASSERT_TRUE(serveUntil([&] { return motion.isWished(); }));

    portal.settings["org.gnome.desktop.interface"]["enable-animations"] = true;
    portal.sayThatASettingHasChanged();
    EXPECT_TRUE(serveUntil([&] { return !motion.isWished(); }));
}

TEST_F(ReducedMotionTest, PortalThatComesAfterTheProgramIsAsked) {
    const ReducedMotion motion;
    Portal portal(bus);
    portal.settings["org.gnome.desktop.interface"]["enable-animations"] = false;
    EXPECT_TRUE(serveUntil([&] { return motion.isWished(); }));
}

TEST_F(ReducedMotionTest, NonsenseChangesNothing) {
    Portal portal(bus);
    portal.settings["org.freedesktop.appearance"]["reduced-motion"] = 1U;
    const ReducedMotion motion;
    ASSERT_TRUE(serveUntil([&] { return motion.isWished(); }));
    for (const auto& nonsense :
         {QVariant("text"), QVariant(0U), QVariant(QVariantMap{{"reduced-motion", 0U}})}) {
        portal.nonsense = nonsense;
        changeAndWait(portal);
        EXPECT_TRUE(motion.isWished());
    }
    portal.nonsense.reset();
    for (const auto& value : {QVariant("1"), QVariant(2U)}) {
        portal.settings["org.freedesktop.appearance"]["reduced-motion"] = value;
        portal.sayThatASettingHasChanged();
        EXPECT_TRUE(serveUntil([&] { return !motion.isWished(); })) << "no preference";
        portal.settings["org.freedesktop.appearance"]["reduced-motion"] = 1U;
        portal.sayThatASettingHasChanged();
        EXPECT_TRUE(serveUntil([&] { return motion.isWished(); }));
    }
}

TEST(ReducedMotion, IsNotWishedWhereThereIsNoBus) {
    { const PrivateBus bus("DBUS_SESSION_BUS_ADDRESS"); }
    const ReducedMotion motion;
    QCoreApplication::processEvents();
    EXPECT_FALSE(motion.isWished());
}

} // namespace
} // namespace nocta
