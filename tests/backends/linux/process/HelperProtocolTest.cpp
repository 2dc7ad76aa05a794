#include "backends/linux/process/HelperProtocol.h"

#include "support/NoctaProcess.h"

#include <csignal>
#include <sys/wait.h>

namespace nocta {
namespace {

TEST(HelperProtocol, HelpersExitWithoutAnAnswerIfTheVersionDiffers) {
    for (const auto* const helper :
         {"nocta-fetch", "nocta-guardian", "nocta-magnifier", "nocta-ramps", "nocta-warmth"}) {
        const TemporaryFolder folder;
        const auto program = programFolder() + "/" + helper;
        const auto file = folder.path() + "/state/file";
        const auto output = folder.path() + "/output";
        for (const auto& arguments : std::vector<std::vector<std::string>>{
                 {program}, {program, file}, {program, file, std::string(helperProtocol) + "0"}}) {
            Process process(arguments, {}, output);
            const auto status = process.wait();
            ASSERT_TRUE(WIFEXITED(status)) << helper;
            EXPECT_EQ(WEXITSTATUS(status), otherProtocolStatus) << helper;
            EXPECT_EQ(contentOf(output), "") << helper;
            EXPECT_FALSE(std::filesystem::exists(folder.path() + "/state")) << helper;
        }
    }
}

/// Runs a copy of the program next to a guardian of another version, as after a package update.
class HelperOfAnotherVersionTest : public NoctaProcess {};
INSTANTIATE_TEST_SUITE_P(Servers, HelperOfAnotherVersionTest,
                         ::testing::Values(XServer::Kind::xvfb), serverName);

TEST_P(HelperOfAnotherVersionTest, ScreenIsDimmedAndOneLineWarnsAboutCrashes) {
    const auto program = home.path() + "/nocta";
    const auto guardian = home.path() + "/nocta-guardian";
    std::filesystem::copy_file(programFolder() + "/nocta", program);
    writeFile(guardian, "#!/bin/sh\nexit " + std::to_string(otherProtocolStatus) + "\n");
    std::filesystem::permissions(guardian, std::filesystem::perms::owner_all);
    nocta = std::make_unique<Process>(std::vector{program}, environment(), output);
    ASSERT_TRUE(waitForBrightness(0.75)) << contentOf(output);
    client.press(brightnessDownSymbol);
    ASSERT_TRUE(waitForBrightness(0.6875));
    const auto line =
        "nocta: cannot start " + guardian + "; a crash would leave the screen as it is\n";
    const auto said = contentOf(output);
    EXPECT_NE(said.find(line), std::string::npos) << said;
    EXPECT_EQ(said.find(line), said.rfind(line));
    nocta->signal(SIGTERM);
    EXPECT_EQ(nocta->wait(), 0);
    EXPECT_TRUE(isGivenBack());
}

} // namespace
} // namespace nocta
