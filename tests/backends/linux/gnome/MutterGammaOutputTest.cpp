#include "backends/linux/gnome/MutterGammaOutput.h"

#include "backends/linux/bus/MessageBus.h"
#include "backends/linux/shell/QtRunLoop.h"
#include "contracts/DisplayRemovalContract.h"
#include "contracts/GammaOutputContract.h"
#include "support/EventLoop.h"
#include "support/FakeDisplayConfig.h"
#include "support/Mutter.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace nocta {

/// The displays and ramps of a real compositor; another client of its X server reads them.
class MutterHarness {
public:
    MutterHarness() { noteFactoryTops(); }

    static bool canReadTables() { return Mutter::isSupported(); }
    MutterDisplays& displays() { return session_->displays; }
    GammaOutput& gammaOutput() { return session_->gammaOutput; }
    void plug() {
        session_->server.plugSecondOutput();
        EXPECT_TRUE(serveUntil([this] { return displays().ids().size() == 2; }));
        noteFactoryTops();
    }
    void unplug() {
        session_->server.unplugSecondOutput();
        EXPECT_TRUE(serveUntil([this] { return displays().ids().size() == 1; }));
    }
    NotificationCenter& notificationCenter() { return session_->notificationCenter; }
    double top(DisplayId id) {
        settle();
        return session_->client.top(crtcOf(id));
    }
    double factoryTop(DisplayId id) { return factoryTops_.at(id); }

private:
    struct Session {
        XServer server{XServer::Kind::xorgDummy};
        XClient client;
        PrivateBus bus{"DBUS_SESSION_BUS_ADDRESS"};
        Mutter mutter;
        TemporaryFolder folder;
        QtRunLoop runLoop;
        NotificationCenter notificationCenter;
        MutterDisplays displays{sessionBus(), notificationCenter};
        MutterGammaOutput gammaOutput{sessionBus(), displays, runLoop, folder.path() + "/ramps"};
    };

    void settle() {
        EXPECT_TRUE(serveUntil([this] { return !session_->gammaOutput.isBusy(); }));
    }
    void noteFactoryTops() {
        for (const auto id : session_ ? displays().ids() : std::vector<DisplayId>()) {
            factoryTops_.emplace(id, session_->client.top(crtcOf(id)));
        }
    }
    /// The driver numbers its outputs: DUMMY0, DUMMY1.
    xcb_randr_crtc_t crtcOf(DisplayId id) {
        const auto number = static_cast<std::size_t>(displays().outputName(id).back() - '0');
        return session_->client.crtcOf(session_->client.activeOutputs().at(number));
    }

    std::optional<Session> session_ =
        canReadTables() ? std::optional<Session>(std::in_place) : std::nullopt;
    std::map<DisplayId, double> factoryTops_;
};

INSTANTIATE_TYPED_TEST_SUITE_P(Mutter, GammaOutputContract, MutterHarness);
INSTANTIATE_TYPED_TEST_SUITE_P(Mutter, DisplayRemovalContract, MutterHarness);

namespace {

constexpr std::size_t rampSize = 16;

GammaRamp bentRamp(std::size_t size) {
    GammaRamp ramp;
    for (std::size_t i = 0; i < size; ++i) {
        const auto level = static_cast<std::uint16_t>(60000 * i * i / ((size - 1) * (size - 1)));
        ramp.red.push_back(level);
        ramp.green.push_back(level);
        ramp.blue.push_back(static_cast<std::uint16_t>(level / 2));
    }
    return ramp;
}

class MutterGammaOutputTest : public ::testing::Test {
protected:
    PrivateBus bus{"DBUS_SESSION_BUS_ADDRESS"};
    FakeDisplayConfig mutter{bus.address()};
    TemporaryFolder folder;
    std::string notes = folder.path() + "/ramps";
    QtRunLoop runLoop;
    NotificationCenter notificationCenter;
    std::optional<MutterDisplays> displays;
    std::optional<MutterGammaOutput> output;

    void SetUp() override {
        mutter.with([](auto& state) { state.ramp = bentRamp(rampSize); });
    }
    void make() {
        output.reset();
        displays.emplace(sessionBus(), notificationCenter);
        output.emplace(sessionBus(), *displays, runLoop, notes);
    }
    Status dim(float top) {
        const std::vector<float> table = {0, top};
        const auto ids = displays->ids();
        return ids.empty() ? statusFailure
                           : output->setDisplayTransferByTable(ids[0], table, table, table);
    }
    std::uint16_t top() { return mutter.ramp().red.back(); }
    void settle() {
        EXPECT_TRUE(serveUntil([&] { return !output->isBusy(); }));
    }
    bool waitForTop(std::uint16_t level) {
        return serveUntil([&] { return top() == level; });
    }
    /// What half of the input gives on the bent ramp of 16 entries: between entries 7 and 8.
    static constexpr std::uint16_t halfTop = 15000 + 67;
};

TEST_F(MutterGammaOutputTest, MonitorIsDescribed) {
    make();
    ASSERT_TRUE(displays->isAvailable());
    const auto ids = displays->ids();
    ASSERT_EQ(ids.size(), 1U);
    EXPECT_EQ(displays->outputName(ids[0]), "DP-1");
    EXPECT_TRUE(displays->displayIsBuiltin(ids[0]));
    EXPECT_TRUE(displays->displayIsMain(ids[0]));
    EXPECT_EQ(displays->displayBounds(ids[0]), (Rect{0, 0, 1280, 720}));
    EXPECT_EQ(displays->displayCopyDisplayMode(ids[0]), (DisplayMode{1280, 720}));
    EXPECT_EQ(displays->crtcOf(ids[0]), FakeDisplayConfig::crtc);
}

TEST_F(MutterGammaOutputTest, BoundsDependOnLayoutScaleAndRotation) {
    mutter.with([](auto& state) {
        state.logical = "(100, 50, 2.0, uint32 1, false, [('DP-1', '', '', '')], @a{sv} {})";
        state.monitorProperties = "'is-builtin': <false>";
    });
    make();
    const auto id = displays->ids().at(0);
    EXPECT_EQ(displays->displayBounds(id), (Rect{100, 50, 720, 1280})) << "physical layout";
    EXPECT_FALSE(displays->displayIsMain(id));
    EXPECT_FALSE(displays->displayIsBuiltin(id));
    mutter.with([](auto& state) { state.layout = "'layout-mode': <uint32 1>"; });
    mutter.announceMonitors();
    EXPECT_TRUE(serveUntil([&] { return displays->displayBounds(id) == Rect{100, 50, 360, 640}; }));
}

TEST_F(MutterGammaOutputTest, TablesAreLaidOverTheFactoryRamp) {
    make();
    EXPECT_TRUE(output->isAvailable());
    EXPECT_EQ(dim(0.5F), statusSuccess);
    EXPECT_TRUE(serveUntil([&] { return top() < 60000; }));
    EXPECT_NEAR(top(), halfTop, 1);
    EXPECT_NEAR(mutter.ramp().blue.back(), halfTop / 2, 1);
    output->displayRestoreColorSyncSettings();
    EXPECT_EQ(mutter.ramp().red, bentRamp(rampSize).red);
    EXPECT_EQ(mutter.ramp().blue, bentRamp(rampSize).blue);
    EXPECT_FALSE(std::filesystem::exists(notes));
}

TEST_F(MutterGammaOutputTest, OnlyTheNewestTablesAreSentWhileAWriteIsUnderWay) {
    make();
    dim(1);
    settle();
    ASSERT_EQ(mutter.calls("SetCrtcGamma"), 1);
    mutter.pause();
    for (int step = 99; step > 0; --step) {
        EXPECT_EQ(dim(static_cast<float>(step) / 100), statusSuccess);
    }
    dim(0);
    mutter.resume();
    EXPECT_TRUE(waitForTop(0));
    EXPECT_EQ(mutter.calls("SetCrtcGamma"), 3);
}

TEST_F(MutterGammaOutputTest, StaleConfigurationIsReadAgain) {
    make();
    mutter.with([](auto& state) { ++state.serial; }); // and no signal
    dim(0);
    EXPECT_TRUE(waitForTop(0));
}

TEST_F(MutterGammaOutputTest, ConfigurationThatIsAlwaysStaleIsGivenUp) {
    make();
    dim(1);
    EXPECT_TRUE(serveUntil([&] { return mutter.calls("SetCrtcGamma") == 1; }));
    mutter.with([](auto& state) { state.isAlwaysStale = true; });
    dim(0);
    // The write, its retry, and another write later, after the monitors have changed.
    EXPECT_TRUE(serveUntil([&] { return mutter.calls("SetCrtcGamma") == 4; }));
    bool passed = false;
    Timer timer;
    timer.start(runLoop, std::chrono::milliseconds(700), Repeat::no, [&] { passed = true; });
    EXPECT_TRUE(serveUntil([&] { return passed; }));
    EXPECT_EQ(mutter.calls("SetCrtcGamma"), 4);
    EXPECT_EQ(top(), 60000);
}

TEST_F(MutterGammaOutputTest, StraightRampCountsWhileTheNightLightIsActive) {
    mutter.with([](auto& state) { state.isNightLightActive = true; });
    make();
    dim(0.5F);
    EXPECT_TRUE(serveUntil([&] { return top() != 60000; }));
    EXPECT_NEAR(top(), 65535 / 2.0, 1);
    output->displayRestoreColorSyncSettings();
    EXPECT_EQ(top(), 65535);
}

TEST_F(MutterGammaOutputTest, ColorDeviceThatChangesMakesItSendTheTablesAgain) {
    const PrivateBus systemBusDaemon{"DBUS_SYSTEM_BUS_ADDRESS"};
    make();
    dim(0);
    EXPECT_TRUE(waitForTop(0));
    mutter.with([](auto& state) { state.ramp = bentRamp(rampSize); });
    EXPECT_EQ(
        runToEnd({"gdbus", "emit", "--system", "--object-path", "/org/freedesktop/ColorManager",
                  "--signal", "org.freedesktop.ColorManager.DeviceChanged",
                  "objectpath '/org/freedesktop/ColorManager/devices/one'"}),
        0);
    EXPECT_TRUE(waitForTop(0));
}

TEST_F(MutterGammaOutputTest, MonitorsWithoutRampsAreUnavailable) {
    mutter.with([](auto& state) { state.ramp = {}; });
    make();
    EXPECT_TRUE(displays->isAvailable());
    EXPECT_FALSE(output->isAvailable());
}

TEST_F(MutterGammaOutputTest, ChannelsOfDifferentSizesAreNotChanged) {
    mutter.with([](auto& state) { state.ramp.green.pop_back(); });
    make();
    dim(0);
    settle();
    EXPECT_EQ(mutter.calls("SetCrtcGamma"), 0);
}

TEST_F(MutterGammaOutputTest, RepliesOfOtherTypesAreIgnored) {
    for (const auto* const resources :
         {"()", "(uint32 1, 'text')", "(uint32 1, [1], [2], [3], 4, 5)"}) {
        mutter.with([&](auto& state) { state.resources = resources; });
        make();
        EXPECT_FALSE(displays->isAvailable()) << resources;
        EXPECT_EQ(displays->ids().size(), 0U) << resources;
    }
    mutter.with([&](auto& state) {
        state.resources = "";
        state.state = "(uint32 1, [('DP-1',)], @a(iiduba(ssss)a{sv}) [], @a{sv} {})";
    });
    make();
    EXPECT_FALSE(displays->isAvailable());
}

TEST_F(MutterGammaOutputTest, RepliesFromDifferentConfigurationsAreNotMixed) {
    make();
    const auto before = displays->displayBounds(displays->ids().at(0));
    mutter.with([&](auto& state) {
        state.resources = "(uint32 99, @a(uxiiiiiuaua{sv}) [], @a(uxiausauaua{sv}) [], "
                          "@a(uxuudu) [], 0, 0)";
    });
    const auto calls = mutter.calls("GetCurrentState");
    mutter.announceMonitors();
    EXPECT_TRUE(serveUntil([&] { return mutter.calls("GetCurrentState") == calls + 1; }));
    mutter.with([](auto& state) { state.resources = ""; });
    dim(0);
    EXPECT_TRUE(waitForTop(0));
    EXPECT_EQ(displays->displayBounds(displays->ids().at(0)), before);
    EXPECT_TRUE(displays->crtcOf(displays->ids().at(0)));
}

TEST_F(MutterGammaOutputTest, NotesThatCannotBeWrittenLeaveTheDisplayAlone) {
    std::filesystem::create_directories(notes + "/folder");
    make();
    ::testing::internal::CaptureStderr();
    dim(0);
    settle();
    dim(0);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "nocta: cannot save the gamma ramps in " + notes + "; the displays are not dimmed\n");
    EXPECT_EQ(mutter.ramp().red, bentRamp(rampSize).red);
}

} // namespace
} // namespace nocta
