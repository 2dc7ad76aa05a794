#include "backends/linux/fetch/PackageFile.h"

#include "support/Process.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <tuple>

namespace nocta {
namespace {

class PackageFileTest : public ::testing::Test {
protected:
    TemporaryFolder temporary;
    std::string path = temporary.path() + "/updates";

    void SetUp() override { ASSERT_EQ(mkdir(path.c_str(), 0700), 0); }
};

TEST_F(PackageFileTest, CompleteFileIsSaved) {
    PackageFile file(path, "a.deb", 5);
    EXPECT_EQ(file.add("he"), std::nullopt);
    EXPECT_EQ(file.received(), 2);
    EXPECT_EQ(file.add("llo"), std::nullopt);
    EXPECT_EQ(file.finish(), std::nullopt);
    EXPECT_EQ(contentOf(path + "/a.deb"), "hello");
    EXPECT_EQ(std::filesystem::status(path + "/a.deb").permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(PackageFileTest, OtherLengthIsRefused) {
    PackageFile file(path, "a.deb", 5);
    EXPECT_EQ(file.add("hell"), std::nullopt);
    EXPECT_EQ(file.finish(), FetchFailure{FetchError::fileTooShort});
    EXPECT_EQ(file.add("o!"), FetchFailure{FetchError::fileTooLong});
    EXPECT_EQ(contentOf(path + "/a.deb"), "hell") << "nothing more should be written";
}

TEST_F(PackageFileTest, ExistingFilesAndLinksAreNotOverwritten) {
    writeFile(path + "/old", "old");
    std::filesystem::create_symlink(path + "/old", path + "/link");
    std::filesystem::create_symlink(path + "/missing", path + "/dangling");
    for (const auto* const name : {"old", "link", "dangling"}) {
        PackageFile file(path, name, 5);
        EXPECT_EQ(file.add("hello"), (FetchFailure{FetchError::fileNotSaved, EEXIST})) << name;
        EXPECT_EQ(file.finish(), (FetchFailure{FetchError::fileNotSaved, EEXIST})) << name;
    }
    EXPECT_EQ(contentOf(path + "/old"), "old");
    EXPECT_FALSE(std::filesystem::exists(path + "/missing"));
}

TEST_F(PackageFileTest, FolderMustBelongToThisUserAlone) {
    for (const auto mode : {0755, 0770, 0701, 0777, 0500, 01700}) {
        ASSERT_EQ(chmod(path.c_str(), static_cast<mode_t>(mode)), 0);
        errno = 0;
        EXPECT_FALSE(openOwnFolder(path)) << mode;
        EXPECT_EQ(errno, EACCES);
    }
    ASSERT_EQ(chmod(path.c_str(), 0700), 0);
    EXPECT_TRUE(openOwnFolder(path));
    std::filesystem::create_symlink(path, temporary.path() + "/link");
    writeFile(temporary.path() + "/file", "");
    for (const auto* const other : {"/link", "/file", "/missing"}) {
        EXPECT_FALSE(openOwnFolder(temporary.path() + other)) << other;
    }
    EXPECT_FALSE(openOwnFolder("/"));
    PackageFile file(temporary.path() + "/link", "a.deb", 5);
    EXPECT_EQ(file.add("hello"), (FetchFailure{FetchError::fileNotSaved, ENOTDIR}));
    writeFile(path + "/a.deb", "hello");
    EXPECT_TRUE(MappedFile(temporary.path() + "/link", "a.deb").bytes().empty());
}

TEST_F(PackageFileTest, RegularFileIsMapped) {
    writeFile(path + "/a.deb", "hello");
    const MappedFile file(path, "a.deb");
    EXPECT_EQ(std::string(file.bytes().begin(), file.bytes().end()), "hello");
}

TEST_F(PackageFileTest, OnlyRegularFilesAreMapped) {
    writeFile(path + "/empty", "");
    writeFile(path + "/a.deb", "hello");
    std::filesystem::create_symlink("a.deb", path + "/link");
    ASSERT_EQ(mkfifo((path + "/pipe").c_str(), 0600), 0);
    writeFile(path + "/large", "x");
    std::filesystem::resize_file(path + "/large", maxPackageSize + 1);
    for (const auto* const name : {"empty", "link", "pipe", "missing", ".", "large"}) {
        EXPECT_TRUE(MappedFile(path, name).bytes().empty()) << name;
    }
}

} // namespace
} // namespace nocta
