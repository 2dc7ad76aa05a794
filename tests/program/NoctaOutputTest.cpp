#include "support/NoctaProcess.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/socket.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <utility>
#include <vector>

// Tests that printing never blocks or ends the program.

namespace nocta {
namespace {

void fill(int descriptor) {
    const auto flags = fcntl(descriptor, F_GETFL);
    fcntl(descriptor, F_SETFL, flags | O_NONBLOCK);
    const std::string block(4096, 'x');
    while (write(descriptor, block.data(), block.size()) > 0 ||
           write(descriptor, block.data(), 1) > 0) {
    }
    fcntl(descriptor, F_SETFL, flags);
}

class NoctaOutputTest : public NoctaProcess {
protected:
    int reader = -1;
    int writer = -1;

    ~NoctaOutputTest() override {
        nocta.reset();
        close(reader);
        close(writer);
    }

    void makePipe() {
        int ends[2] = {-1, -1};
        ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
        reader = ends[0];
        writer = ends[1];
    }

    /// Expects the program to run normally. The program prints at least a line about the missing
    /// session bus.
    void expectToRun() {
        const auto descriptor = std::to_string(writer);
        nocta = std::make_unique<Process>(std::vector<std::string>{"bash", "-c",
                                                                   "exec '" + programFolder() +
                                                                       "/nocta' >&" + descriptor +
                                                                       " 2>&" + descriptor},
                                          environment(), std::string(), writer);
        EXPECT_TRUE(waitForBrightness(0.75));
        client.press(brightnessDownSymbol);
        EXPECT_TRUE(waitForBrightness(0.6875));
        EXPECT_EQ(fcntl(writer, F_GETFL) & O_NONBLOCK, 0)
            << "the descriptor should stay blocking, because other programs share it";
        nocta->signal(SIGTERM);
        const auto status = nocta->wait();
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
        EXPECT_TRUE(isGivenBack());
    }
};
INSTANTIATE_TEST_SUITE_P(Servers, NoctaOutputTest, ::testing::Values(XServer::Kind::xvfb),
                         serverName);

TEST_P(NoctaOutputTest, ClosedReaderDoesNotEndTheProgram) {
    makePipe();
    close(std::exchange(reader, -1));
    expectToRun();
}

TEST_P(NoctaOutputTest, FullPipeDoesNotBlockTheProgram) {
    makePipe();
    fill(writer);
    expectToRun();
}

TEST_P(NoctaOutputTest, FullSocketDoesNotBlockTheProgram) {
    int ends[2] = {-1, -1};
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
    reader = ends[0];
    writer = ends[1];
    fill(writer);
    expectToRun();
}

TEST_P(NoctaOutputTest, StoppedTerminalDoesNotBlockTheProgram) {
    reader = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_EQ(grantpt(reader), 0);
    ASSERT_EQ(unlockpt(reader), 0);
    writer = open(ptsname(reader), O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_GE(writer, 0);
    ASSERT_EQ(tcflow(writer, TCOOFF), 0);
    expectToRun();
}

TEST_P(NoctaOutputTest, OutputReachesAReader) {
    makePipe();
    expectToRun();
    std::string text(4096, '\0');
    text.resize(
        static_cast<std::size_t>(std::max(read(reader, text.data(), text.size()), ssize_t{0})));
    EXPECT_NE(text.find("there is no session bus to reach a notification service\n"),
              std::string::npos)
        << text;
}

} // namespace
} // namespace nocta
