#include "backends/linux/bus/ReducedMotion.h"

#include "support/EventLoop.h"
#include "support/PrivateBus.h"
#include "support/SettingsPortal.h"

#include <QCoreApplication>
#include <QVariantMap>
#include <gtest/gtest.h>

namespace nocta {
namespace {

class ReducedMotionTest : public ::testing::Test {
protected:
    PrivateBus bus{"DBUS_SESSION_BUS_ADDRESS"};
};

TEST_F(ReducedMotionTest, FollowsTheMotionAndAnimationSettings) {
    SettingsPortal portal(bus);
    portal.settings["org.freedesktop.appearance"]["reduced-motion"] = 1U;
    const ReducedMotion motion;
    EXPECT_FALSE(motion.isRequested()) << "the setting should not be known yet";
    ASSERT_TRUE(serveUntil([&] { return motion.isRequested(); }));

    portal.settings["org.freedesktop.appearance"]["reduced-motion"] = 0U;
    portal.emitSettingChanged();
    ASSERT_TRUE(serveUntil([&] { return !motion.isRequested(); }));

    portal.settings["org.gnome.desktop.interface"]["enable-animations"] = false;
    portal.emitSettingChanged();
    ASSERT_TRUE(serveUntil([&] { return motion.isRequested(); }));

    portal.settings["org.gnome.desktop.interface"]["enable-animations"] = true;
    portal.emitSettingChanged();
    EXPECT_TRUE(serveUntil([&] { return !motion.isRequested(); }));
}

TEST_F(ReducedMotionTest, PortalThatStartsLateIsUsed) {
    const ReducedMotion motion;
    SettingsPortal portal(bus);
    portal.settings["org.gnome.desktop.interface"]["enable-animations"] = false;
    EXPECT_TRUE(serveUntil([&] { return motion.isRequested(); }));
}

TEST_F(ReducedMotionTest, InvalidAnswersAreIgnoredAndInvalidValuesMeanNoPreference) {
    SettingsPortal portal(bus);
    portal.settings["org.freedesktop.appearance"]["reduced-motion"] = 1U;
    const ReducedMotion motion;
    ASSERT_TRUE(serveUntil([&] { return motion.isRequested(); }));
    for (const auto& nonsense :
         {QVariant("text"), QVariant(0U), QVariant(QVariantMap{{"reduced-motion", 0U}})}) {
        portal.invalidAnswer = nonsense;
        portal.emitSettingChangedAndWait();
        EXPECT_TRUE(motion.isRequested());
    }
    portal.invalidAnswer.reset();
    for (const auto& value : {QVariant("1"), QVariant(2U)}) {
        portal.settings["org.freedesktop.appearance"]["reduced-motion"] = value;
        portal.emitSettingChanged();
        EXPECT_TRUE(serveUntil([&] { return !motion.isRequested(); }))
            << "an invalid value should count as no preference";
        portal.settings["org.freedesktop.appearance"]["reduced-motion"] = 1U;
        portal.emitSettingChanged();
        EXPECT_TRUE(serveUntil([&] { return motion.isRequested(); }));
    }
}

TEST(ReducedMotion, IsNotRequestedWithoutABus) {
    { const PrivateBus bus("DBUS_SESSION_BUS_ADDRESS"); }
    const ReducedMotion motion;
    QCoreApplication::processEvents();
    EXPECT_FALSE(motion.isRequested());
}

} // namespace
} // namespace nocta
