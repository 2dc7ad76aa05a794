#include "backends/linux/gnome/MagnifierFilter.h"

#include "support/EventLoop.h"
#include "support/GnomeSettings.h"
#include "support/NoctaProcess.h"

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <sys/file.h>
#include <unistd.h>

namespace nocta {
namespace {

struct Helpers : NoctaProcess {
    using NoctaProcess::childrenOf;
};

class MagnifierFilterTest : public ::testing::Test {
protected:
    GnomeSettings gnome;
    TemporaryFolder state;
    std::filesystem::path stateFile = state.path() + "/nocta/magnifier";
    std::optional<MagnifierFilter> filter;

    void SetUp() override {
        for (const auto& [name, value] : gnome.environment()) {
            setenv(name.c_str(), value.c_str(), 1);
        }
    }
    void TearDown() override {
        filter.reset();
        for (const auto& [name, value] : gnome.environment()) {
            unsetenv(name.c_str());
        }
    }
    void turnGray() {
        filter->setOn(true);
        ASSERT_TRUE(serveUntil([&] { return gnome.isGray(); }));
    }
    void turnColored() {
        filter->setOn(false);
        ASSERT_TRUE(serveUntil([&] { return !std::filesystem::exists(stateFile); }));
    }
};

TEST_F(MagnifierFilterTest, IsUnavailableOnOtherDesktops) {
    for (const auto* const desktops : {"", "KDE", "Budgie:GNOME", "X-Cinnamon", "GNOMEish"}) {
        setenv("XDG_CURRENT_DESKTOP", desktops, 1);
        EXPECT_FALSE(MagnifierFilter(stateFile).isAvailable()) << desktops;
    }
    unsetenv("XDG_CURRENT_DESKTOP");
    EXPECT_FALSE(MagnifierFilter(stateFile).isAvailable());
}

TEST_F(MagnifierFilterTest, MagnifierThatWasOffTurnsGrayWithoutMagnifying) {
    gnome.set(GnomeSettings::magnifier, "mag-factor", "3.5");
    gnome.set(GnomeSettings::magnifier, "lens-mode", "true");
    gnome.set(GnomeSettings::magnifier, "screen-position", "'left-half'");
    gnome.set(GnomeSettings::magnifier, "invert-lightness", "true");
    gnome.set(GnomeSettings::magnifier, "color-saturation", "0.5");
    gnome.set(GnomeSettings::applications, "screen-magnifier-enabled", "false");
    const auto before = gnome.everything();

    filter.emplace(stateFile);
    EXPECT_TRUE(filter->isAvailable());
    EXPECT_FALSE(filter->isOn());
    EXPECT_EQ(gnome.everything(), before);
    turnGray();
    EXPECT_EQ(gnome.get(GnomeSettings::magnifier, "mag-factor"), "1.0\n");
    EXPECT_EQ(gnome.get(GnomeSettings::magnifier, "lens-mode"), "false\n");
    EXPECT_EQ(gnome.get(GnomeSettings::magnifier, "screen-position"), "'full-screen'\n");
    EXPECT_EQ(gnome.get(GnomeSettings::magnifier, "invert-lightness"), "false\n");
    turnColored();
    EXPECT_EQ(gnome.everything(), before);
    turnGray();
    filter.reset();
    EXPECT_EQ(gnome.everything(), before);
}

TEST_F(MagnifierFilterTest, UnsetValuesAreResetToDefaults) {
    filter.emplace(stateFile);
    turnGray();
    turnColored();
    const auto keyFile =
        contentOf(gnome.environment().at("XDG_CONFIG_HOME") + "/glib-2.0/settings/keyfile");
    EXPECT_EQ(keyFile.find('='), std::string::npos) << keyFile;
}

TEST_F(MagnifierFilterTest, MagnifierThatWasOnKeepsItsOtherSettings) {
    gnome.set(GnomeSettings::applications, "screen-magnifier-enabled", "true");
    gnome.set(GnomeSettings::magnifier, "mag-factor", "4.0");
    const auto before = gnome.everything();
    filter.emplace(stateFile);
    turnGray();
    EXPECT_EQ(gnome.get(GnomeSettings::magnifier, "mag-factor"), "4.0\n");
    turnColored();
    EXPECT_EQ(gnome.everything(), before);
}

TEST_F(MagnifierFilterTest, GraySetByTheUserIsDetected) {
    gnome.set(GnomeSettings::applications, "screen-magnifier-enabled", "true");
    gnome.set(GnomeSettings::magnifier, "color-saturation", "0.0");
    filter.emplace(stateFile);
    EXPECT_TRUE(filter->isOn());
}

TEST_F(MagnifierFilterTest, LastOfSeveralQuickChangesWins) {
    const auto before = gnome.everything();
    filter.emplace(stateFile);
    for (int i = 0; i < 5; ++i) {
        filter->setOn(true);
        filter->setOn(false);
    }
    filter->setOn(true);
    ASSERT_TRUE(serveUntil([&] { return gnome.isGray(); }));
    filter->setOn(false);
    filter.reset();
    EXPECT_EQ(gnome.everything(), before);
}

TEST_F(MagnifierFilterTest, DelayedHelperDoesNotBlockAndTurnsTheScreenGrayLater) {
    const auto before = gnome.everything();
    filter.emplace(stateFile);
    const auto folder = open(stateFile.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(flock(folder, LOCK_EX), 0); // helpers do nothing until they get this lock
    filter->setOn(true);
    filter->setOn(false);
    filter->setOn(true);
    EXPECT_EQ(gnome.everything(), before);
    close(folder);
    EXPECT_TRUE(serveUntil([&] { return gnome.isGray(); }));
    filter.reset();
    EXPECT_TRUE(waitUntil([&] { return gnome.everything() == before; }));
}

TEST_F(MagnifierFilterTest, StoppedHelperDoesNotBlockDestruction) {
    const auto before = gnome.everything();
    filter.emplace(stateFile);
    filter->setOn(true);
    // `waitUntil` does not run the event loop, so the filter does not read the helper's answer.
    ASSERT_TRUE(waitUntil([&] { return gnome.isGray(); }));
    const auto helpers = Helpers::childrenOf(getpid(), "nocta-magnifier");
    ASSERT_EQ(helpers.size(), 1U);
    kill(helpers[0], SIGSTOP);
    filter.reset();
    EXPECT_TRUE(gnome.isGray());
    kill(helpers[0], SIGCONT);
    EXPECT_TRUE(waitUntil([&] { return gnome.everything() == before; }));
}

TEST_F(MagnifierFilterTest, InvalidStateFileIsDiscarded) {
    const auto before = gnome.everything();
    std::filesystem::create_directories(stateFile.parent_path());
    writeFile(stateFile, "[org.gnome.desktop.a11y.magnifier]\nmag-factor='x'\nno-such-key=1\n"
                         "color-saturation=\n[org.gnome.nothing]\nkey=1\n");
    filter.emplace(stateFile);
    EXPECT_TRUE(filter->isAvailable());
    EXPECT_EQ(gnome.everything(), before);
    EXPECT_FALSE(std::filesystem::exists(stateFile));
}

} // namespace
} // namespace nocta
