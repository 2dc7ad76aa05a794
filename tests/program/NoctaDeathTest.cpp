#include "support/NoctaProcess.h"

#include <chrono>
#include <csignal>
#include <sys/wait.h>

namespace nocta {
namespace {

class NoctaDeathTest : public NoctaProcess {};
INSTANTIATE_TEST_SUITE_P(Servers, NoctaDeathTest, everyServer, serverName);

TEST_P(NoctaDeathTest, EverySignalThatEndsTheProgramGivesTheScreenBack) {
    for (const auto ending : {SIGTERM, SIGINT, SIGHUP}) {
        startAndWaitFor(0.75);
        nocta->signal(ending);
        EXPECT_EQ(nocta->wait(), 0) << contentOf(output);
        EXPECT_TRUE(isGivenBack()) << ending;
    }
}

TEST_P(NoctaDeathTest, CrashGivesTheScreenBackAndARestartUsesTheFactoryRamp) {
    for (const auto crash : {SIGKILL, SIGSEGV, SIGABRT}) {
        startAndWaitFor(0.75);
        nocta->signal(crash);
        nocta->wait();
        EXPECT_TRUE(waitUntil([&] { return isGivenBack(); })) << crash;
    }
    startAndWaitFor(0.75);
    client.press(brightnessDownSymbol);
    ASSERT_TRUE(waitForBrightness(0.6875));
    writeFile(settings, neutralSettings("unifiedBrightness=0.4\n"));
    nocta->signal(SIGKILL);
    startAndWaitFor(0.4); // while the guardian of the killed process may still be running
    nocta->signal(SIGTERM);
    EXPECT_EQ(nocta->wait(), 0);
    EXPECT_TRUE(isGivenBack());
}

TEST_P(NoctaDeathTest, ScreenIsRestoredAfterQuickRestarts) {
    startAndWaitFor(0.75);
    for (int restart = 0; restart < 5; ++restart) {
        nocta->signal(SIGKILL);
        start(); // the next iteration kills it at any point during its launch
    }
    nocta->signal(SIGKILL);
    nocta->wait();
    EXPECT_TRUE(waitUntil([&] { return isGivenBack(); }));
    startAndWaitFor(0.75);
    nocta->signal(SIGTERM);
    nocta->wait();
    EXPECT_TRUE(isGivenBack());
}

TEST_P(NoctaDeathTest, GuardianExitsWhenItIsNoLongerNeeded) {
    startAndWaitFor(0.75);
    const auto guardians = guardiansOf(nocta->id());
    ASSERT_EQ(guardians.size(), 1U);
    nocta->signal(SIGKILL);
    nocta->wait();
    EXPECT_TRUE(waitUntil([&] { return kill(guardians[0], 0) != 0 || isZombie(guardians[0]); }));

    startAndWaitFor(0.75);
    const auto others = guardiansOf(nocta->id());
    ASSERT_EQ(others.size(), 1U);
    nocta->signal(SIGTERM);
    nocta->wait();
    EXPECT_NE(kill(others[0], 0), 0) << "the guardian should exit before its program";
}

TEST_P(NoctaDeathTest, NextLaunchRestoresTheScreenAfterProgramAndGuardianAreKilled) {
    startAndWaitFor(0.75);
    const auto guardians = guardiansOf(nocta->id());
    ASSERT_EQ(guardians.size(), 1U);
    kill(guardians[0], SIGSTOP); // so that it cannot restore the screen
    nocta->signal(SIGKILL);
    nocta->wait();
    kill(guardians[0], SIGKILL);
    EXPECT_TRUE(shows(0.75)) << "the screen should stay dim, because nothing is left to restore it";
    startAndWaitFor(0.75);
    ASSERT_TRUE(waitUntil([&] { return guardiansOf(nocta->id()).size() == 1; }));
    client.press(brightnessDownSymbol);
    ASSERT_TRUE(waitForBrightness(0.6875))
        << "the tables should apply to the factory ramp, not to the dimmed one";
    nocta->signal(SIGTERM);
    EXPECT_EQ(nocta->wait(), 0);
    EXPECT_TRUE(isGivenBack());
}

TEST_P(NoctaDeathTest, KilledGuardianIsReplaced) {
    startAndWaitFor(0.75);
    const auto first = guardiansOf(nocta->id());
    ASSERT_EQ(first.size(), 1U);
    kill(first[0], SIGKILL);
    ASSERT_TRUE(waitUntil([&] {
        auto const now = guardiansOf(nocta->id());
        return now.size() == 1 && now[0] != first[0];
    }));
    client.press(brightnessDownSymbol);
    ASSERT_TRUE(waitForBrightness(0.6875));
    nocta->signal(SIGKILL);
    nocta->wait();
    EXPECT_TRUE(waitUntil([&] { return isGivenBack(); }));
}

/// Kills guardians until the program pauses before it starts a new one.
class NoctaWithoutGuardianTest : public NoctaDeathTest {
protected:
    std::vector<pid_t> guardians() { return guardiansOf(nocta->id()); }

    void SetUp() override {
        NoctaDeathTest::SetUp();
        startAndWaitFor(0.75);
        ASSERT_TRUE(waitUntil([&] {
            for (const auto guardian : guardians()) {
                kill(guardian, SIGKILL); // at any point during its launch
            }
            return contentOf(output).find("a crash would leave the screen") != std::string::npos;
        }));
    }
    void expectGuarded() {
        ASSERT_TRUE(waitUntil([&] { return guardians().size() == 1; }));
        client.press(brightnessDownSymbol); // the ramp is written once the guardian is ready
        ASSERT_TRUE(waitForBrightness(0.6875));
        nocta->signal(SIGKILL);
        nocta->wait();
        EXPECT_TRUE(waitUntil([&] { return isGivenBack(); }));
    }
};
INSTANTIATE_TEST_SUITE_P(Servers, NoctaWithoutGuardianTest, everyServer, serverName);

TEST_P(NoctaWithoutGuardianTest, NextWriteStartsANewGuardian) {
    client.press(brightnessUpSymbol);
    ASSERT_TRUE(waitForBrightness(0.8125));
    EXPECT_EQ(guardians().size(), 1U);
    client.press(brightnessDownSymbol);
    ASSERT_TRUE(waitForBrightness(0.75));
    expectGuarded();
}

TEST_P(NoctaWithoutGuardianTest, NewGuardianStartsWithoutAWriteAfterAPause) {
    expectGuarded();
}

TEST_P(NoctaDeathTest, FrozenGuardianDoesNotBlockTheNextStart) {
    startAndWaitFor(0.75);
    const auto guardians = guardiansOf(nocta->id());
    ASSERT_EQ(guardians.size(), 1U);
    kill(guardians[0], SIGSTOP);
    nocta->signal(SIGKILL);
    nocta->wait();
    writeFile(settings, neutralSettings("unifiedBrightness=0.5\n"));
    startAndWaitFor(0.5);
    kill(guardians[0], SIGCONT);
    EXPECT_TRUE(waitUntil([&] { return kill(guardians[0], 0) != 0 || isZombie(guardians[0]); }));
    EXPECT_TRUE(shows(0.5)) << "the guardian that was frozen should no longer control the screen";
    nocta->signal(SIGTERM);
    EXPECT_EQ(nocta->wait(), 0);
    EXPECT_TRUE(isGivenBack());
}

TEST_P(NoctaDeathTest, ProgramCanQuitWhileItWaitsForAFrozenGuardian) {
    startAndWaitFor(0.75);
    const auto guardians = guardiansOf(nocta->id());
    ASSERT_EQ(guardians.size(), 1U);
    kill(guardians[0], SIGSTOP);
    nocta->signal(SIGKILL);
    nocta->wait();
    start();
    ASSERT_TRUE(waitUntil([&] { return guardiansOf(nocta->id()).size() == 1; }));
    nocta->signal(SIGTERM);
    EXPECT_EQ(nocta->wait(), 0);
    EXPECT_TRUE(shows(0.75)) << "the screen should not change";
    kill(guardians[0], SIGCONT);
    EXPECT_TRUE(waitUntil([&] { return isGivenBack(); }))
        << "the frozen guardian still controls the screen and should restore it";
}

TEST_P(NoctaDeathTest, KilledServerEndsTheProgramWithOneLineAndNoCrash) {
    // Qt leaks its connection to a server that has exited.
    const auto suppressions = home.path() + "/suppressions";
    writeFile(suppressions, "leak:libX11.so\nleak:libxcb.so\n");
    const auto options = "print_suppressions=0:suppressions=" + suppressions;
    setenv("LSAN_OPTIONS", options.c_str(), 1);
    startAndWaitFor(0.75);
    unsetenv("LSAN_OPTIONS");
    const std::string atStart = "Notification authorization error: there is no session bus to "
                                "reach a notification service\n";
    ASSERT_TRUE(waitUntil([&] { return contentOf(output) == atStart; })) << contentOf(output);
    server.kill();
    const auto status = nocta->wait();
    ASSERT_TRUE(WIFEXITED(status)) << "the program should not crash";
    EXPECT_EQ(WEXITSTATUS(status), 1);
    // Nocta and Qt each have a connection. The connection that detects the error first ends the
    // program; the other may still print its message.
    const auto said = contentOf(output).substr(atStart.size());
    const std::string ours = "nocta: the X server has closed the connection\n";
    const std::string theirs = "The X11 connection broke (error 1). Did the X11 server die?\n";
    EXPECT_TRUE(said == ours || said == theirs || said == ours + theirs) << said;
}

} // namespace
} // namespace nocta
