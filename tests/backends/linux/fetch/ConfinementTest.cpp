// Tries, in a confined process, what a flaw in nocta-fetch could be used for.

#include "support/Process.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <linux/landlock.h>
#include <map>
#include <sstream>
#include <string>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

namespace nocta {
namespace {

using Names = std::vector<std::string>;

/// 0 on a kernel without Landlock.
long landlockVersion() {
    const auto version =
        syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    return version < 0 ? 0 : version;
}

class ConfinementTest : public ::testing::Test {
protected:
    TemporaryFolder downloads;
    TemporaryFolder home;
    std::string file = home.path() + "/diary";

    void SetUp() override {
        writeFile(downloads.path() + "/old", "old");
        writeFile(file, "dear diary");
    }

    /// Returns the outcome of each attempt: "OK" or the name of an error.
    std::map<std::string, std::string> attempt(const std::string& job, const Names& names) {
        const auto output = home.path() + "/output";
        std::filesystem::remove(output);
        Names command = {programFolder() + "/nocta-confined", job, downloads.path(), file};
        command.insert(command.end(), names.begin(), names.end());
        Process process(command, {}, output);
        EXPECT_EQ(process.wait(), 0) << contentOf(output);
        std::map<std::string, std::string> outcomes;
        std::istringstream lines(contentOf(output));
        for (std::string name, outcome; lines >> name >> outcome;) {
            outcomes[name] = outcome;
        }
        return outcomes;
    }
    void expectOutcome(const std::string& job, const Names& names, const std::string& expected) {
        const auto outcomes = attempt(job, names);
        for (const auto& name : names) {
            EXPECT_EQ(outcomes.at(name), expected) << name << ", " << job;
        }
    }
};

const Names processes = {"exec",          "execveat",       "spawn",        "fork",     "clone3",
                         "ptrace",        "processMemory",  "kill",         "pidfd",    "mount",
                         "unshare",       "setns",          "chroot",       "keyring",  "ioUring",
                         "bpf",           "perf",           "sharedMemory", "terminal", "tgkill",
                         "signalByOwner", "limitsOfOthers", "newPrivileges"};
const Names fileChanges = {"chmod",         "chmodAt",     "chown",        "attributes",
                           "times",         "truncate",    "unlink",       "unlinkAt",
                           "rename",        "renameAt",    "linkAt",       "truncateByOpening",
                           "writeUserFile", "newUserFile", "newFile",      "writeHosts",
                           "newLink",       "newFolder",   "truncateOpen", "memoryFile"};
const Names otherSockets = {"unixSocket", "datagramPair",    "netlinkSocket", "packetSocket",
                            "vsock",      "multipathSocket", "lightSocket"};

TEST_F(ConfinementTest, AttemptsSucceedWithoutConfinement) {
    expectOutcome(
        "none",
        {"fork",         "spawn",         "kill",           "tgkill",         "pidfd",
         "sharedMemory", "signalByOwner", "limitsOfOthers", "newUserFile",    "chmod",
         "chown",        "truncate",      "unixSocket",     "datagramPair",   "netlinkSocket",
         "server",       "readUserFile",  "writeUserFile",  "listUserFolder", "processes",
         "passwords",    "newLink",       "newFolder",      "unlink",         "muchMemory"},
        "OK");
}

TEST_F(ConfinementTest, OtherProgramsAndPrivilegesAreOutOfReach) {
    for (const auto* const job : {"download", "verify"}) {
        expectOutcome(job, processes, "ENOSYS");
    }
}

TEST_F(ConfinementTest, FilesCannotBeChangedByPath) {
    for (const auto* const job : {"download", "verify"}) {
        expectOutcome(job, fileChanges, "ENOSYS");
    }
    EXPECT_EQ(contentOf(file), "dear diary");
}

TEST_F(ConfinementTest, OnlyInternetSocketsExist) {
    expectOutcome("download", otherSockets, "ENOSYS");
    expectOutcome("download", {"tcpSocket", "udpSocket"}, "OK");
    expectOutcome("download", {"server", "linger"}, "ENOSYS");
    expectOutcome("download", {"noDelay"}, "OK");
    expectOutcome("download", {"client"}, "ECONNREFUSED");
}

TEST_F(ConfinementTest, VerificationHasNoNetwork) {
    expectOutcome("verify", otherSockets, "ENOSYS");
    expectOutcome("verify", {"tcpSocket", "udpSocket", "server", "client"}, "ENOSYS");
}

TEST_F(ConfinementTest, FilesOfTheUserAreOutOfReach) {
    if (landlockVersion() == 0) {
        GTEST_SKIP() << "this kernel has no Landlock";
    }
    for (const auto* const job : {"download", "verify"}) {
        expectOutcome(job, {"readUserFile", "listUserFolder", "processes", "passwords"}, "EACCES");
        expectOutcome(job, {"readFolder"}, "EACCES");
    }
    expectOutcome("download", {"hosts", "certificates"}, "OK");
    expectOutcome("verify", {"hosts", "certificates"}, "EACCES");
}

TEST_F(ConfinementTest, OpenFileStaysWritable) {
    expectOutcome("download", {"writeOpen"}, "OK");
}

TEST_F(ConfinementTest, ThreadsAndLimitedMemoryRemain) {
    expectOutcome("download", {"thread", "littleMemory"}, "OK");
    expectOutcome("download", {"threadWithOwnFiles"}, "ENOSYS");
    expectOutcome("verify", {"thread"}, "ENOSYS");
    for (const auto* const job : {"download", "verify"}) {
        expectOutcome(job, {"muchMemory"}, "ENOMEM");
    }
}

TEST_F(ConfinementTest, ResourcesAreLimited) {
    auto limits = attempt("download", {});
    EXPECT_EQ(limits["fileSize"], "100000");
    EXPECT_EQ(limits["descriptors"], "64");
    EXPECT_EQ(limits["processorTime"], "60");
    EXPECT_EQ(limits["core"], "0");
}

} // namespace
} // namespace nocta
