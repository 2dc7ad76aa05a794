#include "backends/linux/x11/FactoryRamps.h"
#include "backends/linux/x11/GuardianProtocol.h"
#include "backends/linux/x11/X11Session.h"
#include "support/NoctaProcess.h"

#include <chrono>
#include <cmath>
#include <csignal>
#include <sys/ioctl.h>
#include <unistd.h>

namespace nocta {

namespace {

// CRTCs with a ramp of size 0 are not tested, because no headless X server has one.

struct Guardians : NoctaProcess {
    using NoctaProcess::guardiansOf;
};

/// A second Nocta on the same server.
struct OtherProgram {
    X11Session& first;
    X11Connection connection{first.runLoop};
    Guardian guardian{connection, first.runLoop};
    X11GammaOutput output{connection, first.displays, guardian};

    /// Sets the tables, and returns once the server has processed all requests.
    Status set(DisplayId display, float top) {
        const auto tables = X11Session::tables({top, top, top});
        const auto status =
            output.setDisplayTransferByTable(display, tables[0], tables[1], tables[2]);
        EXPECT_TRUE(serveUntil([&] { return !guardian.isStarting(); }));
        EXPECT_TRUE(connection.synchronize());
        return status;
    }
};

class X11GammaOutputTest : public ::testing::TestWithParam<XServer::Kind> {
protected:
    X11Session session{GetParam()};
    DisplayId display = session.list().at(0);
    xcb_randr_crtc_t crtc = session.client.activeCrtcs().at(0);

    XClient::Ramp ramp() {
        session.connection.synchronize();
        return session.client.ramp(crtc);
    }

    /// Dims the display and freezes its guardian.
    pid_t dimAndFreezeGuardian() {
        session.set(display, X11Session::tables({0.5F, 0.5F, 0.5F}));
        const auto guardians = Guardians::guardiansOf(getpid());
        EXPECT_EQ(guardians.size(), 1U);
        kill(guardians.at(0), SIGSTOP);
        return guardians.at(0);
    }

    /// The expected value of entry `i` of 256 after a linear table up to `top` is applied to a
    /// calibration. Interpolates linearly between the entries of the calibration.
    static double expected(const std::vector<std::uint16_t>& calibration, double top, int i) {
        const auto place = top * i / 255 * 255;
        const auto below = std::min(static_cast<std::size_t>(place), std::size_t{254});
        return std::lerp(double{static_cast<double>(calibration[below])},
                         static_cast<double>(calibration[below + 1]),
                         place - static_cast<double>(below));
    }
};
INSTANTIATE_TEST_SUITE_P(Servers, X11GammaOutputTest,
                         ::testing::Values(XServer::Kind::xvfb, XServer::Kind::xorgDummy),
                         [](const auto& instance) {
                             return instance.param == XServer::Kind::xvfb ? "Xvfb" : "XorgDummy";
                         });

TEST_P(X11GammaOutputTest, TablesAreAppliedToTheCalibration) {
    const auto factory = calibration(256, 0.8, {0.97, 1.0, 0.9});
    session.client.setRamp(crtc, factory);
    std::array const tops = {1.0F, 0.75F, 0.4F};
    ASSERT_EQ(session.set(display, X11Session::tables(tops)), statusSuccess);
    const auto shown = ramp();
    for (std::size_t channel = 0; channel < 3; ++channel) {
        for (int i = 0; i < 256; ++i) {
            ASSERT_NEAR(shown[channel][static_cast<std::size_t>(i)],
                        expected(factory[channel], double{tops[channel]}, i), 1)
                << channel << " " << i;
        }
    }
    session.gammaOutput.displayRestoreColorSyncSettings();
    EXPECT_EQ(ramp(), factory) << "the factory ramp should be restored bit for bit";
}

TEST_P(X11GammaOutputTest, RampThatIsNotACalibrationCountsAsTheIdentityAndIsStillRestored) {
    auto falling = calibration(256, 1.0, {1, 1, 1});
    falling[2][100] = 0;
    XClient::Ramp zero;
    zero.fill(std::vector<std::uint16_t>(256, 0));
    for (const auto& factory : {falling, zero}) {
        session.client.setRamp(crtc, factory);
        session.set(display, X11Session::tables({1.0F, 0.5F, 0.25F}));
        const auto shown = ramp();
        for (int i = 0; i < 256; ++i) {
            const auto entry = static_cast<std::size_t>(i);
            ASSERT_NEAR(shown[0][entry], 257.0 * i, 1);
            ASSERT_NEAR(shown[1][entry], 257.0 * i / 2, 1);
            ASSERT_NEAR(shown[2][entry], 257.0 * i / 4, 1);
        }
        session.gammaOutput.displayRestoreColorSyncSettings();
        EXPECT_EQ(ramp(), factory);
    }
}

TEST_P(X11GammaOutputTest, EqualTablesOverwriteARampThatAnotherProgramReset) {
    const auto tables = X11Session::tables({0.5F, 0.5F, 0.5F});
    session.set(display, tables);
    const auto ours = ramp();
    session.client.setRamp(crtc, calibration(256, 1.0, {1, 1, 1}));
    ASSERT_NE(ramp(), ours);
    session.set(display, tables);
    EXPECT_EQ(ramp(), ours);
}

TEST_P(X11GammaOutputTest, LastRampsAreSentAgainUntilTheyAreRestored) {
    const auto factory = ramp();
    session.gammaOutput.sendAgain();
    EXPECT_EQ(ramp(), factory) << "without a write, nothing should be resent";
    session.set(display, X11Session::tables({0.5F, 0.5F, 0.5F}));
    session.set(display, X11Session::tables({0.25F, 0.25F, 0.25F}));
    const auto ours = ramp();
    session.client.setRamp(crtc, factory);
    session.gammaOutput.sendAgain();
    EXPECT_EQ(ramp(), ours);
    session.gammaOutput.displayRestoreColorSyncSettings();
    session.gammaOutput.sendAgain();
    EXPECT_EQ(ramp(), factory) << "nothing should be resent after the screen is given back";
}

TEST_P(X11GammaOutputTest, DestructionGivesTheScreenBack) {
    const auto factory = ramp();
    {
        X11GammaOutput output(session.connection, session.displays, session.guardian);
        const auto tables = X11Session::tables({0.5F, 0.5F, 0.5F});
        ASSERT_EQ(output.setDisplayTransferByTable(display, tables[0], tables[1], tables[2]),
                  statusSuccess);
        session.settle();
        EXPECT_NE(ramp(), factory);
    }
    EXPECT_EQ(ramp(), factory);
}

TEST_P(X11GammaOutputTest, TablesWaitForTheGuardianAndOnlyTheNewestAreApplied) {
    const auto factory = ramp();
    const auto set = [&](float top) {
        const auto tables = X11Session::tables({top, top, top});
        return session.gammaOutput.setDisplayTransferByTable(display, tables[0], tables[1],
                                                             tables[2]);
    };
    EXPECT_EQ(set(0.75F), statusSuccess);
    EXPECT_EQ(set(0.5F), statusSuccess);
    EXPECT_EQ(ramp(), factory) << "the ramp should not change before the guardian is ready";
    session.settle();
    const auto half = ramp();
    EXPECT_NE(half, factory);
    set(0.25F);
    set(0.5F);
    EXPECT_EQ(ramp(), half)
        << "once the guardian is ready, the newest tables should apply immediately";
    EXPECT_NE(set(0.25F), statusFailure);
    EXPECT_NE(ramp(), half);
}

TEST_P(X11GammaOutputTest, WaitingTablesAreDroppedWhenTheScreenIsGivenBack) {
    const auto factory = ramp();
    const auto tables = X11Session::tables({0.5F, 0.5F, 0.5F});
    session.gammaOutput.setDisplayTransferByTable(display, tables[0], tables[1], tables[2]);
    ASSERT_TRUE(session.guardian.isStarting());
    session.gammaOutput.displayRestoreColorSyncSettings();
    EXPECT_FALSE(session.guardian.isStarting());
    session.set(session.list().at(0), X11Session::tables({1.0F, 1.0F, 1.0F}));
    session.gammaOutput.displayRestoreColorSyncSettings();
    EXPECT_EQ(ramp(), factory);
}

TEST_P(X11GammaOutputTest, SecondProgramIsRejectedWhileTheFirstControlsTheDisplay) {
    session.set(display, X11Session::tables({0.5F, 0.5F, 0.5F}));
    const auto ours = ramp();
    OtherProgram other{session};
    ::testing::internal::CaptureStderr();
    int turns = 0;
    Timer turn;
    turn.start(session.runLoop, std::chrono::milliseconds(10), Repeat::yes, [&] { ++turns; });
    other.set(display, 0.5F);
    EXPECT_GT(turns, 10) << "the wait for the first program should not block the loop";
    EXPECT_NE(other.set(display, 0.5F), statusSuccess);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "nocta: another Nocta controls the gamma of this display\n");
    EXPECT_EQ(ramp(), ours);

    session.gammaOutput.displayRestoreColorSyncSettings();
    const auto factory = ramp();
    EXPECT_EQ(other.set(display, 0.5F), statusSuccess)
        << "the second program should succeed after the first releases the display";
    EXPECT_EQ(session.client.ramp(crtc), ours);
    other.output.displayRestoreColorSyncSettings();
    EXPECT_EQ(session.client.ramp(crtc), factory);
}

TEST_P(X11GammaOutputTest, DisplayOfAFrozenGuardianGoesToTheNextProgramPermanently) {
    const auto factory = ramp();
    const auto frozen = dimAndFreezeGuardian();
    OtherProgram other{session};
    other.set(display, 0.25F);
    const auto theirs = session.client.ramp(crtc);

    ::testing::internal::CaptureStderr();
    kill(frozen, SIGCONT);
    EXPECT_TRUE(serveUntil([&] { return kill(frozen, 0) != 0; }));
    session.settle(); // a new guardian has started and failed to get the display
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "nocta: another Nocta controls the gamma of this display\n");
    EXPECT_NE(session.set(display, X11Session::tables({1.0F, 1.0F, 1.0F})), statusSuccess);
    session.gammaOutput.displayRestoreColorSyncSettings();
    EXPECT_EQ(ramp(), theirs);
    other.output.displayRestoreColorSyncSettings();
    EXPECT_EQ(session.client.ramp(crtc), factory);
}

TEST_P(X11GammaOutputTest, ProgramThatLostTheDisplayDoesNotRestoreIt) {
    const auto factory = ramp();
    const auto frozen = dimAndFreezeGuardian();
    OtherProgram other{session};
    other.set(display, 0.25F);
    const auto theirs = session.client.ramp(crtc);
    EXPECT_NE(theirs, factory);

    session.gammaOutput.displayRestoreColorSyncSettings();
    kill(frozen, SIGCONT);
    EXPECT_TRUE(waitUntil([&] { return Guardians::guardiansOf(getpid()).size() == 1; }));
    EXPECT_EQ(ramp(), theirs);
    other.output.displayRestoreColorSyncSettings();
    EXPECT_EQ(session.client.ramp(crtc), factory);
}

TEST_P(X11GammaOutputTest, ScreenOfADeadProgramIsRestoredEvenIfTheNextProgramExitsImmediately) {
    const auto factory = calibration(256, 0.8, {0.97, 1.0, 0.9});
    storeFactoryRamps(session.connection.get(), session.connection.root(),
                      {{crtc, {.red = factory[0], .green = factory[1], .blue = factory[2]}}});
    session.connection.synchronize();
    const auto tables = X11Session::tables({0.5F, 0.5F, 0.5F});
    session.gammaOutput.setDisplayTransferByTable(display, tables[0], tables[1], tables[2]);
    ASSERT_TRUE(session.guardian.isStarting());
    session.gammaOutput.displayRestoreColorSyncSettings();
    EXPECT_TRUE(waitUntil([&] { return session.client.ramp(crtc) == factory; }));
}

TEST_P(X11GammaOutputTest, GuardianThatDiesAsSoonAsItIsReadyIsReplaced) {
    const auto socket = dup(STDIN_FILENO);
    close(socket); // the socket to the guardian gets this descriptor next
    const auto tables = X11Session::tables({0.5F, 0.5F, 0.5F});
    session.gammaOutput.setDisplayTransferByTable(display, tables[0], tables[1], tables[2]);
    ASSERT_TRUE(waitUntil([&] { // the guardian's answer has arrived, but nothing has read it
        int length = 0;
        return ioctl(socket, FIONREAD, &length) == 0 && length == 1;
    }));
    const auto first = Guardians::guardiansOf(getpid());
    ASSERT_EQ(first.size(), 1U);
    kill(first[0], SIGKILL);
    const auto selection = session.connection.atom(guardianSelection);
    ASSERT_TRUE(waitUntil([&] { return !session.connection.isOwned(selection); }));
    EXPECT_TRUE(serveUntil([&] {
        const auto now = Guardians::guardiansOf(getpid());
        return now.size() == 1 && now[0] != first[0];
    }));
}

TEST_P(X11GammaOutputTest, WritesFailWithoutACrashWhenTheServerDies) {
    session.set(display, X11Session::tables({0.5F, 0.5F, 0.5F}));
    int lost = 0;
    session.connection.onLost = [&] { ++lost; };
    session.server.kill();
    EXPECT_TRUE(serveUntil([&] { return lost > 0; }));
    session.set(display, X11Session::tables({1, 1, 1}));
    session.gammaOutput.displayRestoreColorSyncSettings();
    EXPECT_EQ(lost, 1);
}

TEST_P(X11GammaOutputTest, GuardianRestoresTheScreenIfOnlyTheConnectionIsLost) {
    const auto factory = ramp();
    session.set(display, X11Session::tables({0.5F, 0.5F, 0.5F}));
    ASSERT_NE(ramp(), factory);
    bool lost = false;
    session.connection.onLost = [&] { lost = true; };
    session.client.disconnect(session.connection.window());
    ASSERT_TRUE(serveUntil([&] { return lost; }));
    session.gammaOutput.displayRestoreColorSyncSettings();
    EXPECT_TRUE(waitUntil([&] { return session.client.ramp(crtc) == factory; }));
}

TEST_P(X11GammaOutputTest, FactoryRampIsKeptOnTheServerWhileItIsReplaced) {
    const auto factory = calibration(256, 0.8, {0.97, 1.0, 0.9});
    session.client.setRamp(crtc, factory);
    const auto root = session.connection.root();
    EXPECT_TRUE(readFactoryRamps(session.connection.get(), root).empty());
    session.set(display, X11Session::tables({0.5F, 0.5F, 0.5F}));
    session.set(display, X11Session::tables({0.25F, 0.5F, 0.5F}));
    const auto kept = readFactoryRamps(session.connection.get(), root);
    ASSERT_EQ(kept.size(), 1U);
    EXPECT_EQ(kept.at(crtc).red, factory[0]);
    EXPECT_EQ(kept.at(crtc).green, factory[1]);
    EXPECT_EQ(kept.at(crtc).blue, factory[2]);
    session.gammaOutput.displayRestoreColorSyncSettings();
    EXPECT_TRUE(readFactoryRamps(session.connection.get(), root).empty());
}

TEST(X11GammaOutput, OutputRemovedBeforeAWriteDoesNotAffectOthers) {
    X11Session session(XServer::Kind::xorgDummy);
    session.server.plugSecondOutput();
    ASSERT_TRUE(serveUntil([&] { return session.list().size() == 2; }));
    const auto list = session.list();
    session.server.unplugSecondOutput(); // before the program reads the event
    session.set(list[1], X11Session::tables({0.5F, 0.5F, 0.5F}));
    EXPECT_EQ(session.set(list[0], X11Session::tables({0.5F, 0.5F, 0.5F})), statusSuccess);
    EXPECT_NEAR(session.client.top(session.client.crtcOf(list[0])), 0.5 * 65280 / 65535, 2e-5);
    EXPECT_TRUE(serveUntil([&] { return session.list().size() == 1; }));
}

/// Plugs and unplugs a second display. The tests do not move a CRTC to another display without
/// switching it off, because on headless X servers each CRTC works for only one output.
class CalibrationTest : public ::testing::Test {
protected:
    X11Session session{XServer::Kind::xorgDummy};
    DisplayId display = 0;
    xcb_randr_crtc_t crtc = XCB_NONE;
    XClient::Ramp first = calibration(256, 0.9, {1.0, 0.98, 0.95});
    XClient::Ramp second = calibration(256, 0.6, {0.9, 0.95, 1.0});

    void SetUp() override {
        plug();
        display = session.list()[1];
        crtc = session.client.crtcOf(static_cast<xcb_randr_output_t>(display));
        session.client.setRamp(crtc, first);
        dim();
        expectDimmed(first);
    }
    void plug() {
        session.server.plugSecondOutput();
        ASSERT_TRUE(serveUntil([&] { return session.list().size() == 2; }));
    }
    void unplug() {
        session.server.unplugSecondOutput();
        ASSERT_TRUE(serveUntil([&] { return session.list().size() == 1; }));
    }
    void dim() {
        EXPECT_EQ(session.set(display, X11Session::tables({0.5F, 0.5F, 0.5F})), statusSuccess);
    }
    void expectDimmed(const XClient::Ramp& factory) {
        const auto shown = session.client.ramp(crtc);
        for (std::size_t channel = 0; channel < 3; ++channel) {
            EXPECT_NEAR(shown[channel].back(),
                        (factory[channel][127] + factory[channel][128]) / 2.0, 1);
        }
        const auto kept = readFactoryRamps(session.connection.get(), session.connection.root());
        ASSERT_TRUE(kept.contains(crtc));
        EXPECT_EQ(kept.at(crtc).red, factory[0])
            << "the server should keep the factory ramp for the process that restores it";
    }
    void expectGivenBackAs(const XClient::Ramp& factory) {
        session.gammaOutput.displayRestoreColorSyncSettings();
        EXPECT_EQ(session.client.ramp(crtc), factory);
    }
};

TEST_F(CalibrationTest, RampKeptByTheServerWhileADisplayWasOffIsNotACalibration) {
    const auto dimmed = session.client.ramp(crtc);
    unplug();
    plug();
    EXPECT_EQ(session.client.ramp(crtc), dimmed)
        << "the ramp should not change when a display appears";
    dim();
    expectDimmed(first);
    unplug();
    auto rounded = dimmed; // as a driver with 8-bit ramps stores it
    for (auto& channel : rounded) {
        for (auto& level : channel) {
            level &= 0xff00;
        }
    }
    session.client.setRamp(crtc, rounded);
    plug();
    dim();
    expectDimmed(first);
    expectGivenBackAs(first);
}

TEST_F(CalibrationTest, CalibrationLoadedWhileADisplayIsOffIsUsed) {
    unplug();
    session.client.setRamp(crtc, second);
    plug();
    dim();
    expectDimmed(second);
    dim();
    expectDimmed(second);
    expectGivenBackAs(second);
}

TEST_F(CalibrationTest, CalibrationLoadedWhenADisplayReturnsIsUsed) {
    session.server.unplugSecondOutput();
    session.server.plugSecondOutput(); // before the program detects that the output was removed
    session.client.setRamp(crtc, second);
    session.connection.synchronize();
    QCoreApplication::processEvents();
    dim();
    expectDimmed(second);
    expectGivenBackAs(second);
}

TEST_F(CalibrationTest, CalibrationIsNotOverwrittenWhenTheScreenIsGivenBackWithoutAnotherWrite) {
    unplug();
    session.client.setRamp(crtc, second);
    plug();
    expectGivenBackAs(second);
}

TEST_F(CalibrationTest, DisplayThatWasOffIsNotSentAgainAfterAWake) {
    unplug();
    session.client.setRamp(crtc, second);
    plug();
    session.gammaOutput.sendAgain();
    session.connection.synchronize();
    EXPECT_EQ(session.client.ramp(crtc), second);
    dim();
    expectDimmed(second);
    session.client.setRamp(crtc, first); // simulates a loss
    session.gammaOutput.sendAgain();
    session.connection.synchronize();
    expectDimmed(second);
}

TEST_F(CalibrationTest, RampSetWhileTheDisplayIsOnIsNotACalibration) {
    session.client.setRamp(crtc, second); // as another program would; the next write overwrites it
    dim();
    expectDimmed(first);
    expectGivenBackAs(first);
}

} // namespace
} // namespace nocta
