#include "support/GnomeSettings.h"
#include "support/NoctaProcess.h"

#include <QLibraryInfo>

#include <csignal>
#include <filesystem>
#include <optional>

namespace nocta {
namespace {

/// The program with settings that turn the screen gray on launch, in a session that supports gray.
class NoctaGrayTest : public NoctaProcess {
protected:
    std::vector<std::uint32_t> colored = {0, 1, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 1};
    std::optional<GnomeSettings> gnome;

    void SetUp() override {
        NoctaProcess::SetUp();
        client.setOutputProperty("CTM", colored);
    }
    void startGray(bool gray = true, double brightness = 0.75) {
        auto variables = environment();
        variables["XDG_CURRENT_DESKTOP"] = "";
        std::filesystem::path file = settings;
        if (gnome) {
            for (const auto& [name, value] : gnome->environment()) {
                variables[name] = value;
            }
            file = variables["XDG_CONFIG_HOME"] + "/nocta/nocta.conf";
            std::filesystem::create_directories(file.parent_path());
        }
        writeFile(file, neutralSettings("unifiedBrightness=" + std::to_string(brightness) + "\n" +
                                        (gray ? "grayscaleEnabled=true\n" : "")));
        nocta =
            std::make_unique<Process>(std::vector{programFolder() + "/nocta"}, variables, output);
        ASSERT_TRUE(waitForBrightness(brightness)) << contentOf(output);
    }

    bool isColored() {
        const auto outputs = client.activeOutputs();
        return std::ranges::all_of(outputs, [&](xcb_randr_output_t id) {
            return client.outputProperty("CTM", id) == colored;
        });
    }
    bool isGray() {
        const auto outputs = client.activeOutputs();
        return std::ranges::all_of(outputs, [&](xcb_randr_output_t id) {
            const auto matrix = client.outputProperty("CTM", id);
            return matrix[0] == matrix[6] && matrix[6] == matrix[12] && matrix != colored;
        });
    }
};
INSTANTIATE_TEST_SUITE_P(Servers, NoctaGrayTest, everyServer, serverName);

TEST_P(NoctaGrayTest, EveryExitRestoresTheColors) {
    for (const auto ending : {SIGTERM, SIGHUP, SIGKILL, SIGSEGV}) {
        startGray();
        ASSERT_TRUE(waitUntil([&] { return isGray(); })) << ending;
        nocta->signal(ending);
        nocta->wait();
        EXPECT_TRUE(waitUntil([&] { return isColored() && isGivenBack(); })) << ending;
    }
}

TEST_P(NoctaGrayTest, NextLaunchRestoresTheColorsAfterProgramAndGuardianAreKilled) {
    startGray();
    ASSERT_TRUE(waitUntil([&] { return isGray(); }));
    const auto guardians = guardiansOf(nocta->id());
    ASSERT_EQ(guardians.size(), 1U);
    kill(guardians[0], SIGSTOP); // so that it cannot restore the colors
    nocta->signal(SIGKILL);
    nocta->wait();
    kill(guardians[0], SIGKILL);
    EXPECT_TRUE(isGray())
        << "the screen should stay gray, because nothing is left to restore the colors";

    startGray(false, 0.5); // the screen still shows 0.75, so wait for another brightness
    EXPECT_TRUE(waitUntil([&] { return isColored(); }));
    EXPECT_EQ(guardiansOf(nocta->id()).size(), 1U);
    client.press(brightnessDownSymbol);
    ASSERT_TRUE(waitForBrightness(0.4375));
    nocta->signal(SIGTERM);
    EXPECT_EQ(nocta->wait(), 0) << contentOf(output);
    EXPECT_TRUE(isColored());
    EXPECT_TRUE(isGivenBack());
}

class NoctaOnGnomeTest : public NoctaGrayTest {
protected:
    void SetUp() override {
        NoctaGrayTest::SetUp();
        gnome.emplace();
        before = gnome->everything();
    }
    std::string before;
};
INSTANTIATE_TEST_SUITE_P(Servers, NoctaOnGnomeTest, ::testing::Values(XServer::Kind::xvfb),
                         serverName);

TEST_P(NoctaOnGnomeTest, GtkIsNotLoaded) {
    const auto theme =
        QLibraryInfo::path(QLibraryInfo::PluginsPath).toStdString() + "/platformthemes/libqgtk3.so";
    ASSERT_TRUE(std::filesystem::exists(theme)) << "Qt would not load GTK anyway";
    startGray(false);
    const auto libraries = contentOf("/proc/" + std::to_string(nocta->id()) + "/maps");
    EXPECT_NE(libraries.find("libQt6Widgets"), std::string::npos);
    EXPECT_EQ(libraries.find("libgtk"), std::string::npos);
}

TEST_P(NoctaOnGnomeTest, EveryExitRestoresTheMagnifier) {
    for (const auto ending : {SIGTERM, SIGKILL, SIGSEGV}) {
        startGray();
        ASSERT_TRUE(waitUntil([&] { return gnome->isGray(); })) << ending;
        EXPECT_TRUE(isColored()) << "the matrices should not turn gray, because the magnifier does";
        nocta->signal(ending);
        nocta->wait();
        EXPECT_TRUE(waitUntil([&] { return gnome->everything() == before; })) << ending;
    }
}

TEST_P(NoctaOnGnomeTest, KilledHelperIsReplacedWithoutLosingItsState) {
    startGray();
    ASSERT_TRUE(waitUntil([&] { return gnome->isGray(); }));
    const auto first = childrenOf(nocta->id(), "nocta-magnifier");
    ASSERT_EQ(first.size(), 1U);
    kill(first[0], SIGKILL);
    ASSERT_TRUE(waitUntil([&] {
        const auto now = childrenOf(nocta->id(), "nocta-magnifier");
        return now.size() == 1 && now[0] != first[0] && gnome->isGray();
    }));
    nocta->signal(SIGTERM);
    EXPECT_EQ(nocta->wait(), 0) << contentOf(output);
    EXPECT_EQ(gnome->everything(), before);
}

TEST_P(NoctaOnGnomeTest, NextLaunchRestoresTheMagnifierAfterProgramAndHelperAreKilled) {
    startGray();
    ASSERT_TRUE(waitUntil([&] { return gnome->isGray(); }));
    const auto helpers = childrenOf(nocta->id(), "nocta-magnifier");
    ASSERT_EQ(helpers.size(), 1U);
    kill(helpers[0], SIGSTOP);
    nocta->signal(SIGKILL);
    nocta->wait();
    kill(helpers[0], SIGKILL);
    EXPECT_TRUE(gnome->isGray());
    startGray(false);
    EXPECT_EQ(gnome->everything(), before);
}

} // namespace
} // namespace nocta
