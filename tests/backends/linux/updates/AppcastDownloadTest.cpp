// Tests every step, from offering a release to starting the installer.

#include "support/UpdaterOnVirtualDesktop.h"

#include <chrono>
#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

namespace nocta {
namespace {

using namespace std::chrono_literals;

using AppcastDownloadTest = UpdaterOnVirtualDesktop;

TEST_F(AppcastDownloadTest, VerifiedFileIsPassedToTheInstaller) {
    start();
    updater->checkForUpdates();
    answerFeed(release().item());
    updater->install();
    ASSERT_NE(shown<UpdateDownload>(), nullptr);
    EXPECT_EQ(shown<UpdateDownload>()->version, "1.3");
    EXPECT_EQ(asked(), "https://updates.example/nocta.deb");
    EXPECT_EQ(updater->downloadProgress.get(), 0);
    desktop.urlSession.send(file.substr(0, 4));
    EXPECT_DOUBLE_EQ(updater->downloadProgress.get(), 4.0 / static_cast<double>(file.size()));
    EXPECT_FALSE(std::filesystem::exists(package))
        << "the file should not have its final name before it is verified";
    answer(file.substr(4));
    EXPECT_EQ(opened, std::vector{package + ": " + file});
    ASSERT_NE(shown<UpdateHandedOver>(), nullptr);
    EXPECT_EQ(shown<UpdateHandedOver>()->version, "1.3");
    answerOfOpener(std::nullopt);
    EXPECT_NE(shown<UpdateHandedOver>(), nullptr);
    EXPECT_EQ(cycles, Errors{std::nullopt});
    updater->dismiss();
    EXPECT_TRUE(showsNothing());
    EXPECT_EQ(std::filesystem::status(package).permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    EXPECT_EQ(std::filesystem::status(folder.path() + "/cache").permissions(),
              std::filesystem::perms::owner_all);
}

TEST_F(AppcastDownloadTest, FileNotSignedByThePublisherIsNeverOpened) {
    start();
    const auto stranger = Publisher().sign(file);
    const auto load = [this](const Release& offered, const std::string& content) {
        opened.clear();
        updater->checkForUpdates();
        answerFeed(offered.item());
        if (shown<UpdateFound>() != nullptr) {
            updater->install();
            answer(content);
        }
        EXPECT_TRUE(opened.empty());
        EXPECT_FALSE(isKept());
        const auto error = shownError();
        updater->dismiss();
        return error;
    };
    auto offered = release();
    EXPECT_EQ(load(offered, "the old Nocta"), "The file is not signed by the publisher");
    EXPECT_EQ(load(offered, file.substr(1)), "The file is shorter than the feed says");
    EXPECT_EQ(load(offered, ""), "The file is shorter than the feed says");
    EXPECT_EQ(load(offered, file + "!"), "The file is longer than the feed says");
    offered.signature = stranger;
    EXPECT_EQ(load(offered, file), "The file is not signed by the publisher");
    for (const auto& none : {std::string(), std::string("c2ln"), stranger.substr(4)}) {
        offered.signature = none;
        EXPECT_EQ(load(offered, file), "The file is not signed") << none;
    }
    EXPECT_EQ(cycles.back(), "The file is not signed");
}

TEST_F(AppcastDownloadTest, InvalidFileIsNotDownloaded) {
    start();
    const auto refused = [this](const Release& offered) {
        updater->checkForUpdates();
        answerFeed(offered.item());
        EXPECT_EQ(asked(), "");
        const auto error = shownError();
        updater->dismiss();
        return error;
    };
    for (const auto* const url :
         {"http://updates.example/nocta.deb", "file:///tmp/nocta.deb",
          "ftp://updates.example/nocta.deb", "nocta.deb", "HTTPS:nocta.deb"}) {
        auto offered = release();
        offered.url = url;
        EXPECT_EQ(refused(offered), "The file's address does not use HTTPS") << url;
    }
    for (const auto* const url : {"https://updates.example/nocta.sh", "https://updates.example/",
                                  "https://updates.example/nocta.deb?x", "https://deb"}) {
        auto offered = release();
        offered.url = url;
        EXPECT_EQ(refused(offered), "The file is not a package") << url;
    }
    for (const auto* const length : {"", "0", "-1", "1073741825", "99999999999999999999"}) {
        auto offered = release();
        offered.length = length;
        EXPECT_EQ(refused(offered), "The feed gives no valid length for the file") << length;
    }
}

TEST_F(AppcastDownloadTest, DownloadCanBeCanceled) {
    start();
    updater->checkForUpdates();
    answerFeed(release().item());
    updater->install();
    desktop.urlSession.send("the");
    EXPECT_GT(updater->downloadProgress.get(), 0);
    updater->dismiss();
    EXPECT_EQ(asked(), "");
    EXPECT_FALSE(isKept());
    EXPECT_TRUE(showsNothing());
    EXPECT_TRUE(opened.empty());
}

TEST_F(AppcastDownloadTest, FailedDownloadLeavesNoFiles) {
    start();
    for (const auto& response :
         {UrlResponse{.error = "The connection was closed"}, UrlResponse{.statusCode = 404}}) {
        updater->checkForUpdates();
        answerFeed(release().item());
        updater->install();
        desktop.urlSession.send("the");
        desktop.urlSession.answer(response);
        EXPECT_EQ(shownError(), response.error.value_or("The server answered with an error: 404"));
        EXPECT_FALSE(isKept());
        updater->dismiss();
    }
}

TEST_F(AppcastDownloadTest, FolderThatCannotBeWrittenIsAnError) {
    writeFile(folder.path() + "/cache", "a file");
    start();
    updater->checkForUpdates();
    answerFeed(release().item());
    updater->install();
    answer(file);
    EXPECT_TRUE(shownError().starts_with("The file cannot be saved: ")) << shownError();
    EXPECT_TRUE(opened.empty());
}

TEST_F(AppcastDownloadTest, FailureToStartTheInstallerIsAnError) {
    start();
    updater->checkForUpdates();
    answerFeed(release().item());
    updater->install();
    answer(file);
    answerOfOpener("The package could not be opened");
    EXPECT_EQ(shownError(), "The package could not be opened");
    EXPECT_EQ(shown<UpdaterError>()->version, "1.3");
    EXPECT_TRUE(std::filesystem::exists(package));
    updater->dismiss();
    EXPECT_TRUE(showsNothing());
    updater->checkForUpdates();
    answerOfOpener("The package could not be opened");
    EXPECT_NE(shown<UpdateCheckInProgress>(), nullptr)
        << "a late answer from the installer should not interrupt a check";
}

TEST_F(AppcastDownloadTest, ReleasePassedToTheInstallerIsNotOfferedAgainAutomatically) {
    startChecking();
    answerFeed(release().item());
    updater->install();
    answer(file);
    updater->dismiss();
    desktop.runLoop.advance(24h);
    answerFeed(release().item());
    EXPECT_TRUE(showsNothing())
        << "the release should not be offered automatically before the next launch";
    updater->checkForUpdates();
    answerFeed(release().item());
    EXPECT_NE(shown<UpdateFound>(), nullptr);
}

TEST_F(AppcastDownloadTest, TwoInstancesUseSeparateFiles) {
    const auto length = static_cast<std::int64_t>(file.size());
    const auto signature = *ed25519Signature(publisher.sign(file));
    UpdateFile good(package, length, publisher.key(), signature);
    EXPECT_FALSE(good.add(file.substr(0, 3)));
    {
        UpdateFile bad(package, length, publisher.key(), signature);
        EXPECT_FALSE(bad.add(std::string(file.size(), 'x')));
        EXPECT_FALSE(good.add(file.substr(3)));
        EXPECT_FALSE(good.finish());
        EXPECT_TRUE(bad.finish());
    }
    EXPECT_EQ(contentOf(package), file);
}

TEST_F(AppcastDownloadTest, FilesOfOldUpdatesAreRemovedOnLaunch) {
    const auto make = [&](const std::string& name, std::chrono::hours age) {
        const auto path = folder.path() + "/cache/" + name;
        writeFile(path, "x");
        std::filesystem::last_write_time(path, std::filesystem::file_time_type::clock::now() - age);
        return path;
    };
    std::filesystem::create_directories(folder.path() + "/cache");
    const auto killed = make("nocta-update.deb.abcdef", 25h);
    const auto young = make("nocta-update.deb", 23h);
    const auto link = folder.path() + "/cache/link"; // broken, so it has no modification time
    std::filesystem::create_symlink("missing", link);
    start();
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_FALSE(std::filesystem::exists(killed));
    EXPECT_TRUE(std::filesystem::exists(young))
        << "a file that an installer may still be reading should be kept";
}

TEST_F(AppcastDownloadTest, TurningAutomaticChecksOffStopsOnlyAutomaticDownloads) {
    startWith(R"({"checksAutomatically":true,"downloadsAutomatically":true})");
    answerFeed(release().item());
    desktop.urlSession.send("the");
    updater->setAutomaticallyChecksForUpdates(false);
    EXPECT_EQ(asked(), "");
    EXPECT_FALSE(isKept());
    updater->checkForUpdates();
    updater->setAutomaticallyChecksForUpdates(false);
    EXPECT_EQ(asked(), bundle.feedUrl) << "a check that the user requested should continue";
}

TEST_F(AppcastDownloadTest, AutomaticDownloadIsOfferedAfterItIsVerified) {
    startWith(R"({"checksAutomatically":true,"downloadsAutomatically":true})");
    answerFeed(release().item());
    EXPECT_EQ(asked(), "https://updates.example/nocta.deb");
    EXPECT_TRUE(showsNothing());
    answer(file);
    ASSERT_NE(shown<UpdateFound>(), nullptr);
    EXPECT_TRUE(opened.empty());
    updater->dismiss();
    desktop.runLoop.advance(24h);
    answerFeed(release().item());
    EXPECT_EQ(asked(), "") << "the file should not be downloaded twice";
    updater->dismiss();
    std::filesystem::remove(package);
    updater->checkForUpdates();
    answerFeed(release().item());
    updater->install();
    answer(file);
    EXPECT_EQ(opened, std::vector{package + ": " + file})
        << "a deleted file should be downloaded again";
}

TEST_F(AppcastDownloadTest, FailedAutomaticDownloadIsOnlyReported) {
    startWith(R"({"checksAutomatically":true,"downloadsAutomatically":true})");
    answerFeed(release().item());
    answer("the old Nocta");
    EXPECT_TRUE(showsNothing());
    EXPECT_EQ(cycles, Errors{"The file is not signed by the publisher"});
    EXPECT_FALSE(isKept());
}

TEST_F(AppcastDownloadTest, UserCanSeeARunningDownload) {
    startWith(R"({"checksAutomatically":true,"downloadsAutomatically":true})");
    answerFeed(release().item());
    updater->checkForUpdates();
    EXPECT_NE(shown<UpdateDownload>(), nullptr);
    answer(file);
    EXPECT_NE(shown<UpdateFound>(), nullptr);
    EXPECT_TRUE(opened.empty()) << "the package should not open before the user installs it";
}

} // namespace
} // namespace nocta
