#include "backends/linux/kde/ScreenBrightnessBacklight.h"

#include "backends/linux/bus/AsyncCall.h"
#include "backends/linux/bus/MessageBus.h"
#include "backends/linux/bus/NameOwner.h"
#include "backends/virtual/VirtualDesktop.h"
#include "contracts/BacklightContract.h"
#include "support/EventLoop.h"
#include "support/PrivateBus.h"
#include "support/ScreenBrightness.h"

#include <QVariant>
#include <gtest/gtest.h>

#include <limits>
#include <utility>
#include <vector>

namespace nocta {

/// A laptop with an external display. The virtual displays are also the fallback; its level differs
/// from the service's level.
struct ScreenBrightnessHarness {
    static constexpr DisplayId builtIn = 1;
    static constexpr DisplayId external = 2;
    static constexpr float fallbackLevel = 0.25F;

    PrivateBus bus{"DBUS_SESSION_BUS_ADDRESS"};
    VirtualDesktop desktop;
    ScreenBrightness service{bus};
    ScreenBrightnessBacklight port{desktop.displays, desktop.displays};

    ScreenBrightnessHarness() {
        desktop.displays.plug({.id = builtIn, .isBuiltIn = true, .backlight = fallbackLevel});
        desktop.displays.plug({.id = external});
        service.displays["display0"] = ScreenBrightness::display(true, 7000);
        service.displays["display1"] = ScreenBrightness::display(false, 3000);
        service.provide();
        EXPECT_TRUE(waitForLevel(0.7F));
    }

    Backlight& backlight() { return port; }
    void fail() {
        desktop.displays.backlightReadFails = true;
        desktop.displays.backlightWriteFails = true;
        service.displays.clear();
        service.announceAndWait();
    }

    /// Returns the level of the built-in display, or -1 if it cannot be read.
    float read() {
        float level = -1;
        port.getBrightness(builtIn, level);
        return level;
    }
    bool waitForLevel(float level) {
        return serveUntil([&] { return read() == level; });
    }
    void set(float level) { EXPECT_EQ(port.setBrightness(builtIn, level), statusSuccess); }
    bool waitForWritten(const std::vector<int>& written) {
        return serveUntil([&] { return service.written == written; });
    }
    float levelOfFallback() { return desktop.displays.display(builtIn).backlight; }
};
INSTANTIATE_TYPED_TEST_SUITE_P(ScreenBrightness, BacklightContract, ScreenBrightnessHarness);

namespace {

class ScreenBrightnessBacklightTest : public ::testing::Test, protected ScreenBrightnessHarness {
protected:
    /// Returns once the program has received all messages that the bus currently has for it. The
    /// bus preserves the order of messages, so the answer to a new call arrives last.
    static void receiveEverything() {
        auto isAnswered = false;
        QObject context;
        callAsync(sessionBus(), nameOwnerQuestion("org.freedesktop.DBus"), &context,
                  [&](const QDBusMessage& /*reply*/) { isAnswered = true; });
        ASSERT_TRUE(serveUntil([&] { return isAnswered; }));
    }
};

TEST_F(ScreenBrightnessBacklightTest, LevelIsSentForTheInternalDisplayWithoutAnIndicator) {
    set(0.55F);
    EXPECT_EQ(read(), 0.55F) << "the new level should be readable before the service answers";
    ASSERT_TRUE(waitForWritten({5500}));
    EXPECT_EQ(service.level("display0"), 5500);
    EXPECT_EQ(service.flags, std::vector<unsigned>{1}) << "the desktop should not show the level";
    EXPECT_EQ(service.level("display1"), 3000) << "an external display should not change";
    EXPECT_EQ(levelOfFallback(), fallbackLevel);
}

TEST_F(ScreenBrightnessBacklightTest, OnlyTheNewestOfTheWaitingLevelsIsSent) {
    service.isAnswering = false;
    set(0.5F);
    ASSERT_TRUE(serveUntil([&] { return service.keptCalls() == 1; }));
    for (const auto level : {0.4F, 0.3F, 0.2F}) {
        set(level);
    }
    service.answerAll();
    ASSERT_TRUE(waitForWritten({5000, 2000}));
    EXPECT_EQ(read(), 0.2F);
}

TEST_F(ScreenBrightnessBacklightTest, AnswersToEarlierCallsDoNotReplaceTheNewestLevel) {
    service.isAnswering = false;
    service.change("display0", 6000);
    ASSERT_TRUE(serveUntil([&] { return service.keptCalls() == 1; }));
    set(0.5F);
    set(0.2F);
    service.answerAll();
    ASSERT_TRUE(serveUntil([&] {
        EXPECT_EQ(read(), 0.2F);
        return !service.written.empty();
    }));
    service.announceAndWait();
    EXPECT_EQ(read(), 0.2F);
    EXPECT_EQ(service.written, std::vector{2000});
}

TEST_F(ScreenBrightnessBacklightTest, LevelFollowsChangesMadeByTheUser) {
    service.change("display0", 9500);
    EXPECT_TRUE(waitForLevel(0.95F));
    service.displays["display0"] = ScreenBrightness::display(true, 3, 4);
    service.emitSignal("BrightnessRangeChanged", {"display0", 4, 3});
    EXPECT_TRUE(waitForLevel(0.75F));
    EXPECT_TRUE(service.written.empty()) << "no level should be written unless one is set";
}

TEST_F(ScreenBrightnessBacklightTest, LowLevelIsNotRoundedToZeroOnACoarseDisplay) {
    service.displays["display0"] = ScreenBrightness::display(true, 4, 4);
    service.announceAndWait();
    set(0.1F);
    ASSERT_TRUE(waitForWritten({1}));
    set(0);
    ASSERT_TRUE(waitForWritten({1, 0}));
}

TEST_F(ScreenBrightnessBacklightTest, LevelOutsideTheRangeIsRejected) {
    for (const auto level : {-0.1F, 1.1F, std::numeric_limits<float>::quiet_NaN()}) {
        EXPECT_NE(port.setBrightness(builtIn, level), statusSuccess);
    }
    EXPECT_EQ(read(), 0.7F);
    set(1);
    EXPECT_TRUE(waitForWritten({10000}));
}

TEST_F(ScreenBrightnessBacklightTest, FallbackIsUsedWhileTheServiceIsMissing) {
    service.withdraw();
    ASSERT_TRUE(waitForLevel(fallbackLevel));
    set(0.5F);
    EXPECT_EQ(levelOfFallback(), 0.5F);
    EXPECT_TRUE(service.written.empty());

    service.provide();
    ASSERT_TRUE(waitForWritten({5000})) << "the service should receive the level that it missed";
    service.change("display0", 8000);
    ASSERT_TRUE(waitForLevel(0.8F));
    service.withdraw();
    ASSERT_TRUE(waitForLevel(0.5F));
    service.provide();
    ASSERT_TRUE(waitForLevel(0.8F));
    service.announceAndWait();
    EXPECT_EQ(service.written, std::vector{5000}) << "a level should not be sent twice";
}

TEST_F(ScreenBrightnessBacklightTest, ServiceThatRestartsWithoutAnsweringIsUsedAgain) {
    service.isAnswering = false;
    set(0.5F);
    ASSERT_TRUE(serveUntil([&] { return service.keptCalls() == 1; }));
    service.withdraw();
    service.provide();
    ASSERT_TRUE(waitForLevel(fallbackLevel)) << "the service should be treated as missing";
    ASSERT_TRUE(serveUntil([&] { return service.keptCalls() > 1; }))
        << "no call should wait for the answer to the first call";
    service.displays["display0"] = ScreenBrightness::display(true, 6000);
    service.answerAll();
    EXPECT_TRUE(waitForLevel(0.5F)) << "the first call should still take effect";
}

TEST_F(ScreenBrightnessBacklightTest, LateAnswerFromAStoppedServiceIsIgnored) {
    service.displays.erase("display1");
    service.announceAndWait();
    service.isAnswering = false;
    service.change("display0", 6000);
    ASSERT_TRUE(serveUntil([&] { return service.keptCalls() == 1; }));
    service.answerFirst(); // with the names; the program then asks for the display's properties
    ASSERT_TRUE(serveUntil([&] { return service.keptCalls() == 1; }));
    service.withdraw();
    ASSERT_TRUE(waitForLevel(fallbackLevel));
    receiveEverything();

    service.answerAll();
    service.flush();
    receiveEverything();
    EXPECT_EQ(read(), fallbackLevel);
}

TEST_F(ScreenBrightnessBacklightTest, FallbackIsUsedForADisplayThatDisappears) {
    const auto display = service.displays["display0"];
    service.displays.erase("display0");
    set(0.5F); // the service answers with an error
    ASSERT_TRUE(waitForLevel(fallbackLevel));
    service.displays["display0"] = display;
    service.emitSignal("DisplayAdded", {"display0"});
    ASSERT_TRUE(waitForLevel(0.7F));
    service.displays.erase("display0");
    service.emitSignal("DisplayRemoved", {"display0"});
    EXPECT_TRUE(waitForLevel(fallbackLevel));
    EXPECT_TRUE(service.written.empty());
}

TEST_F(ScreenBrightnessBacklightTest, FallbackIsUsedForSeveralBuiltInDisplays) {
    service.displays["display1"] = ScreenBrightness::display(true, 3000);
    service.announceAndWait();
    EXPECT_EQ(read(), fallbackLevel);
    service.displays.erase("display1");
    service.announceAndWait();
    EXPECT_EQ(read(), 0.7F);

    desktop.displays.plug({.id = 3, .isBuiltIn = true, .backlight = 0.125F});
    EXPECT_EQ(read(), fallbackLevel);
    set(0.5F);
    EXPECT_EQ(levelOfFallback(), 0.5F);
    float level = 0;
    EXPECT_EQ(port.getBrightness(3, level), statusSuccess);
    EXPECT_EQ(level, 0.125F);
    service.announceAndWait();
    EXPECT_TRUE(service.written.empty());
}

TEST_F(ScreenBrightnessBacklightTest, FallbackIsUsedForInvalidDisplays) {
    const std::vector<std::pair<QString, QVariant>> invalid = {
        {"IsInternal", false},  {"IsInternal", 1},       {"IsInternal", "true"},
        {"Brightness", "7000"}, {"Brightness", 7000U},   {"Brightness", -1},
        {"MaxBrightness", 0},   {"MaxBrightness", -100}, {"MaxBrightness", 1e4},
    };
    for (const auto& [name, value] : invalid) {
        service.displays["display0"] = ScreenBrightness::display(true, 7000);
        service.displays["display0"][name] = value;
        service.announceAndWait();
        EXPECT_EQ(read(), fallbackLevel) << name.toStdString() << value.toString().toStdString();
        service.displays["display0"].remove(name);
        service.announceAndWait();
        EXPECT_EQ(read(), fallbackLevel) << "without " << name.toStdString();
    }
    service.displays["display0"] = ScreenBrightness::display(true, 20000);
    service.announceAndWait();
    EXPECT_EQ(read(), 1) << "a level above the maximum should read as 1";
}

TEST_F(ScreenBrightnessBacklightTest, FallbackIsUsedAfterInvalidAnswers) {
    const QStringList unsafe{"display0/../x", "", "display 0"};
    const auto many = QStringList(32, "another") << "display0";
    for (const auto& names :
         {QVariant("display0"), QVariant(7), QVariant(unsafe), QVariant(many)}) {
        service.names = names;
        service.announceAndWait();
        EXPECT_EQ(read(), fallbackLevel) << names.toString().toStdString();
    }
    service.names = {};
    for (const auto& properties : {QVariant(7), QVariant(QStringList{"IsInternal"})}) {
        service.properties = properties;
        service.announceAndWait();
        EXPECT_EQ(read(), fallbackLevel);
    }
    service.properties = {};
    for (const auto* const method : {"Get", "GetAll"}) {
        service.emptyAnswers = method;
        service.announceAndWait();
        EXPECT_EQ(read(), fallbackLevel) << method;
    }
    service.emptyAnswers.clear();
    service.announceAndWait();
    EXPECT_EQ(read(), 0.7F);
}

TEST(ScreenBrightnessBacklight, FallbackIsUsedWithoutABus) {
    { const PrivateBus bus("DBUS_SESSION_BUS_ADDRESS"); }
    VirtualDesktop desktop;
    desktop.displays.plug({.id = 1, .isBuiltIn = true, .backlight = 0.25F});
    ScreenBrightnessBacklight backlight(desktop.displays, desktop.displays);
    EXPECT_EQ(backlight.setBrightness(1, 0.5F), statusSuccess);
    EXPECT_EQ(desktop.displays.display(1).backlight, 0.5F);
}

} // namespace
} // namespace nocta
