// Tests every step, from offering a release to starting the installer.

#include "support/UpdaterOnVirtualDesktop.h"

#include <chrono>
#include <string>
#include <vector>

namespace nocta {
namespace {

using namespace std::chrono_literals;

class UpdateDownloadTest : public UpdaterOnVirtualDesktop {
protected:
    const std::vector<std::string> openedOnce = {"open " + package.path};

    void offer() {
        updater->checkForUpdates();
        answerFeed({release});
    }
    void install() {
        offer();
        updater->install();
    }
};

TEST_F(UpdateDownloadTest, VerifiedPackageIsPassedToTheInstaller) {
    start();
    install();
    ASSERT_NE(shown<UpdateDownload>(), nullptr);
    EXPECT_EQ(shown<UpdateDownload>()->version, "1.3");
    EXPECT_EQ(source.loading(), release.url);
    EXPECT_EQ(updater->downloadProgress.get(), 0);
    source.progress(0.25);
    EXPECT_EQ(updater->downloadProgress.get(), 0.25);
    EXPECT_TRUE(opened().empty());
    answerDownload();
    EXPECT_EQ(opened(), openedOnce);
    ASSERT_NE(shown<UpdateHandedOver>(), nullptr);
    EXPECT_EQ(shown<UpdateHandedOver>()->version, "1.3");
    source.finishOpening(std::nullopt);
    EXPECT_NE(shown<UpdateHandedOver>(), nullptr);
    EXPECT_EQ(cycles, Errors{std::nullopt});
    updater->dismiss();
    EXPECT_TRUE(showsNothing());
}

TEST_F(UpdateDownloadTest, SignedPackageMustBeTheOfferedReleaseOfNocta) {
    start();
    const auto refused = [this](const Package& downloaded) {
        install();
        source.finishDownload({.package = downloaded});
        EXPECT_TRUE(opened().empty());
        EXPECT_TRUE(source.files.empty()) << "the package should be deleted";
        const auto error = shownError();
        EXPECT_EQ(cycles.back(), error);
        updater->dismiss();
        return error;
    };
    auto other = package;
    other.name = "bash";
    EXPECT_EQ(refused(other), "The package does not contain Nocta");
    other = package;
    other.architecture = "arm64";
    EXPECT_EQ(refused(other), "The package is for another kind of computer");
    for (const auto* const version : {"1.2.9-1", "1.4-1", "1.3.0-1", "13", ""}) {
        other = package;
        other.version = version;
        EXPECT_EQ(refused(other), "The package contains another version than the feed says")
            << version;
    }
}

TEST_F(UpdateDownloadTest, OldReleaseIsRefusedEvenIfTheFeedCallsItNew) {
    start();
    for (const auto* const version : {"1.2.3", "1.2.2", "0.9", "1.2.3~rc1"}) {
        auto item = release;
        item.version = "1000";
        item.shortVersionString = version;
        auto old = package;
        old.version = std::string("1:") + version + "-9";
        updater->checkForUpdates();
        answerFeed({item});
        ASSERT_NE(shown<UpdateFound>(), nullptr);
        updater->install();
        source.finishDownload({.package = old});
        EXPECT_EQ(shownError(), "The package is not newer than this version") << version;
        EXPECT_EQ(shown<UpdaterError>()->version, version);
        EXPECT_TRUE(opened().empty());
        updater->dismiss();
    }
}

TEST_F(UpdateDownloadTest, DownloadCanBeCanceled) {
    start();
    install();
    updater->dismiss();
    EXPECT_EQ(source.loading(), "");
    EXPECT_TRUE(showsNothing());
    EXPECT_TRUE(opened().empty());
}

TEST_F(UpdateDownloadTest, FailedDownloadIsAnError) {
    start();
    install();
    source.finishDownload({.error = "The connection was lost"});
    EXPECT_EQ(shownError(), "The connection was lost");
    EXPECT_EQ(shown<UpdaterError>()->version, "1.3");
    EXPECT_EQ(cycles, Errors{"The connection was lost"});
    EXPECT_TRUE(opened().empty());
    updater->dismiss();
    install();
    EXPECT_EQ(source.loading(), release.url) << "the user should be able to try again";
}

TEST_F(UpdateDownloadTest, FailureToStartTheInstallerIsAnError) {
    start();
    install();
    answerDownload();
    source.finishOpening("The package could not be opened");
    EXPECT_EQ(shownError(), "The package could not be opened");
    EXPECT_EQ(shown<UpdaterError>()->version, "1.3");
    updater->dismiss();
    EXPECT_TRUE(showsNothing());
    updater->checkForUpdates();
    source.finishOpening("The package could not be opened");
    EXPECT_NE(shown<UpdateCheckInProgress>(), nullptr)
        << "a late answer from the installer should not interrupt a check";
}

TEST_F(UpdateDownloadTest, ReleasePassedToTheInstallerIsNotOfferedAgainAutomatically) {
    startChecking();
    answerFeed({release});
    updater->install();
    answerDownload();
    source.finishOpening(std::nullopt);
    updater->dismiss();
    desktop.runLoop.advance(24h);
    answerFeed({release});
    EXPECT_TRUE(showsNothing())
        << "the release should not be offered automatically before the next launch";
    offer();
    EXPECT_NE(shown<UpdateFound>(), nullptr);
}

TEST_F(UpdateDownloadTest, ReleaseThatNoInstallerOpenedIsOfferedAgain) {
    startChecking();
    answerFeed({release});
    updater->install();
    answerDownload();
    source.finishOpening("The package could not be opened");
    updater->dismiss();
    desktop.runLoop.advance(24h);
    answerFeed({release});
    EXPECT_NE(shown<UpdateFound>(), nullptr);
}

TEST_F(UpdateDownloadTest, OldPackagesAreRemovedOnLaunch) {
    start();
    EXPECT_EQ(desktop.trace.calls("removePackages"), std::vector<std::string>{"removePackages 24"})
        << "an installer may still read a younger file";
}

TEST_F(UpdateDownloadTest, TurningAutomaticChecksOffStopsOnlyAutomaticDownloads) {
    startChecking(true);
    answerFeed({release});
    EXPECT_EQ(source.loading(), release.url);
    updater->setAutomaticallyChecksForUpdates(false);
    EXPECT_EQ(source.loading(), "");
    updater->checkForUpdates();
    updater->setAutomaticallyChecksForUpdates(false);
    EXPECT_EQ(source.loading(), bundle.feedUrl)
        << "a check that the user requested should continue";
}

TEST_F(UpdateDownloadTest, AutomaticDownloadIsOfferedAfterItIsVerified) {
    startChecking(true);
    answerFeed({release});
    EXPECT_TRUE(showsNothing());
    answerDownload();
    ASSERT_NE(shown<UpdateFound>(), nullptr);
    EXPECT_TRUE(opened().empty());
    updater->dismiss();
    desktop.runLoop.advance(24h);
    answerFeed({release});
    EXPECT_EQ(source.loading(), "") << "the file should not be downloaded twice";
    updater->install();
    EXPECT_EQ(opened(), openedOnce);
}

TEST_F(UpdateDownloadTest, DeletedPackageIsDownloadedAgain) {
    startChecking(true);
    answerFeed({release});
    answerDownload();
    updater->dismiss();
    source.files.clear();
    install();
    EXPECT_TRUE(opened().empty());
    answerDownload();
    EXPECT_EQ(opened(), openedOnce);
}

TEST_F(UpdateDownloadTest, FailedAutomaticDownloadIsOnlyReported) {
    startChecking(true);
    answerFeed({release});
    source.finishDownload({.error = "The file is not signed by the publisher"});
    EXPECT_TRUE(showsNothing());
    EXPECT_EQ(cycles, Errors{"The file is not signed by the publisher"});
}

TEST_F(UpdateDownloadTest, UserCanSeeARunningDownload) {
    startChecking(true);
    answerFeed({release});
    updater->checkForUpdates();
    EXPECT_NE(shown<UpdateDownload>(), nullptr);
    answerDownload();
    EXPECT_NE(shown<UpdateFound>(), nullptr);
    EXPECT_TRUE(opened().empty()) << "the package should not open before the user installs it";
}

} // namespace
} // namespace nocta
