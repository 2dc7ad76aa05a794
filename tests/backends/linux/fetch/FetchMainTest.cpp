// Tests that the installed nocta-fetch has confined itself by the time of its first answer.

#include "backends/linux/files/FileDescriptor.h"
#include "backends/linux/process/HelperProtocol.h"
#include "support/HttpsServer.h"
#include "support/Process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>
#include <vector>

namespace nocta {
namespace {

/// Runs nocta-fetch with a request, and with an output that takes nothing: the helper stops at its
/// first answer.
class FetchMainTest : public ::testing::Test {
protected:
    TemporaryFolder folder;
    ServerCertificate certificate;
    FileDescriptor reader;
    FileDescriptor writer;

    void SetUp() override {
        int ends[2] = {-1, -1};
        ASSERT_EQ(pipe2(ends, O_CLOEXEC | O_NONBLOCK), 0);
        reader = FileDescriptor(ends[0]);
        writer = FileDescriptor(ends[1]);
        while (write(writer.get(), "x", 1) == 1) {
        }
        ASSERT_EQ(fcntl(writer.get(), F_SETFL, 0), 0); // blocks from now on
        ASSERT_EQ(chmod(folder.path().c_str(), 0700), 0);
        writeFile(folder.path() + "/a.deb", "hello");
    }

    std::string command(const std::string& job) const {
        const auto request = R"({"job":")" + job +
                             R"(","url":"https://localhost:1/","headers":[],"body":null,)"
                             R"("certificates":")" +
                             certificate.file() + R"(","folder":")" + folder.path() +
                             R"(","file":")" + (job == "verify" ? "a.deb" : "new") +
                             R"(","length":5,"signature":"","key":""})";
        writeFile(folder.path() + "/request", request);
        const auto descriptor = std::to_string(writer.get());
        return "exec 9< " + folder.path() + "/a.deb; exec " + programFolder() + "/nocta-fetch " +
               helperProtocol + " < " + folder.path() + "/request >&" + descriptor;
    }
    static std::string statusOf(pid_t process, const std::string& field) {
        std::ifstream status("/proc/" + std::to_string(process) + "/status");
        for (std::string line; std::getline(status, line);) {
            if (line.starts_with(field + ":\t")) {
                return line.substr(field.size() + 2);
            }
        }
        return "";
    }
    /// What each descriptor of the process refers to.
    static std::set<std::string> openFilesOf(pid_t process) {
        std::set<std::string> files;
        std::error_code error; // the process may have exited
        for (const auto& entry : std::filesystem::directory_iterator(
                 "/proc/" + std::to_string(process) + "/fd", error)) {
            files.insert(std::filesystem::read_symlink(entry, error).string());
        }
        return files;
    }
    /// Whether the process waits for its output.
    static bool isWriting(pid_t process) {
        const auto call = contentOf("/proc/" + std::to_string(process) + "/syscall");
        return call.starts_with(std::to_string(SYS_write) + " 0x1 ");
    }
};

TEST_F(FetchMainTest, EveryJobIsConfinedBeforeItAnswers) {
    for (const std::string job : {"send", "feed", "download", "verify"}) {
        Process helper({"sh", "-c", command(job)}, {}, {}, writer.get());
        ASSERT_TRUE(waitUntil([&] { return isWriting(helper.id()); })) << job;
        EXPECT_EQ(statusOf(helper.id(), "Seccomp"), "2") << job;
        EXPECT_EQ(statusOf(helper.id(), "NoNewPrivs"), "1") << job;
        const auto files = openFilesOf(helper.id());
        EXPECT_TRUE(files.contains("/dev/null")) << job;
        EXPECT_FALSE(files.contains(folder.path() + "/a.deb")) << job << ": inherited or mapped";
        EXPECT_FALSE(files.contains(folder.path())) << job;
        EXPECT_EQ(files.contains(folder.path() + "/new"), job == "download");
    }
}

TEST_F(FetchMainTest, HelperDiesWithItsParent) {
    const auto number = folder.path() + "/number";
    Process parent(
        {"sh", "-c", "sh -c 'echo $$ > " + number + "; " + command("verify") + "' & wait"}, {}, {},
        writer.get());
    pid_t helper = 0;
    ASSERT_TRUE(waitUntil([&] {
        std::ifstream(number) >> helper;
        return helper > 0 && isWriting(helper);
    }));
    parent.signal(SIGKILL);
    EXPECT_TRUE(waitUntil([&] { return !isWriting(helper); }));
}

} // namespace
} // namespace nocta
