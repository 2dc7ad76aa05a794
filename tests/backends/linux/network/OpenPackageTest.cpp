#include "backends/linux/network/OpenPackage.h"

#include "support/EventLoop.h"
#include "support/Process.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <sys/wait.h>

namespace nocta {
namespace {

bool hasNoChildren() {
    siginfo_t child{};
    return waitid(P_ALL, 0, &child, WEXITED | WNOHANG | WNOWAIT | __WALL) != 0 && errno == ECHILD;
}

/// Opens packages on a desktop whose `xdg-open` is a script.
class OpenPackageTest : public ::testing::Test {
protected:
    TemporaryFolder folder;
    std::string path = std::getenv("PATH");
    int answers = 0;
    std::optional<std::string> error;
    Subscription opening;

    void TearDown() override { setenv("PATH", path.c_str(), 1); }

    void open(const std::string& script) {
        if (!script.empty()) {
            writeFile(folder.path() + "/xdg-open", "#!/bin/sh\n" + script);
            std::filesystem::permissions(folder.path() + "/xdg-open",
                                         std::filesystem::perms::owner_all);
        }
        setenv("PATH", folder.path().c_str(), 1);
        opening = openPackage(folder.path() + "/a b;c.deb", [this](const auto& problem) {
            ++answers;
            error = problem;
        });
    }
    void openAndWait(const std::string& script) {
        open(script);
        EXPECT_TRUE(serveUntil([this] { return answers > 0; }));
        EXPECT_EQ(answers, 1);
    }
};

TEST_F(OpenPackageTest, FileIsPassedToTheDesktop) {
    openAndWait("echo \"$#$1\" > " + folder.path() + "/seen");
    EXPECT_FALSE(error);
    EXPECT_EQ(contentOf(folder.path() + "/seen"), "1" + folder.path() + "/a b;c.deb\n");
}

TEST_F(OpenPackageTest, MissingInstallerIsAnError) {
    openAndWait("exit 3");
    EXPECT_EQ(error, "The package could not be opened: " + folder.path() + "/a b;c.deb");
}

TEST_F(OpenPackageTest, MissingOrKilledOpenerIsAnError) {
    openAndWait("");
    EXPECT_TRUE(error);
    answers = 0;
    error.reset();
    openAndWait("kill -9 $$");
    EXPECT_TRUE(error);
}

TEST_F(OpenPackageTest, CanceledCallbackIsNotCalled) {
    open("exit 0");
    opening.cancel();
    openAndWait("exit 3");
    EXPECT_TRUE(serveUntil(hasNoChildren)) << "the first opener should end too";
    QCoreApplication::processEvents(); // its exit is known to Qt, but perhaps not handled yet
    EXPECT_EQ(answers, 1);
    EXPECT_TRUE(error);
}

} // namespace
} // namespace nocta
