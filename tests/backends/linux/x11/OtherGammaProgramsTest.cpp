#include "backends/linux/x11/OtherGammaPrograms.h"

#include "support/NoctaProcess.h"

#include <csignal>

namespace nocta {
namespace {

class OtherGammaProgramsTest : public ::testing::Test {
protected:
    TemporaryFolder processes;

    void add(const std::string& number, const std::string& name, const std::string& environment) {
        const auto folder = processes.path() + "/" + number;
        std::filesystem::create_directory(folder);
        writeFile(folder + "/comm", name + "\n");
        if (!environment.empty()) {
            writeFile(folder + "/environ", environment + '\0');
        }
    }
    std::vector<std::string> found(const std::string& display) {
        return otherGammaPrograms(display, processes.path());
    }
};

TEST_F(OtherGammaProgramsTest, OnlyProgramsOnTheSameServerAreFound) {
    using namespace std::string_literals;
    add("1", "init", "DISPLAY=:7");
    add("20", "redshift", "HOME=/home/a\0DISPLAY=:7.0"s);
    add("21", "gammastep", "DISPLAY=unix:7"s);
    add("22", "redshift", "DISPLAY=:8");
    add("23", "redshift", "DISPLAY=elsewhere:7");
    add("24", "redshift", "MYDISPLAY=:7");
    add("25", "redshift", ""); // a process of another user, whose environment cannot be read
    add("26", "redshift-gtk", "DISPLAY=:7");
    add("self", "redshift", "DISPLAY=:7");
    auto names = found(":7");
    std::ranges::sort(names);
    EXPECT_EQ(names, (std::vector<std::string>{"gammastep", "redshift"}));
    EXPECT_EQ(found(":8"), std::vector<std::string>{"redshift"});
    EXPECT_TRUE(found(":9").empty());
    EXPECT_TRUE(found("").empty());
    EXPECT_TRUE(otherGammaPrograms(":7", processes.path() + "/none").empty());
}

/// Runs Nocta next to a program that has the name of a gamma program.
class NoctaBesideAnotherTest : public NoctaProcess {};
INSTANTIATE_TEST_SUITE_P(Servers, NoctaBesideAnotherTest, ::testing::Values(XServer::Kind::xvfb),
                         serverName);

TEST_P(NoctaBesideAnotherTest, OtherProgramIsReportedOnceOnLaunch) {
    const auto program = home.path() + "/redshift";
    std::filesystem::copy_file("/bin/sleep", program);
    const Process other({program, "1000"});
    startAndWaitFor(0.75);
    client.press(brightnessDownSymbol);
    ASSERT_TRUE(waitForBrightness(0.6875));
    const std::string line =
        "nocta: redshift also sets the gamma of this display; quit one of the two\n";
    const auto said = contentOf(output);
    EXPECT_NE(said.find(line), std::string::npos) << said;
    EXPECT_EQ(said.find(line), said.rfind(line));
    nocta->signal(SIGTERM);
    EXPECT_EQ(nocta->wait(), 0);
}

} // namespace
} // namespace nocta
