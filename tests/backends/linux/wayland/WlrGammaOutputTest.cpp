#include "backends/linux/wayland/WlrGammaOutput.h"

#include "backends/linux/wayland/WaylandSession.h"
#include "backends/virtual/VirtualRunLoop.h"
#include "contracts/GammaOutputContract.h"

#include <algorithm>

namespace nocta {

INSTANTIATE_TYPED_TEST_SUITE_P(Sway, GammaOutputContract, SwayHarness);
INSTANTIATE_TYPED_TEST_SUITE_P(TestCompositor, GammaOutputContract, TestCompositorHarness);

namespace {

using namespace std::chrono_literals;

constexpr std::uint16_t half = 32768;

/// Tests with a real compositor.
class WlrGammaOnSwayTest : public ::testing::Test {
protected:
    Sway sway;
    WaylandSession session;

    void SetUp() override {
        if (!Sway::canLogGamma()) {
            GTEST_SKIP() << "this version of wlroots hides the gamma tables";
        }
    }
};

TEST_F(WlrGammaOnSwayTest, OnlyTheNewestOfManyTablesIsSentAfterTheFirst) {
    WlrGammaOutput gamma(session.connection, session.displays, session.runLoop);
    for (int step = 100; step >= 50; --step) {
        EXPECT_EQ(session.setLevel(gamma, 1, static_cast<float>(step) / 100), statusSuccess);
    }
    session.settle();
    const auto events = sway.gammaOf("HEADLESS-1");
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[0].back(), 65535);
    EXPECT_EQ(events[1].back(), half);
}

// When a second program requests control, this version of sway revokes the control of the first and
// rejects the second. It accepts the next request.
TEST_F(WlrGammaOnSwayTest, RetriesEndWhileAnotherGammaProgramRuns) {
    VirtualRunLoop time;
    WlrGammaOutput gamma(session.connection, session.displays, time);
    ASSERT_EQ(session.setLevel(gamma, 1, 0.5F), statusSuccess);
    ::testing::internal::CaptureStderr();
    for (int attempt = 0; attempt < 10; ++attempt) {
        WaylandSession other;
        const WlrGammaOutput gammaOfOther(other.connection, other.displays, other.runLoop);
        for (Duration passed{}; passed < 10s; passed += 500ms) {
            session.settle();
            time.advance(500ms);
        }
        EXPECT_TRUE(other.connection.synchronize()) << "the other program should stay connected";
    }
    EXPECT_NE(session.setLevel(gamma, 1, 0.5F), statusSuccess);
    gamma.sendAgain();
    session.settle();
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "nocta: cannot set the gamma of HEADLESS-1: another program seems to control it\n");
}

/// Tests with the test compositor.
class WlrGammaOutputTest : public ::testing::Test {
protected:
    TestCompositor compositor;
    WaylandSession session;
    WlrGammaOutput gamma{session.connection, session.displays, session.runLoop};

    std::vector<std::uint16_t> lastTops() {
        session.settle();
        std::vector<std::uint16_t> tops;
        for (const auto& event : compositor.gammaOf("DP-1")) {
            tops.push_back(event.empty() ? 0 : event.back());
        }
        return tops;
    }
};

TEST_F(WlrGammaOutputTest, EqualTablesAreSentAgain) {
    session.setLevel(gamma, 1, 0.5F);
    session.settle();
    session.setLevel(gamma, 1, 0.5F);
    EXPECT_EQ(lastTops(), (std::vector{half, half}));
}

TEST_F(WlrGammaOutputTest, NothingIsSentBeforeTheFirstWriteOrAfterRestoring) {
    gamma.sendAgain();
    compositor.setPower("DP-1", false);
    compositor.setPower("DP-1", true);
    EXPECT_TRUE(lastTops().empty());
    session.setLevel(gamma, 1, 0.5F);
    session.settle();
    gamma.displayRestoreColorSyncSettings();
    gamma.sendAgain();
    compositor.setPower("DP-1", false);
    compositor.setPower("DP-1", true);
    EXPECT_EQ(lastTops(), (std::vector<std::uint16_t>{half, 0}));
}

TEST_F(WlrGammaOutputTest, RestoringIsSynchronous) {
    session.setLevel(gamma, 1, 0.5F);
    session.settle();
    gamma.displayRestoreColorSyncSettings();
    EXPECT_TRUE(compositor.gammaOf("DP-1").back().empty());
}

TEST_F(WlrGammaOutputTest, TablesAreSentAgainAfterSleep) {
    session.setLevel(gamma, 1, 0.5F);
    session.settle();
    gamma.sendAgain();
    EXPECT_EQ(lastTops(), (std::vector{half, half}));
}

TEST_F(WlrGammaOutputTest, TablesAreSentAgainWhenTheOutputIsTurnedOn) {
    session.setLevel(gamma, 1, 0.5F);
    session.settle();
    compositor.setPower("DP-1", false);
    EXPECT_EQ(lastTops(), (std::vector{half}));
    compositor.setPower("DP-1", true);
    EXPECT_EQ(lastTops(), (std::vector{half, half}));
    compositor.setPower("DP-1", true);
    EXPECT_EQ(lastTops(), (std::vector{half, half}))
        << "nothing should be sent if the output is already on";
}

TEST(WlrGammaOutput, TablesAreSentAgainToAnOutputThatWasOffAtStartup) {
    TestCompositor compositor;
    compositor.setPower("DP-1", false);
    WaylandSession session;
    WlrGammaOutput gamma(session.connection, session.displays, session.runLoop);
    session.setLevel(gamma, 1, 0.5F);
    session.settle();
    compositor.setPower("DP-1", true);
    session.settle();
    EXPECT_EQ(compositor.gammaOf("DP-1").size(), 2U);
}

} // namespace
} // namespace nocta
