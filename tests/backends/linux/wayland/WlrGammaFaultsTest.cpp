#include "backends/linux/wayland/WaylandSession.h"
#include "backends/virtual/VirtualRunLoop.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

// Tests with compositors that misbehave. Timeouts use virtual time.

namespace nocta {
namespace {

using namespace std::chrono_literals;

constexpr std::uint16_t half = 32768;
constexpr auto refused =
    "nocta: cannot set the gamma of DP-1: another program seems to control it\n";

class WlrGammaFaultsTest : public ::testing::Test {
protected:
    TestCompositor compositor;
    VirtualRunLoop time;
    std::optional<WaylandSession> session;
    std::optional<WlrGammaOutput> gamma;

    /// Starts the program. Configure the compositor before this call.
    void start() {
        session.emplace();
        gamma.emplace(session->connection, session->displays, time);
    }
    Status setLevel(float level) { return WaylandSession::setLevel(*gamma, 1, level); }
    void wait(Duration duration) {
        for (; duration > Duration{}; duration -= 500ms) {
            session->settle();
            time.advance(std::min<Duration>(duration, 500ms));
        }
        session->settle();
    }
    /// Returns the levels of DP-1's last table, or nothing if the original table has been restored.
    std::vector<std::uint16_t> shown() {
        session->settle();
        const auto events = compositor.gammaOf("DP-1");
        return events.empty() ? std::vector<std::uint16_t>() : events.back();
    }
    std::uint16_t top() {
        const auto levels = shown();
        return levels.empty() ? 65535 : levels.back();
    }
};

TEST_F(WlrGammaFaultsTest, OutputCanBeRemovedBetweenAnyTwoRequests) {
    const auto useEverything = [&](TestCompositor& any) {
        WaylandSession current;
        WlrGammaOutput output(current.connection, current.displays, current.runLoop);
        for (const auto level : {0.25F, 0.5F}) {
            WaylandSession::setLevel(output, 1, level);
            WaylandSession::setLevel(output, 2, level);
            current.settle();
        }
        output.sendAgain();
        current.settle();
        EXPECT_TRUE(current.connection.isOpen());
        const auto events = any.gammaOf("DP-1");
        EXPECT_TRUE(!events.empty() && !events.back().empty() && events.back().back() == half);
        output.displayRestoreColorSyncSettings();
    };
    compositor.addOutput();
    useEverything(compositor);
    const auto requests = compositor.outputRequests();
    EXPECT_GE(requests, 14) << "there should be at least seven requests for each output";
    for (int request = 1; request <= requests; ++request) {
        TestCompositor other;
        other.addOutput();
        other.removeOutputAtRequest("DP-2", request);
        SCOPED_TRACE(request);
        useEverything(other);
    }
}

TEST_F(WlrGammaFaultsTest, TablesHaveTheRequestedSize) {
    for (const std::uint32_t size : {1U, 3U, 256U, 65536U}) {
        TestCompositor other;
        other.respond("DP-1", TestCompositor::Response::size, size);
        WaylandSession current;
        WlrGammaOutput output(current.connection, current.displays, current.runLoop);
        EXPECT_EQ(WaylandSession::setLevel(output, 1, 0.5F), statusSuccess);
        current.settle();
        const auto events = other.gammaOf("DP-1");
        ASSERT_EQ(events.size(), 1U) << size;
        ASSERT_EQ(events[0].size(), 3 * size);
        for (const auto end : {size, 2 * size, 3 * size}) {
            EXPECT_EQ(events[0][end - 1], half) << size;
            if (size > 1) {
                EXPECT_EQ(events[0][end - size], 0) << size;
                EXPECT_NEAR(events[0][end - size + size / 2], half / 2, half / size + 1) << size;
            }
        }
    }
}

TEST_F(WlrGammaFaultsTest, InvalidSizesAreRejected) {
    for (const std::uint32_t size : {0U, 65537U, 0xFFFFFFFFU}) {
        TestCompositor other;
        other.respond("DP-1", TestCompositor::Response::size, size);
        WaylandSession current;
        VirtualRunLoop timeThere;
        WlrGammaOutput output(current.connection, current.displays, timeThere);
        EXPECT_FALSE(output.isAvailable());
        WaylandSession::setLevel(output, 1, 0.5F);
        ::testing::internal::CaptureStderr();
        for (int attempt = 0; attempt < 10; ++attempt) {
            timeThere.advance(10s);
            current.settle();
        }
        EXPECT_EQ(::testing::internal::GetCapturedStderr(), refused) << size;
        EXPECT_TRUE(other.gammaOf("DP-1").empty());
        EXPECT_EQ(other.gammaRequests("DP-1"), 4);
    }
}

TEST_F(WlrGammaFaultsTest, MissingResponseIsAFailureAfterASecond) {
    compositor.respond("DP-1", TestCompositor::Response::none);
    start();
    EXPECT_FALSE(gamma->isAvailable());
    EXPECT_EQ(setLevel(0.5F), statusSuccess);
    wait(990ms);
    EXPECT_EQ(compositor.gammaRequests("DP-1"), 1);
    compositor.respond("DP-1", TestCompositor::Response::size);
    wait(20ms);
    EXPECT_EQ(compositor.gammaRequests("DP-1"), 1)
        << "there should be a pause before the next request";
    wait(1s);
    EXPECT_EQ(compositor.gammaRequests("DP-1"), 2);
    EXPECT_EQ(top(), half);
    EXPECT_TRUE(gamma->isAvailable());
}

TEST_F(WlrGammaFaultsTest, RetriesSlowDownAndEndWithOneLine) {
    compositor.respond("DP-1", TestCompositor::Response::none);
    start();
    ::testing::internal::CaptureStderr();
    std::vector<Duration> instants;
    int requests = 1;
    for (Duration now{}; now < 60s; now += 500ms) {
        setLevel(0.5F);
        wait(500ms);
        if (const auto made = compositor.gammaRequests("DP-1"); made != requests) {
            requests = made;
            instants.push_back(now + 500ms);
        }
    }
    // Each request times out after a second. Pauses of one, two and four seconds follow.
    EXPECT_EQ(instants, (std::vector<Duration>{2s, 5s, 10s}));
    gamma->sendAgain();
    compositor.setPower("DP-1", false);
    compositor.setPower("DP-1", true);
    wait(10s);
    EXPECT_EQ(compositor.gammaRequests("DP-1"), 4);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), refused);
    EXPECT_NE(setLevel(0.5F), statusSuccess);
}

TEST_F(WlrGammaFaultsTest, NewestTableIsSentAfterALateResponse) {
    compositor.respond("DP-1", TestCompositor::Response::none);
    start();
    setLevel(0.75F);
    setLevel(0.5F);
    wait(900ms);
    compositor.respondLate("DP-1");
    session->settle();
    const auto events = compositor.gammaOf("DP-1");
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].back(), half);
    wait(10s);
    EXPECT_EQ(compositor.gammaRequests("DP-1"), 1);
    EXPECT_EQ(compositor.gammaOf("DP-1").size(), 1U);
}

TEST_F(WlrGammaFaultsTest, OutputWithoutGammaDoesNotAffectOthers) {
    compositor.addOutput();
    compositor.respond("DP-2", TestCompositor::Response::refusal);
    start();
    EXPECT_TRUE(gamma->isAvailable());
    WaylandSession::setLevel(*gamma, 2, 0.5F);
    setLevel(0.5F);
    EXPECT_EQ(top(), half);
    EXPECT_TRUE(compositor.gammaOf("DP-2").empty());
}

TEST_F(WlrGammaFaultsTest, RevokedControlIsRequestedAgain) {
    start();
    setLevel(0.5F);
    session->settle();
    compositor.revokeGamma("DP-1");
    EXPECT_EQ(top(), 65535);
    wait(1100ms);
    EXPECT_EQ(top(), half);
}

TEST_F(WlrGammaFaultsTest, OccasionalLossOfControlIsAlwaysRetried) {
    start();
    ::testing::internal::CaptureStderr();
    for (int loss = 0; loss < 10; ++loss) {
        setLevel(0.5F);
        wait(61s); // long enough to count as stable
        compositor.revokeGamma("DP-1");
        wait(10s);
        EXPECT_EQ(top(), half);
    }
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST_F(WlrGammaFaultsTest, AbandonedOutputIsRetriedWhenItReturns) {
    compositor.respond("DP-1", TestCompositor::Response::refusal);
    start();
    ::testing::internal::CaptureStderr();
    setLevel(0.5F);
    for (int attempt = 0; attempt < 5; ++attempt) {
        wait(10s);
    }
    ASSERT_EQ(::testing::internal::GetCapturedStderr(), refused);
    compositor.removeOutput("DP-1");
    compositor.addOutput("DP-1", 0);
    ASSERT_TRUE(serveUntil([&] { return setLevel(0.5F) == statusSuccess; }));
    EXPECT_EQ(top(), half);
}

TEST_F(WlrGammaFaultsTest, WritesFailWhileTheManagerIsWithdrawn) {
    start();
    setLevel(0.5F);
    EXPECT_EQ(top(), half);
    compositor.withdrawGammaManager();
    session->settle();
    EXPECT_FALSE(gamma->isAvailable());
    EXPECT_NE(setLevel(0.25F), statusSuccess);
    gamma->sendAgain();
    gamma->displayRestoreColorSyncSettings();
    EXPECT_EQ(top(), 65535);
    compositor.offerGammaManager();
    session->settle();
    EXPECT_EQ(setLevel(0.5F), statusSuccess);
    EXPECT_EQ(top(), half);
    EXPECT_TRUE(gamma->isAvailable());
}

TEST_F(WlrGammaFaultsTest, ConnectionCanBreakDuringAWrite) {
    start();
    int losses = 0;
    session->connection.onLost = [&] { ++losses; };
    compositor.disconnectAtNextTable();
    for (const auto level : {0.75F, 0.5F, 0.25F}) {
        setLevel(level);
    }
    ASSERT_TRUE(serveUntil([&] { return losses > 0; }));
    setLevel(0.5F);
    gamma->sendAgain();
    time.advance(10s);
    gamma->displayRestoreColorSyncSettings();
    QCoreApplication::processEvents();
    EXPECT_EQ(losses, 1);
    EXPECT_TRUE(compositor.gammaOf("DP-1").empty());
}

TEST_F(WlrGammaFaultsTest, WriteSucceedsAfterOneWithoutFreeDescriptors) {
    start();
    setLevel(0.25F);
    EXPECT_EQ(top(), 16384);
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    const auto firstFree = static_cast<rlim_t>(dup(STDERR_FILENO));
    close(static_cast<int>(firstFree));
    for (const rlim_t free : {0, 1, 2}) { // one for the file, and one for sending it
        const rlimit low{.rlim_cur = firstFree + free, .rlim_max = limit.rlim_max};
        ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &low), 0);
        EXPECT_EQ(setLevel(0.75F), statusSuccess);
        ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
        session->settle();
        EXPECT_TRUE(session->connection.isOpen()) << free;
        EXPECT_EQ(setLevel(0.5F), statusSuccess);
        EXPECT_EQ(top(), half) << free;
    }
}

TEST_F(WlrGammaFaultsTest, RestoringDoesNotWaitForAnUnresponsiveCompositor) {
    start();
    setLevel(0.5F);
    EXPECT_EQ(top(), half);
    compositor.pause();
    gamma->displayRestoreColorSyncSettings(); // must not block
    compositor.resume();
    EXPECT_EQ(top(), 65535);
}

TEST_F(WlrGammaFaultsTest, OnlyTheNewestTableIsSentAfterAnUnresponsivePeriod) {
    start();
    setLevel(0.9F);
    EXPECT_NE(top(), 65535);
    compositor.pause();
    for (int step = 0; step < 1000; ++step) {
        setLevel(static_cast<float>(step) / 1000);
        QCoreApplication::processEvents();
    }
    setLevel(0.5F);
    compositor.resume();
    EXPECT_EQ(top(), half);
    EXPECT_EQ(compositor.gammaOf("DP-1").size(), 3U)
        << "only the pending and the newest table should follow the first";
}

} // namespace
} // namespace nocta
