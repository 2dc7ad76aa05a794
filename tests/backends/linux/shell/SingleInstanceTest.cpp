#include "backends/linux/shell/SingleInstance.h"

#include "support/Process.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace nocta {
namespace {

namespace fs = std::filesystem;
using Role = SingleInstance::Role;
using namespace std::chrono_literals;

constexpr uid_t otherUser = 65534;

class SingleInstanceTest : public ::testing::Test {
protected:
    TemporaryFolder home;
    fs::path folder = home.path() + "/runtime";

    /// Runs `action` in another process and returns its exit status.
    static int statusOf(const std::function<int()>& action) {
        const auto child = fork();
        if (child == 0) {
            _exit(action());
        }
        int status = 0;
        waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    std::vector<fs::path> filesInFolder() const {
        return {fs::directory_iterator(folder), fs::directory_iterator()};
    }
    std::string saidBy(const std::function<void()>& action) const {
        ::testing::internal::CaptureStderr();
        action();
        return ::testing::internal::GetCapturedStderr();
    }
};

TEST_F(SingleInstanceTest, EachServerAndFolderHasAFirstInstance) {
    const SingleInstance one(":0", folder);
    const SingleInstance another(":1", folder);
    const SingleInstance remote("remote:0", folder);
    const SingleInstance elsewhere(":0", folder / "other");
    for (const auto* const instance : {&one, &another, &remote, &elsewhere}) {
        EXPECT_EQ(instance->role(), Role::first);
    }
}

TEST_F(SingleInstanceTest, NoOtherUserCanOpenItsFiles) {
    const auto before = umask(0);
    const SingleInstance instance(":0", folder);
    umask(before);
    EXPECT_EQ(fs::status(folder).permissions(), fs::perms::owner_all);
    const auto files = filesInFolder();
    EXPECT_EQ(files.size(), 2U);
    for (const auto& file : files) {
        EXPECT_EQ(fs::status(file).permissions(),
                  fs::perms::owner_read | fs::perms::owner_write | fs::perms::sticky_bit)
            << file;
    }
}

TEST_F(SingleInstanceTest, AbstractSocketOfAnotherUserIsIgnored) {
    // Any user of the machine can bind this name.
    const auto server = "a server of this test " + std::to_string(getpid());
    const auto name = "nocta-" + std::to_string(geteuid()) + "-" + server;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    name.copy(address.sun_path + 1, name.size());
    const FileDescriptor taken(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    ASSERT_EQ(bind(taken.get(), reinterpret_cast<const sockaddr*>(&address),
                   static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size())),
              0);
    std::optional<SingleInstance> first(std::in_place, server, folder);
    EXPECT_EQ(first->role(), Role::first);
    ASSERT_EQ(::listen(taken.get(), 16), 0);
    const SingleInstance second(server, folder, 50ms);
    EXPECT_NE(second.role(), Role::first);
}

TEST_F(SingleInstanceTest, FilesOfAKilledProcessAreTakenOver) {
    const auto child = fork();
    if (child == 0) {
        const SingleInstance killed(":0", folder);
        raise(SIGKILL);
    }
    waitpid(child, nullptr, 0);
    EXPECT_EQ(filesInFolder().size(), 2U) << "the killed process should leave a lock and a socket";
    std::optional<SingleInstance> next;
    EXPECT_EQ(saidBy([&] { next.emplace(":0", folder); }), "")
        << "the next instance should listen without errors";
    EXPECT_EQ(next->role(), Role::first);
}

TEST_F(SingleInstanceTest, FirstInstanceRemovesItsSocketOnExit) {
    SingleInstance first(":0", folder);
    EXPECT_EQ(filesInFolder().size(), 2U);
    first.close();
    ASSERT_EQ(filesInFolder().size(), 1U);
    EXPECT_EQ(filesInFolder().front().extension(), ".lock");
    const SingleInstance next(":0", folder);
    EXPECT_EQ(next.role(), Role::first);
}

TEST_F(SingleInstanceTest, LaterInstanceRemovesNothingOnExit) {
    const SingleInstance first(":0", folder);
    const auto status = statusOf([&] {
        SingleInstance later(":0", folder, 50ms);
        later.close();
        return later.role() == Role::unanswered ? 0 : 1;
    });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(filesInFolder().size(), 2U);
}

TEST_F(SingleInstanceTest, LongPathsAreSupported) {
    const auto deep = folder / std::string(200, 'a') / std::string(200, 'b');
    const std::string server = "/" + std::string(200, 'c') + "/wayland-0";
    const SingleInstance first(server, deep);
    EXPECT_EQ(first.role(), Role::first);
    EXPECT_EQ(SingleInstance(server, deep, 50ms).role(), Role::unanswered);
}

TEST_F(SingleInstanceTest, UnexpectedFileInPlaceOfTheSocketDoesNotPreventAStart) {
    { SingleInstance(":0", folder).close(); }
    const auto lock = filesInFolder().front();
    const auto socket = fs::path(lock).replace_extension(".socket");
    const auto other = home.path() + "/other";
    writeFile(other, "other");
    fs::create_symlink(other, socket);
    EXPECT_EQ(SingleInstance(":0", folder).role(), Role::first);
    EXPECT_EQ(contentOf(other), "other");
    EXPECT_TRUE(fs::is_socket(fs::symlink_status(socket))) << "a socket should replace the link";

    fs::remove(socket);
    fs::create_directory(socket);
    std::optional<SingleInstance> instance;
    const auto said = saidBy([&] { instance.emplace(":0", folder); });
    EXPECT_EQ(instance->role(), Role::first);
    EXPECT_NE(said.find("nocta: cannot listen for later starts"), std::string::npos) << said;
}

TEST_F(SingleInstanceTest, LinkInPlaceOfTheLockIsNotFollowed) {
    { SingleInstance(":0", folder).close(); }
    const auto lock = filesInFolder().front();
    fs::remove(lock);
    fs::create_symlink(home.path() + "/missing", lock);
    std::optional<SingleInstance> instance;
    const auto said = saidBy([&] { instance.emplace(":0", folder); });
    EXPECT_EQ(instance->role(), Role::first);
    EXPECT_NE(said.find("a second Nocta will not find this one"), std::string::npos) << said;
    EXPECT_FALSE(fs::exists(home.path() + "/missing"));
}

TEST_F(SingleInstanceTest, FolderThatOthersCanChangeIsNotUsed) {
    fs::create_directory(folder);
    for (const auto mode : {0777, 0720, 0702}) {
        fs::permissions(folder, fs::perms(mode));
        std::optional<SingleInstance> instance;
        const auto said = saidBy([&] { instance.emplace(":0", folder); });
        EXPECT_EQ(instance->role(), Role::first);
        EXPECT_NE(said.find("cannot use " + folder.string()), std::string::npos) << said;
        EXPECT_TRUE(filesInFolder().empty());
    }
}

TEST_F(SingleInstanceTest, FolderOfAnotherUserIsNotUsed) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can change the owner of a folder";
    }
    fs::create_directory(folder);
    fs::permissions(folder, fs::perms::owner_all);
    ASSERT_EQ(chown(folder.c_str(), otherUser, otherUser), 0);
    const auto said = saidBy([&] { const SingleInstance instance(":0", folder); });
    EXPECT_NE(said.find("cannot use " + folder.string()), std::string::npos) << said;
    EXPECT_TRUE(filesInFolder().empty());
}

} // namespace
} // namespace nocta
