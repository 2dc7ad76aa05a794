#include "backends/linux/kde/NightLight.h"

#include "backends/linux/bus/MessageBus.h"
#include "backends/linux/kde/ConfigGroup.h"
#include "backends/virtual/VirtualRunLoop.h"
#include "support/EventLoop.h"
#include "support/KWin.h"
#include "support/NoctaProcess.h"

#include <QDeadlineTimer>
#include <QLockFile>
#include <QString>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <optional>
#include <string>
#include <unistd.h>

namespace nocta {
namespace {

using namespace std::chrono_literals;

struct Helpers : NoctaProcess {
    using NoctaProcess::childrenOf;
};

/// Night Light on a private KWin. The helper uses the same configuration as KWin.
class NightLightTest : public ::testing::Test {
protected:
    static constexpr auto userSettings = "[Desktops]\n"
                                         "Number=1\n"
                                         "[NightColor]\n"
                                         "Active=true\n"
                                         "Mode=Times\n"
                                         "NightTemperature=4321\n"
                                         "TransitionTime=7\n";

    PrivateBus bus{"DBUS_SESSION_BUS_ADDRESS"};
    KWin kwin{userSettings};
    TemporaryFolder state;
    std::string notes = state.path() + "/nocta/night-light";
    VirtualRunLoop runLoop;
    std::optional<NightLight> nightLight{std::in_place, sessionBus(), runLoop, notes};

    void SetUp() override { setenv("XDG_CONFIG_HOME", kwin.configFolder().c_str(), 1); }
    void TearDown() override {
        nightLight.reset();
        unsetenv("XDG_CONFIG_HOME");
    }

    std::optional<std::string> setting(const char* key) const {
        return ConfigGroup(contentOf(kwin.configFile()), "NightColor").value(key);
    }
    bool isWritten(const std::string& kelvin) const {
        return setting("NightTemperature") == kelvin && setting("Mode") == "Constant" &&
               setting("Active") == "true";
    }
    bool waitUntilWritten(const std::string& kelvin) {
        return serveUntil([&] { return isWritten(kelvin); });
    }
    /// Does not check the other groups in the file, which KWin itself may have changed.
    bool areUserSettingsBack() const {
        return setting("Active") == "true" && setting("Mode") == "Times" &&
               setting("NightTemperature") == "4321" && setting("TransitionTime") == "7" &&
               !std::filesystem::exists(notes);
    }
    static std::vector<pid_t> helpers() { return Helpers::childrenOf(getpid(), "nocta-warmth"); }
    /// Gives the helper time to make a change that it should not make.
    static void serveBriefly() {
        const QDeadlineTimer brief(300);
        serveUntil([&] { return brief.hasExpired(); });
    }
    /// Kills the only helper, and returns once there is no helper or another one.
    static void killHelper() {
        std::vector<pid_t> before;
        ASSERT_TRUE(serveUntil([&] {
            before = helpers();
            return !before.empty();
        }));
        ::kill(before.at(0), SIGKILL);
        ASSERT_TRUE(serveUntil([&] { return helpers() != before; }));
    }
    /// After a helper was killed. A lock whose owner dies while taking it stays for half a minute.
    bool waitUntilUserSettingsAreBack() {
        const auto areBack = [this] { return areUserSettingsBack(); };
        return serveUntil(areBack) || serveUntil(areBack);
    }
};

TEST_F(NightLightTest, TemperatureIsShownUntilItBecomesNeutral) {
    EXPECT_TRUE(nightLight->isAvailable());
    EXPECT_TRUE(areUserSettingsBack());
    EXPECT_EQ(helpers().size(), 0U);
    nightLight->setTemperature(3000);
    EXPECT_TRUE(serveUntil([] { return KWin::temperature() == 3000; }));
    EXPECT_TRUE(isWritten("3000"));
    runLoop.advance(2s);
    nightLight->setTemperature(3500);
    EXPECT_TRUE(serveUntil([] { return KWin::temperature() == 3500; }));
    runLoop.advance(2s);
    nightLight->setTemperature(6500);
    EXPECT_TRUE(serveUntil([&] { return areUserSettingsBack() && helpers().empty(); }));
    runLoop.advance(2s);
    nightLight->setTemperature(2700);
    EXPECT_TRUE(waitUntilWritten("2700"));
    nightLight->restore();
    EXPECT_TRUE(areUserSettingsBack());
}

TEST_F(NightLightTest, TemperatureThatKWinWouldIgnoreIsTreatedAsNeutral) {
    nightLight->setTemperature(6450);
    EXPECT_EQ(helpers().size(), 0U);
    nightLight->setTemperature(6449);
    EXPECT_TRUE(waitUntilWritten("6449"));
}

TEST_F(NightLightTest, LastOfSeveralQuickChangesIsShown) {
    nightLight->setTemperature(5000);
    ASSERT_TRUE(waitUntilWritten("5000"));
    for (std::int64_t kelvin = 4900; kelvin >= 3000; kelvin -= 100) {
        nightLight->setTemperature(kelvin);
        runLoop.advance(50ms);
    }
    serveBriefly();
    EXPECT_TRUE(isWritten("5000"));
    runLoop.advance(999ms);
    EXPECT_TRUE(isWritten("5000"));
    runLoop.advance(1ms);
    EXPECT_TRUE(waitUntilWritten("3000"));
}

TEST_F(NightLightTest, TemperatureSetDuringRestorationIsShown) {
    nightLight->setTemperature(3000);
    ASSERT_TRUE(waitUntilWritten("3000"));
    runLoop.advance(2s);
    nightLight->setTemperature(6500);
    nightLight->setTemperature(4000);
    EXPECT_TRUE(serveUntil([&] { return areUserSettingsBack() && helpers().empty(); }));
    runLoop.advance(2s);
    EXPECT_TRUE(waitUntilWritten("4000"));
}

TEST_F(NightLightTest, KilledHelperIsReplaced) {
    nightLight->setTemperature(3000);
    ASSERT_TRUE(waitUntilWritten("3000"));
    killHelper();
    runLoop.advance(2s);
    ASSERT_TRUE(serveUntil([] { return helpers().size() == 1; }));
    nightLight->restore();
    EXPECT_TRUE(waitUntilUserSettingsAreBack());
}

TEST_F(NightLightTest, HelperThatKeepsDyingIsNotReplacedForever) {
    nightLight->setTemperature(3000);
    ASSERT_TRUE(waitUntilWritten("3000"));
    for (int death = 0; death < 4; ++death) {
        killHelper();
        runLoop.advance(2s);
    }
    EXPECT_EQ(helpers().size(), 0U);
    nightLight.emplace(sessionBus(), runLoop, notes);
    EXPECT_TRUE(waitUntilUserSettingsAreBack());
}

TEST_F(NightLightTest, ChangesMadeByTheUserAreKept) {
    nightLight->setTemperature(3000);
    ASSERT_TRUE(waitUntilWritten("3000"));
    ConfigGroup settings(contentOf(kwin.configFile()), "NightColor");
    settings.set("Active", "false");
    writeFile(kwin.configFile(), settings.text());
    nightLight->restore();
    EXPECT_EQ(setting("Active"), "false");
    EXPECT_EQ(setting("Mode"), "Times");
    EXPECT_EQ(setting("NightTemperature"), "4321");
    nightLight->setTemperature(3000);
    ASSERT_TRUE(waitUntilWritten("3000"));
    settings.set("Active", "true");
    settings.set("Mode", "Location");
    settings.set("NightTemperature", "3900");
    writeFile(kwin.configFile(), settings.text());
    nightLight->restore();
    EXPECT_EQ(setting("Mode"), "Location");
    EXPECT_EQ(setting("NightTemperature"), "3900");
}

TEST_F(NightLightTest, SettingsThatDidNotExistAreRemoved) {
    writeFile(kwin.configFile(), "[Desktops]\nNumber=1\n");
    nightLight->setTemperature(3000);
    ASSERT_TRUE(waitUntilWritten("3000"));
    nightLight->restore();
    EXPECT_EQ(contentOf(kwin.configFile()).find("NightColor"), std::string::npos);
    EXPECT_NE(contentOf(kwin.configFile()).find("Number=1"), std::string::npos);
}

TEST_F(NightLightTest, HelperWaitsWhileAnotherProgramLocksTheSettings) {
    QLockFile lock(QString::fromStdString(kwin.configFile() + ".lock"));
    ASSERT_TRUE(lock.lock());
    nightLight->setTemperature(3000);
    ASSERT_TRUE(waitUntil([&] { return std::filesystem::exists(notes); }));
    serveBriefly();
    EXPECT_EQ(setting("Mode"), "Times");
    lock.unlock();
    EXPECT_TRUE(waitUntilWritten("3000"));
}

TEST_F(NightLightTest, UnreadableSettingsAreNotReplaced) {
    std::filesystem::remove(kwin.configFile());
    std::filesystem::create_directory(kwin.configFile());
    ::testing::internal::CaptureStderr();
    nightLight->setTemperature(3000);
    EXPECT_EQ(serveUntil([] { return helpers().size() == 1; }), true);
    nightLight->restore();
    EXPECT_TRUE(std::filesystem::is_directory(kwin.configFile()));
    EXPECT_FALSE(std::filesystem::exists(notes));
}

TEST(NightLightWithoutKWinTest, NightLightIsUnavailable) {
    const PrivateBus bus("DBUS_SESSION_BUS_ADDRESS");
    const TemporaryFolder folder;
    VirtualRunLoop runLoop;
    NightLight nightLight(sessionBus(), runLoop, folder.path() + "/notes");
    EXPECT_FALSE(nightLight.isAvailable());
    nightLight.setTemperature(3000);
    EXPECT_EQ(Helpers::childrenOf(getpid(), "nocta-warmth").size(), 0U);
}

} // namespace
} // namespace nocta
