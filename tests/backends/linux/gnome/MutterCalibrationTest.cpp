#include "backends/linux/gnome/MutterCalibration.h"

#include "backends/linux/bus/MessageBus.h"
#include "backends/linux/shell/QtRunLoop.h"
#include "support/EventLoop.h"
#include "support/FakeColorManager.h"
#include "support/PrivateBus.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace nocta {
namespace {

constexpr std::uint16_t highest = 65535;
constexpr auto notReady = "org.freedesktop.DBus.Error.Failed";

/// A quadratic curve with 16 entries; the levels of blue are half as high.
GammaRamp bentRamp() {
    GammaRamp ramp;
    for (int i = 0; i < 16; ++i) {
        const auto level = static_cast<std::uint16_t>(60000 * i * i / 225);
        ramp.red.push_back(level);
        ramp.green.push_back(level);
        ramp.blue.push_back(static_cast<std::uint16_t>(level / 2));
    }
    return ramp;
}

class MutterCalibrationTest : public ::testing::Test {
protected:
    PrivateBus bus{"DBUS_SESSION_BUS_ADDRESS"};
    FakeDisplayConfig mutter{bus.address()};
    std::optional<FakeColorManager> colors{std::in_place, bus.address(), mutter};
    QtRunLoop runLoop;
    NotificationCenter notificationCenter;
    std::optional<MutterDisplays> displays;
    std::optional<MutterCalibration> output;

    void SetUp() override {
        colors->with([](auto& state) { state.profile = bentRamp(); });
    }
    void make() {
        output.reset();
        displays.emplace(sessionBus(), notificationCenter);
        output.emplace(sessionBus(), *displays, runLoop);
    }
    /// Returns once the constructor's trial session has been stopped.
    void makeAvailable() {
        output.reset();
        mutter.with([](auto& state) { state.ramp = {}; });
        colors->with([](auto& state) {
            state.errors.clear();
            state.replies.clear();
            state.mute.clear();
            state.sessions.clear();
            state.calls.clear();
        });
        make();
        EXPECT_TRUE(output->isAvailable());
        EXPECT_TRUE(serveUntil([&] { return colors->calls("Stop") == 1; }));
        colors->with([](auto& state) {
            EXPECT_TRUE(state.sessions.empty());
            state.started.clear();
            state.calls.clear();
        });
    }
    Status dim(float top, std::size_t monitor = 0) {
        const std::vector<float> table = {0, top};
        return output->setDisplayTransferByTable(displays->ids().at(monitor), table, table, table);
    }
    std::uint16_t top() { return mutter.ramp().red.back(); }
    void settle() {
        EXPECT_TRUE(serveUntil([&] { return !output->isBusy(); }));
    }
    bool waitForTop(std::uint16_t level) {
        return serveUntil([&] { return top() == level; });
    }
    /// Ends the sessions as the compositor does when it rebuilds its list of monitors.
    void endSessions() {
        colors->with([](auto& state) { state.sessions.clear(); });
        mutter.with([](auto& state) { state.ramp = bentRamp(); });
        mutter.announceMonitors();
    }
    void addSecondMonitor() {
        mutter.with([](auto& state) {
            state.resources =
                "(uint32 1, [(uint32 7, int64 1, 0, 0, 1280, 720, 0, uint32 0, [uint32 0], "
                "@a{sv} {}), (8, 2, 1280, 0, 1280, 720, 0, 0, [0], {})], "
                "[(uint32 1, int64 3, 7, [uint32 7], 'DP-1', [uint32 0], @au [], @a{sv} {}), "
                "(2, 4, 8, [8], 'DP-2', [0], [], {})], "
                "[(uint32 0, int64 4, uint32 1280, uint32 720, 60.0, uint32 0)], 4096, 4096)";
            const std::string modes =
                "[('now', 1280, 720, 60.0, 1.0, [1.0], {'is-current': <true>})], @a{sv} {})";
            state.state = "(uint32 1, [(('DP-1', '', '', ''), " + modes +
                          ", (('DP-2', '', '', ''), " + modes + "], [" + state.logical +
                          ", (1280, 0, 1.0, 0, false, [('DP-2', '', '', '')], {})], {" +
                          state.layout + "})";
        });
    }
};

TEST_F(MutterCalibrationTest, FirstTablesStartTheOnlySession) {
    makeAvailable();
    EXPECT_TRUE(output->isAvailable());
    EXPECT_EQ(colors->calls("CalibrateMonitor"), 0);
    for (const auto level : {1.0F, 0.5F, 0.0F}) {
        EXPECT_EQ(dim(level), statusSuccess);
        settle();
    }
    EXPECT_EQ(top(), 0);
    EXPECT_EQ(colors->state().started, std::vector<std::string>{"DP-1"});
}

TEST_F(MutterCalibrationTest, EveryMonitorHasItsOwnSession) {
    addSecondMonitor();
    makeAvailable();
    ASSERT_EQ(displays->ids().size(), 2U);
    for (const auto level : {1.0F, 0.0F}) {
        EXPECT_EQ(dim(level, 0), statusSuccess);
        EXPECT_EQ(dim(level, 1), statusSuccess);
        settle();
    }
    auto started = colors->state().started;
    std::ranges::sort(started);
    EXPECT_EQ(started, (std::vector<std::string>{"DP-1", "DP-2"}));
    EXPECT_EQ(colors->calls("SetCrtcGammaLut"), 4);
}

TEST_F(MutterCalibrationTest, UnknownDisplayFails) {
    makeAvailable();
    const std::vector<float> table = {0, 1};
    EXPECT_NE(output->setDisplayTransferByTable(0xDEAD, table, table, table), statusSuccess);
}

TEST_F(MutterCalibrationTest, TablesAreLaidOverTheRampOfTheProfile) {
    constexpr std::size_t size = 256;
    colors->with([](auto& state) { state.size = size; });
    makeAvailable();
    dim(0.5F);
    settle();
    const auto ramp = mutter.ramp();
    ASSERT_EQ(ramp.size(), size);
    const auto profile = bentRamp();
    for (std::size_t i = 0; i < size; ++i) {
        const auto place = 0.5 * static_cast<double>(i) / (size - 1) * 15;
        const auto entry = static_cast<std::size_t>(place);
        const auto between = [&](const std::vector<std::uint16_t>& levels) {
            return std::lerp(levels[entry], levels[entry + 1], place - static_cast<double>(entry));
        };
        EXPECT_NEAR(ramp.red[i], between(profile.red), 1) << i;
        EXPECT_NEAR(ramp.green[i], between(profile.green), 1) << i;
        EXPECT_NEAR(ramp.blue[i], between(profile.blue), 1) << i;
    }
}

TEST_F(MutterCalibrationTest, UnreadableRampIsTreatedAsLinear) {
    colors->with([](auto& state) { state.profile = {}; });
    makeAvailable();
    EXPECT_EQ(dim(0.5F), statusSuccess);
    settle();
    ASSERT_EQ(mutter.ramp().size(), 16U);
    EXPECT_NEAR(top(), highest / 2.0, 1);
    EXPECT_NEAR(mutter.ramp().blue[5], highest / 6.0, 1);
}

TEST_F(MutterCalibrationTest, OnlyTheNewestTablesAreSentAfterAPendingWrite) {
    makeAvailable();
    dim(1);
    settle();
    ASSERT_EQ(colors->calls("SetCrtcGammaLut"), 1);
    colors->pause();
    for (int step = 99; step >= 0; --step) {
        EXPECT_EQ(dim(static_cast<float>(step) / 100), statusSuccess);
    }
    colors->resume();
    settle();
    EXPECT_EQ(top(), 0);
    EXPECT_EQ(colors->calls("SetCrtcGammaLut"), 3);
}

TEST_F(MutterCalibrationTest, RestoringStopsTheSessionAndAllowsLaterWrites) {
    makeAvailable();
    for (const auto starts : {1, 2}) {
        dim(0);
        EXPECT_TRUE(waitForTop(0));
        settle();
        output->displayRestoreColorSyncSettings();
        EXPECT_EQ(colors->state().sessions.size(), 0U);
        EXPECT_EQ(mutter.ramp().blue, bentRamp().blue);
        EXPECT_EQ(colors->calls("CalibrateMonitor"), starts);
    }
}

TEST_F(MutterCalibrationTest, DestructorStopsTheSession) {
    makeAvailable();
    dim(0);
    EXPECT_TRUE(waitForTop(0));
    output.reset();
    EXPECT_EQ(colors->state().sessions.size(), 0U);
    EXPECT_EQ(top(), 60000);
}

TEST_F(MutterCalibrationTest, SessionThatStartsAfterRestoringIsStopped) {
    makeAvailable();
    colors->pause();
    dim(0);
    output->displayRestoreColorSyncSettings();
    colors->resume();
    EXPECT_TRUE(serveUntil([&] { return colors->calls("Stop") == 1; }));
    EXPECT_EQ(colors->state().sessions.size(), 0U);
    EXPECT_EQ(colors->calls("SetCrtcGammaLut"), 0);
}

TEST_F(MutterCalibrationTest, SessionRestartsAfterTheMonitorListIsRebuilt) {
    makeAvailable();
    dim(0);
    EXPECT_TRUE(waitForTop(0));
    for (int starts = 2; starts < 8; ++starts) {
        settle();
        endSessions();
        EXPECT_TRUE(waitForTop(0));
        EXPECT_EQ(colors->calls("CalibrateMonitor"), starts);
    }
}

TEST_F(MutterCalibrationTest, OwnRampIsNotMistakenForTheFactoryRamp) {
    makeAvailable();
    dim(0.5F);
    settle();
    const auto level = top();
    // Without a profile, the compositor leaves the ramp unchanged.
    colors->with([](auto& state) {
        state.profile = {};
        state.sessions.clear();
    });
    mutter.announceMonitors();
    EXPECT_TRUE(serveUntil([&] { return colors->calls("SetCrtcGammaLut") == 3; }));
    settle();
    EXPECT_EQ(top(), level);
}

TEST_F(MutterCalibrationTest, TablesAreResentInTheSameSession) {
    makeAvailable();
    dim(0);
    EXPECT_TRUE(waitForTop(0));
    mutter.with([](auto& state) { state.ramp = bentRamp(); });
    mutter.announceMonitors();
    EXPECT_TRUE(waitForTop(0));
    mutter.with([](auto& state) { state.ramp = bentRamp(); });
    output->sendAgain();
    EXPECT_TRUE(waitForTop(0));
    EXPECT_EQ(colors->calls("CalibrateMonitor"), 1);
    EXPECT_EQ(colors->calls("Stop"), 0);
}

TEST_F(MutterCalibrationTest, RemovingAMonitorStopsItsSession) {
    makeAvailable();
    dim(0);
    EXPECT_TRUE(waitForTop(0));
    settle();
    mutter.with([](auto& state) {
        state.state = "(uint32 1, @a((ssss)a(siiddada{sv})a{sv}) [], "
                      "@a(iiduba(ssss)a{sv}) [], @a{sv} {})";
    });
    mutter.announceMonitors();
    EXPECT_TRUE(serveUntil([&] { return colors->state().sessions.empty(); }));
    EXPECT_EQ(displays->ids().size(), 0U);
    mutter.with([](auto& state) { state.state = ""; });
    mutter.announceMonitors();
    EXPECT_TRUE(serveUntil([&] { return displays->ids().size() == 1; }));
    dim(0);
    EXPECT_TRUE(waitForTop(0));
    EXPECT_EQ(colors->calls("CalibrateMonitor"), 2);
}

TEST_F(MutterCalibrationTest, RefusedSessionIsRequestedAgain) {
    makeAvailable();
    colors->with([](auto& state) { state.errors["CalibrateMonitor"] = notReady; });
    dim(0);
    EXPECT_TRUE(serveUntil([&] { return colors->calls("CalibrateMonitor") == 2; }));
    colors->with([](auto& state) { state.errors.clear(); });
    EXPECT_TRUE(waitForTop(0));
}

TEST_F(MutterCalibrationTest, RampsHaveTheSizeThatTheSessionReports) {
    for (const auto size : {1U, 3U, 65536U}) {
        colors->with([&](auto& state) { state.size = size; });
        makeAvailable();
        dim(1);
        settle();
        const auto ramp = mutter.ramp();
        EXPECT_EQ(ramp.red.size(), size);
        EXPECT_EQ(ramp.green.size(), size);
        EXPECT_EQ(ramp.blue.size(), size);
        EXPECT_EQ(ramp.red.back(), 60000) << size;
    }
}

TEST_F(MutterCalibrationTest, OutputIsUnavailableAfterARefusalOrInvalidAnswer) {
    const std::vector<std::pair<std::string, std::string>> answers = {
        {"CalibrateMonitor", "()"},
        {"CalibrateMonitor", "('/text',)"},
        {"CalibrateMonitor", "(1,)"},
        {"CalibrateMonitor", "(objectpath '/a', 1)"},
        {"Get", "()"},
        {"Get", "(uint32 16,)"},
        {"Get", "(<'text'>,)"},
        {"Get", "(<int32 16>,)"},
        {"Get", "(<uint32 0>,)"},
        {"Get", "(<uint32 65537>,)"},
    };
    for (const auto& answer : answers) {
        colors->with([&](auto& state) {
            state.sessions.clear();
            state.replies = {answer};
        });
        make();
        EXPECT_FALSE(output->isAvailable()) << answer.second;
        EXPECT_NE(dim(0), statusSuccess) << answer.second;
    }
    colors->with([](auto& state) { state.errors["CalibrateMonitor"] = notReady; });
    make();
    EXPECT_FALSE(output->isAvailable());
    colors.reset();
    make();
    EXPECT_FALSE(output->isAvailable());
}

TEST_F(MutterCalibrationTest, RefusalOfOneMonitorDoesNotAffectTheOther) {
    const std::vector<std::pair<std::string, std::string>> answers = {
        {"CalibrateMonitor", "('/text',)"},
        {"Get", "(<uint32 65537>,)"},
    };
    addSecondMonitor();
    for (const auto& answer : answers) {
        makeAvailable();
        dim(1, 1);
        settle();
        colors->with([&](auto& state) {
            state.replies = {answer};
            state.calls.clear();
        });
        ::testing::internal::CaptureStderr();
        EXPECT_EQ(dim(0), statusSuccess);
        settle();
        EXPECT_NE(dim(0), statusSuccess);
        output->sendAgain();
        settle();
        EXPECT_EQ(
            ::testing::internal::GetCapturedStderr(),
            "nocta: the compositor rejects the gamma ramps for DP-1; that display is not dimmed\n");
        EXPECT_EQ(colors->calls(answer.first), 4) << answer.first;
        EXPECT_EQ(dim(0, 1), statusSuccess);
        EXPECT_TRUE(waitForTop(0));
    }
}

TEST_F(MutterCalibrationTest, SessionThatRefusesRampsIsStopped) {
    makeAvailable();
    colors->with([](auto& state) { state.errors["SetCrtcGammaLut"] = notReady; });
    dim(0);
    settle();
    EXPECT_NE(dim(0), statusSuccess);
    EXPECT_EQ(colors->calls("SetCrtcGammaLut"), 4);
    EXPECT_TRUE(serveUntil([&] { return colors->calls("Stop") == 4; }));
}

TEST_F(MutterCalibrationTest, UnansweredCallIsRepeated) {
    for (const auto* const method : {"CalibrateMonitor", "Get", "SetCrtcGammaLut"}) {
        makeAvailable();
        colors->with([&](auto& state) { state.mute = {method}; });
        dim(0);
        EXPECT_TRUE(serveUntil([&] { return colors->calls(method) == 1; })) << method;
        colors->with([](auto& state) { state.mute.clear(); });
        EXPECT_TRUE(waitForTop(0)) << method;
    }
}

TEST_F(MutterCalibrationTest, SettingTablesFailsAfterTheServiceDisappears) {
    makeAvailable();
    dim(1);
    settle();
    colors.reset();
    dim(0);
    settle();
    EXPECT_NE(dim(0), statusSuccess);
}

} // namespace
} // namespace nocta
