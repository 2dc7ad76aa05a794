// Tests the files and the errors. FetchTest has the helper that misbehaves.

#include "backends/linux/network/FetchUpdateSource.h"

#include "backends/linux/network/Fetch.h"
#include "backends/linux/shell/QtRunLoop.h"
#include "support/EventLoop.h"
#include "support/Process.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

namespace nocta {
namespace {

using namespace std::chrono_literals;

class FetchUpdateSourceTest : public ::testing::Test {
protected:
    TemporaryFolder folder;
    QtRunLoop runLoop;
    Bundle bundle{.shortVersionString = "1.2.3",
                  .version = "45",
                  .apiBase = {},
                  .feedUrl = {},
                  .publicEdKey = {}};
    std::string cache = folder.path() + "/cache";
    FetchUpdateSource source{runLoop, bundle, cache};

    std::string makeFile(const std::string& name, std::chrono::hours age) {
        const auto path = cache + "/" + name;
        writeFile(path, "x");
        std::filesystem::last_write_time(path, std::filesystem::file_time_type::clock::now() - age);
        return path;
    }
};

TEST_F(FetchUpdateSourceTest, OnlyOldFilesAreRemoved) {
    std::filesystem::create_directories(cache);
    const auto killed = makeFile("nocta-1.3-7.deb.part", 25h);
    const auto young = makeFile("nocta-1.3-8.deb", 23h);
    const auto link = cache + "/link"; // broken, so it has no modification time
    std::filesystem::create_symlink("missing", link);
    source.removePackages(24h);
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_FALSE(std::filesystem::exists(killed));
    EXPECT_TRUE(std::filesystem::exists(young));
}

TEST_F(FetchUpdateSourceTest, FolderBehindALinkIsLeftAlone) {
    std::filesystem::create_directories(cache);
    const auto old = makeFile("important", 1000h);
    std::filesystem::rename(cache, folder.path() + "/documents");
    std::filesystem::create_directory_symlink(folder.path() + "/documents", cache);
    source.removePackages(24h);
    EXPECT_TRUE(std::filesystem::exists(old));
}

TEST_F(FetchUpdateSourceTest, MissingFolderIsNoError) {
    source.removePackages(24h);
    EXPECT_FALSE(std::filesystem::exists(cache));
}

TEST_F(FetchUpdateSourceTest, PackageExistsUntilItIsRemoved) {
    std::filesystem::create_directories(cache);
    const Package package{.path = makeFile("nocta-1.3-8.deb", 0h)};
    EXPECT_TRUE(source.exists(package));
    source.remove(package);
    EXPECT_FALSE(source.exists(package));
    EXPECT_FALSE(source.exists({}));
}

TEST_F(FetchUpdateSourceTest, CanceledTaskReportsNothing) {
    int reports = 0;
    auto canceled = source.loadAppcast(
        "https://localhost:1/", [&](const AppcastItem&) { ++reports; },
        [&](const std::optional<std::string>&) { ++reports; });
    canceled.cancel();
    std::vector<std::string> errors;
    const auto other = source.loadAppcast(
        "https://localhost:1/", [](const AppcastItem&) {},
        [&](const std::optional<std::string>& error) { errors.push_back(error.value_or("")); });
    EXPECT_TRUE(errors.empty()) << "the completion should come from the run loop";
    EXPECT_TRUE(serveUntil([&] { return !errors.empty(); }));
    EXPECT_EQ(errors, std::vector<std::string>{"The server cannot be reached"});
    EXPECT_EQ(reports, 0);
}

} // namespace
} // namespace nocta
