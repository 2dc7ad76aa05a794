#include "support/UpdaterOnVirtualDesktop.h"

#include <chrono>
#include <string>
#include <tuple>
#include <vector>

namespace nocta {
namespace {

using namespace std::chrono_literals;

using UpdateServiceTest = UpdaterOnVirtualDesktop;

TEST_F(UpdateServiceTest, NoServerIsContactedBeforeTheUserAllowsIt) {
    start();
    EXPECT_FALSE(startError);
    EXPECT_TRUE(updater->canCheckForUpdates.get());
    desktop.runLoop.advance(72h);
    EXPECT_TRUE(showsNothing()) << "the first launch should not ask for permission";
    start();
    EXPECT_NE(shown<UpdatePermissionRequest>(), nullptr);
    desktop.runLoop.advance(72h);
    EXPECT_EQ(source.loading(), "");
}

TEST_F(UpdateServiceTest, PermissionIsRequestedOnce) {
    record.setHasLaunchedBefore();
    start();
    ASSERT_NE(shown<UpdatePermissionRequest>(), nullptr);
    updater->dismiss();
    EXPECT_TRUE(showsNothing());
    EXPECT_FALSE(updater->automaticallyChecksForUpdates());
    start();
    EXPECT_TRUE(showsNothing());
    desktop.runLoop.advance(72h);
    EXPECT_EQ(source.loading(), "");
}

TEST_F(UpdateServiceTest, ChecksImmediatelyAndThenDailyAfterPermission) {
    record.setHasLaunchedBefore();
    start();
    updater->setAutomaticallyChecksForUpdates(true);
    EXPECT_TRUE(showsNothing());
    answerFeed({});
    EXPECT_EQ(cycles, Errors{std::nullopt});
    desktop.runLoop.advance(23h + 59min);
    EXPECT_EQ(source.loading(), "");
    desktop.runLoop.advance(2min);
    answerFeed({});
    desktop.runLoop.suspend(25h);
    desktop.runLoop.advance(1h);
    answerFeed({});

    start();
    EXPECT_EQ(source.loading(), "") << "the time of the last check should survive a restart";
    updater->setAutomaticallyChecksForUpdates(false);
    desktop.runLoop.advance(72h);
    EXPECT_EQ(source.loading(), "");
    EXPECT_TRUE(showsNothing());
}

TEST_F(UpdateServiceTest, SettingTheClockBackDoesNotDelayChecks) {
    startChecking();
    answerFeed({});
    desktop.runLoop.setWallClock(desktop.runLoop.wallNow() - 1000h);
    desktop.runLoop.advance(1h);
    EXPECT_EQ(source.loading(), bundle.feedUrl);
}

TEST_F(UpdateServiceTest, FailedAutomaticCheckIsReportedAndRetried) {
    startChecking();
    source.finishFeed("Host not found");
    EXPECT_TRUE(showsNothing());
    EXPECT_EQ(cycles, Errors{"Host not found"});
    desktop.runLoop.advance(1h);
    EXPECT_EQ(source.loading(), bundle.feedUrl)
        << "a failed check should be retried, because the network may start after login";
    answerFeed({});
    desktop.runLoop.advance(23h);
    EXPECT_EQ(source.loading(), "");
}

TEST_F(UpdateServiceTest, TogglesAreStoredEvenIfChecksAreImpossible) {
    for (const auto& [feedUrl, isPackageManaged, availability] :
         {std::tuple{"", false, Updater::Availability::noFeed},
          std::tuple{"", true, Updater::Availability::packageManager},
          std::tuple{"https://updates.example/", true, Updater::Availability::packageManager}}) {
        bundle.feedUrl = feedUrl;
        bundle.isPackageManaged = isPackageManaged;
        start();
        EXPECT_TRUE(startError);
        EXPECT_EQ(updater->availability(), availability);
        EXPECT_FALSE(updater->canCheckForUpdates.get());
        updater->setAutomaticallyChecksForUpdates(true);
        updater->setAutomaticallyDownloadsUpdates(true);
        updater->checkForUpdates();
        desktop.runLoop.advance(72h);
        EXPECT_EQ(source.loading(), "");
        EXPECT_TRUE(showsNothing());
        start();
        EXPECT_TRUE(updater->automaticallyChecksForUpdates());
        EXPECT_TRUE(updater->automaticallyDownloadsUpdates());
    }
}

TEST_F(UpdateServiceTest, MissingKeyIsAStartError) {
    bundle.publicEdKey = "";
    start();
    EXPECT_TRUE(startError);
    EXPECT_EQ(updater->availability(), Updater::Availability::noFeed);
    EXPECT_FALSE(updater->canCheckForUpdates.get());
}

TEST_F(UpdateServiceTest, EveryOutcomeIsShownToTheUser) {
    start();
    updater->checkForUpdates();
    EXPECT_NE(shown<UpdateCheckInProgress>(), nullptr);
    answerFeed({});
    EXPECT_NE(shown<UpdateNotFound>(), nullptr);
    updater->dismiss();
    EXPECT_TRUE(showsNothing());

    updater->checkForUpdates();
    source.finishFeed("The feed is malformed");
    EXPECT_EQ(shownError(), "The feed is malformed");
    EXPECT_EQ(cycles, (Errors{std::nullopt, "The feed is malformed"}));
}

TEST_F(UpdateServiceTest, ReleasesOfAFeedThatFailsLaterAreNotOffered) {
    startChecking();
    source.find(release);
    source.finishFeed("The feed is malformed");
    EXPECT_TRUE(showsNothing());
    EXPECT_FALSE(record.lastCheck());
    updater->checkForUpdates();
    answerFeed({});
    EXPECT_NE(shown<UpdateNotFound>(), nullptr);
}

TEST_F(UpdateServiceTest, CheckCanBeCanceledAndBroughtToTheFront) {
    start();
    updater->checkForUpdates();
    int shows = 0;
    const auto subscription = updater->stage.subscribe([&](const UpdateStage&) { ++shows; });
    updater->checkForUpdates();
    EXPECT_EQ(shows, 1);
    EXPECT_NE(shown<UpdateCheckInProgress>(), nullptr);
    updater->dismiss();
    EXPECT_EQ(source.loading(), "");
    EXPECT_TRUE(showsNothing());
    EXPECT_EQ(cycles, Errors{std::nullopt});
    updater->dismiss();
    updater->install();
    updater->skip();
    EXPECT_TRUE(showsNothing()) << "without a question, answers should do nothing";
    EXPECT_EQ(cycles.size(), 1U);
}

TEST_F(UpdateServiceTest, UserCanJoinARunningCheck) {
    startChecking();
    EXPECT_TRUE(showsNothing());
    updater->checkForUpdates();
    EXPECT_NE(shown<UpdateCheckInProgress>(), nullptr);
    answerFeed({});
    EXPECT_NE(shown<UpdateNotFound>(), nullptr);
    EXPECT_EQ(source.loading(), "") << "both requests should share one check";
}

TEST_F(UpdateServiceTest, NewestReleaseForThisSystemIsOffered) {
    start();
    const auto with = [this](const char* version) {
        auto item = release;
        item.version = item.shortVersionString = version;
        return item;
    };
    auto beta = with("50");
    beta.channel = "beta";
    auto withNotes = with("48");
    withNotes.releaseNotes = "Darker nights";
    withNotes.minimumSystemVersion = "2.36";
    auto tooNew = with("49");
    tooNew.minimumSystemVersion = "2.37";
    updater->checkForUpdates();
    answerFeed({with("46"), beta, withNotes, tooNew, with("47")});
    ASSERT_NE(shown<UpdateFound>(), nullptr);
    EXPECT_EQ(shown<UpdateFound>()->version, "48");
    EXPECT_EQ(shown<UpdateFound>()->releaseNotes, "Darker nights");
}

TEST_F(UpdateServiceTest, OlderOrEqualReleaseIsNotOffered) {
    start();
    for (const auto* const version : {"45", "45.0", "44.9", "45b1", "1", "", "v46"}) {
        auto old = release;
        old.version = version;
        updater->checkForUpdates();
        answerFeed({old});
        EXPECT_NE(shown<UpdateNotFound>(), nullptr) << version;
        updater->dismiss();
    }
}

TEST_F(UpdateServiceTest, ReleaseForAnotherSystemIsSkipped) {
    start();
    auto other = release;
    other.os = "macos";
    updater->checkForUpdates();
    answerFeed({other});
    EXPECT_NE(shown<UpdateNotFound>(), nullptr);
}

TEST_F(UpdateServiceTest, CheckCanStartWhileAnOldResultIsShown) {
    start();
    for (const auto& last : std::vector<UpdateStage>{UpdateNotFound{}, UpdaterError{"broken"},
                                                     UpdatePermissionRequest{}}) {
        updater->stage.set(last);
        updater->checkForUpdates();
        EXPECT_NE(shown<UpdateCheckInProgress>(), nullptr);
        answerFeed({});
        updater->dismiss();
    }
}

TEST_F(UpdateServiceTest, DestructionCancelsTheRequest) {
    start();
    updater->checkForUpdates();
    updater.reset();
    EXPECT_EQ(source.loading(), "");
}

TEST_F(UpdateServiceTest, SkippedVersionIsNotOfferedAgainAutomatically) {
    startChecking();
    answerFeed({release});
    ASSERT_NE(shown<UpdateFound>(), nullptr);
    updater->skip();
    EXPECT_TRUE(showsNothing());
    start();
    desktop.runLoop.advance(25h);
    answerFeed({release});
    EXPECT_TRUE(showsNothing());
    updater->checkForUpdates();
    answerFeed({release});
    EXPECT_NE(shown<UpdateFound>(), nullptr) << "a manual check should offer the skipped version";
    updater->dismiss();
    desktop.runLoop.advance(25h);
    auto next = release;
    next.version = "47";
    answerFeed({next});
    EXPECT_NE(shown<UpdateFound>(), nullptr);
}

TEST_F(UpdateServiceTest, DismissedReleaseIsOfferedAgainByTheNextCheck) {
    startChecking();
    answerFeed({release});
    updater->dismiss();
    desktop.runLoop.advance(23h);
    EXPECT_TRUE(showsNothing());
    desktop.runLoop.advance(1h);
    answerFeed({release});
    ASSERT_NE(shown<UpdateFound>(), nullptr);
    desktop.runLoop.advance(72h);
    EXPECT_EQ(source.loading(), "") << "no check should start while a release is shown";
}

} // namespace
} // namespace nocta
