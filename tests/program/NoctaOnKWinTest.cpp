#include "backends/linux/kde/ConfigGroup.h"
#include "support/KWin.h"
#include "support/NoctaProcess.h"

#include <csignal>
#include <memory>
#include <string>
#include <vector>

// Tests the real program in a KDE session.

namespace nocta {
namespace {

struct Helpers : NoctaProcess {
    using NoctaProcess::childrenOf;
};

class NoctaOnKWinTest : public ::testing::Test {
protected:
    PrivateBus bus{"DBUS_SESSION_BUS_ADDRESS"};
    KWin kwin{"[NightColor]\nActive=false\nNightTemperature=4321\n"};
    TemporaryFolder home;
    std::string output = home.path() + "/output";
    std::unique_ptr<Process> nocta;

    void start(const std::string& warmth) {
        std::filesystem::create_directories(home.path() + "/.config/nocta");
        writeFile(home.path() + "/.config/nocta/nocta.conf",
                  "[General]\nautoWarmthEnabled=false\nisFirstLaunch=false\nunifiedBrightness=0.5\n"
                  "warmthLevel=" +
                      warmth + "\n");
        std::filesystem::remove(home.path() + "/.config/kwinrc");
        std::filesystem::create_symlink(kwin.configFile(), home.path() + "/.config/kwinrc");
        nocta = std::make_unique<Process>(
            std::vector{programFolder() + "/nocta"},
            Process::Environment{{"HOME", home.path()},
                                 {"XDG_CONFIG_HOME", ""},
                                 {"XDG_STATE_HOME", ""},
                                 {"DISPLAY", ""},
                                 {"QT_QPA_PLATFORM", "offscreen"},
                                 {"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + home.path() + "/none"}},
            output);
    }
    void startAndWaitForWarmth() {
        start("1");
        ASSERT_TRUE(waitUntil([] { return KWin::temperature() == 2700; })) << contentOf(output);
    }
    std::string setting(const char* key) const {
        return ConfigGroup(contentOf(kwin.configFile()), "NightColor").value(key).value_or("none");
    }
    bool isGivenBack() const {
        return setting("Active") == "false" && setting("Mode") == "none" &&
               setting("NightTemperature") == "4321" && KWin::temperature() == 6500;
    }
};

TEST_F(NoctaOnKWinTest, NightLightIsRestoredHoweverNoctaEnds) {
    for (const auto ending : {SIGTERM, SIGHUP, SIGKILL, SIGSEGV}) {
        startAndWaitForWarmth();
        nocta->signal(ending);
        nocta->wait();
        EXPECT_TRUE(waitUntil([&] { return isGivenBack(); })) << ending << contentOf(output);
    }
    EXPECT_TRUE(std::filesystem::is_symlink(home.path() + "/.config/kwinrc"));
}

TEST_F(NoctaOnKWinTest, NextLaunchRestoresNightLightIfTheHelperWasKilledToo) {
    startAndWaitForWarmth();
    const auto helpers = Helpers::childrenOf(nocta->id(), "nocta-warmth");
    ASSERT_EQ(helpers.size(), 1U);
    ::kill(helpers[0], SIGSTOP); // so that it cannot restore anything
    nocta->signal(SIGKILL);
    nocta->wait();
    ::kill(helpers[0], SIGKILL);
    EXPECT_EQ(setting("NightTemperature"), "2700") << "no process should be left to restore it";
    start("0");
    EXPECT_TRUE(waitUntil([&] { return isGivenBack(); })) << contentOf(output);
}

} // namespace
} // namespace nocta
