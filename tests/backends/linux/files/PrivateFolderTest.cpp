#include "backends/linux/files/PrivateFolder.h"

#include "support/Process.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace nocta {
namespace {

namespace fs = std::filesystem;

TEST(PrivateFolder, NewFoldersArePrivateWithAnyUmask) {
    for (const mode_t mask : {0000U, 0022U, 0777U}) {
        const TemporaryFolder root;
        const auto before = umask(mask);
        const auto error = createPrivateFolders(root.path() + "/a/b/c");
        umask(before);
        EXPECT_FALSE(error) << error.message();
        for (const auto* const name : {"/a", "/a/b", "/a/b/c"}) {
            EXPECT_EQ(fs::status(root.path() + name).permissions(), fs::perms::owner_all) << name;
        }
    }
}

TEST(PrivateFolder, ExistingFolderKeepsItsMode) {
    const TemporaryFolder root;
    fs::permissions(root.path(), fs::perms(0755));
    EXPECT_FALSE(createPrivateFolders(root.path()));
    EXPECT_EQ(fs::status(root.path()).permissions(), fs::perms(0755));
}

TEST(PrivateFolder, FolderThatCannotBeCreatedIsAnError) {
    const TemporaryFolder root;
    writeFile(root.path() + "/file", "");
    EXPECT_EQ(createPrivateFolders(root.path() + "/file").value(), ENOTDIR);
    EXPECT_EQ(createPrivateFolders(root.path() + "/file/a").value(), ENOTDIR);
    fs::create_symlink("missing", root.path() + "/link");
    EXPECT_TRUE(createPrivateFolders(root.path() + "/link"));
    EXPECT_EQ(createPrivateFolders("/proc/nocta/a").value(), ENOENT);
    EXPECT_TRUE(createPrivateFolders(""));
}

TEST(PrivateFolder, FolderThatOthersOwnOrCanChangeIsNotPrivate) {
    const TemporaryFolder root;
    for (const auto mode : {0700, 0755, 0500}) {
        fs::permissions(root.path(), fs::perms(mode));
        EXPECT_TRUE(isPrivateFolder(root.path())) << mode;
    }
    for (const auto mode : {0720, 0702, 0777, 01777}) {
        fs::permissions(root.path(), fs::perms(mode));
        EXPECT_FALSE(isPrivateFolder(root.path())) << mode;
    }
    fs::permissions(root.path(), fs::perms::owner_all);
    writeFile(root.path() + "/file", "");
    EXPECT_FALSE(isPrivateFolder(root.path() + "/file"));
    EXPECT_FALSE(isPrivateFolder(root.path() + "/missing"));
    EXPECT_EQ(isPrivateFolder("/"), geteuid() == 0)
        << "a folder of root should be private only for root";
}

} // namespace
} // namespace nocta
