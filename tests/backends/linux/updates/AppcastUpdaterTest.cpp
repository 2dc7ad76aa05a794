#include "support/UpdaterOnVirtualDesktop.h"

#include <chrono>
#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

namespace nocta {
namespace {

using namespace std::chrono_literals;

using AppcastUpdaterTest = UpdaterOnVirtualDesktop;

TEST_F(AppcastUpdaterTest, NoServerIsContactedBeforeTheUserAllowsIt) {
    start();
    EXPECT_FALSE(startError);
    EXPECT_TRUE(updater->canCheckForUpdates.get());
    desktop.runLoop.advance(72h);
    EXPECT_TRUE(showsNothing()) << "the first launch should not ask for permission";
    start();
    EXPECT_NE(shown<UpdatePermissionRequest>(), nullptr);
    desktop.runLoop.advance(72h);
    EXPECT_EQ(asked(), "");
}

TEST_F(AppcastUpdaterTest, PermissionIsRequestedOnce) {
    startWith("{}");
    ASSERT_NE(shown<UpdatePermissionRequest>(), nullptr);
    updater->dismiss();
    EXPECT_TRUE(showsNothing());
    EXPECT_FALSE(updater->automaticallyChecksForUpdates());
    start();
    EXPECT_TRUE(showsNothing());
    desktop.runLoop.advance(72h);
    EXPECT_EQ(asked(), "");
}

TEST_F(AppcastUpdaterTest, ChecksImmediatelyAndThenDailyAfterPermission) {
    startWith("{}");
    updater->setAutomaticallyChecksForUpdates(true);
    EXPECT_TRUE(showsNothing());
    answerFeed("");
    EXPECT_EQ(cycles, Errors{std::nullopt});
    desktop.runLoop.advance(23h + 59min);
    EXPECT_EQ(asked(), "");
    desktop.runLoop.advance(2min);
    answerFeed("");
    desktop.runLoop.suspend(25h);
    desktop.runLoop.advance(1h);
    answerFeed("");

    start();
    EXPECT_EQ(asked(), "") << "the time of the last check should survive a restart";
    updater->setAutomaticallyChecksForUpdates(false);
    desktop.runLoop.advance(72h);
    EXPECT_EQ(asked(), "");
    EXPECT_TRUE(showsNothing());
}

TEST_F(AppcastUpdaterTest, SettingTheClockBackDoesNotDelayChecks) {
    startChecking();
    answerFeed("");
    desktop.runLoop.setWallClock(desktop.runLoop.wallNow() - 1000h);
    desktop.runLoop.advance(1h);
    EXPECT_EQ(asked(), bundle.feedUrl);
}

TEST_F(AppcastUpdaterTest, FailedAutomaticCheckIsReportedAndRetried) {
    startChecking();
    desktop.urlSession.answer({.error = "Host not found"});
    EXPECT_TRUE(showsNothing());
    EXPECT_EQ(cycles, Errors{"Host not found"});
    desktop.runLoop.advance(1h);
    EXPECT_EQ(asked(), bundle.feedUrl)
        << "a failed check should be retried, because the network may start after login";
    answerFeed("");
    desktop.runLoop.advance(23h);
    EXPECT_EQ(asked(), "");
}

TEST_F(AppcastUpdaterTest, TogglesAreStoredEvenIfChecksAreImpossible) {
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
        EXPECT_EQ(asked(), "");
        EXPECT_TRUE(showsNothing());
        start();
        EXPECT_TRUE(updater->automaticallyChecksForUpdates());
        EXPECT_TRUE(updater->automaticallyDownloadsUpdates());
    }
}

TEST_F(AppcastUpdaterTest, InvalidKeyIsAStartError) {
    for (const auto* const text :
         {"", "nonsense", "AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA="}) {
        bundle.publicEdKey = text;
        start();
        EXPECT_TRUE(startError) << text;
        EXPECT_EQ(updater->availability(), Updater::Availability::noFeed);
        EXPECT_FALSE(updater->canCheckForUpdates.get());
    }
}

TEST_F(AppcastUpdaterTest, EveryOutcomeIsShownToTheUser) {
    start();
    updater->checkForUpdates();
    EXPECT_NE(shown<UpdateCheckInProgress>(), nullptr);
    EXPECT_EQ(desktop.urlSession.waiting()->method, "GET");
    EXPECT_EQ(desktop.urlSession.waiting()->timeout, 60s);
    EXPECT_EQ(desktop.urlSession.waiting()->body, "");
    answerFeed("");
    EXPECT_NE(shown<UpdateNotFound>(), nullptr);
    updater->dismiss();
    EXPECT_TRUE(showsNothing());

    updater->checkForUpdates();
    answer("", 500);
    EXPECT_EQ(shownError(), "The server answered with an error: 500");
    updater->dismiss();
    updater->checkForUpdates();
    answer("hello");
    EXPECT_EQ(shownError(), "The feed cannot be read: line 1 is malformed");
    EXPECT_EQ(cycles, (Errors{std::nullopt, "The server answered with an error: 500",
                              "The feed cannot be read: line 1 is malformed"}));
}

TEST_F(AppcastUpdaterTest, CheckCanBeCanceledAndBroughtToTheFront) {
    start();
    updater->checkForUpdates();
    int shows = 0;
    const auto subscription = updater->stage.subscribe([&](const UpdateStage&) { ++shows; });
    updater->checkForUpdates();
    EXPECT_EQ(shows, 1);
    EXPECT_NE(shown<UpdateCheckInProgress>(), nullptr);
    updater->dismiss();
    EXPECT_EQ(asked(), "");
    EXPECT_TRUE(showsNothing());
    EXPECT_EQ(cycles, Errors{std::nullopt});
    updater->dismiss();
    updater->install();
    updater->skip();
    EXPECT_TRUE(showsNothing()) << "without a question, answers should do nothing";
    EXPECT_EQ(cycles.size(), 1U);
}

TEST_F(AppcastUpdaterTest, UserCanJoinARunningCheck) {
    startChecking();
    EXPECT_TRUE(showsNothing());
    updater->checkForUpdates();
    EXPECT_NE(shown<UpdateCheckInProgress>(), nullptr);
    answerFeed("");
    EXPECT_NE(shown<UpdateNotFound>(), nullptr);
    EXPECT_EQ(asked(), "") << "both requests should share one check";
}

TEST_F(AppcastUpdaterTest, NewestReleaseForThisSystemIsOffered) {
    start();
    const auto with = [this](const char* version, const char* more) {
        auto one = release();
        one.version = version;
        one.shortVersion = version;
        one.more = more;
        return one.item();
    };
    updater->checkForUpdates();
    answerFeed(with("46", "") + with("50", "<sparkle:channel>beta</sparkle:channel>") +
               with("48", "<description>Darker &lt;i&gt;nights&lt;/i&gt;</description>"
                          "<sparkle:minimumSystemVersion>2.36</sparkle:minimumSystemVersion>") +
               with("49", "<sparkle:minimumSystemVersion>2.37</sparkle:minimumSystemVersion>") +
               with("47", ""));
    ASSERT_NE(shown<UpdateFound>(), nullptr);
    EXPECT_EQ(shown<UpdateFound>()->version, "48");
    EXPECT_EQ(shown<UpdateFound>()->releaseNotes, "Darker nights");
}

TEST_F(AppcastUpdaterTest, OlderOrEqualReleaseIsNotOffered) {
    start();
    for (const auto* const version : {"45", "45.0", "44.9", "45b1", "1", "", "v46"}) {
        auto old = release();
        old.version = version;
        updater->checkForUpdates();
        answerFeed(old.item());
        EXPECT_NE(shown<UpdateNotFound>(), nullptr) << version;
        updater->dismiss();
    }
}

TEST_F(AppcastUpdaterTest, ReleaseForAnotherSystemIsSkipped) {
    start();
    updater->checkForUpdates();
    auto item = release().item();
    item.insert(item.find(" url="), " sparkle:os=\"macos\"");
    answerFeed(item);
    EXPECT_NE(shown<UpdateNotFound>(), nullptr);
}

TEST_F(AppcastUpdaterTest, CheckCanStartWhileAnOldResultIsShown) {
    start();
    for (const auto& last : std::vector<UpdateStage>{UpdateNotFound{}, UpdaterError{"broken"},
                                                     UpdatePermissionRequest{}}) {
        updater->stage.set(last);
        updater->checkForUpdates();
        EXPECT_NE(shown<UpdateCheckInProgress>(), nullptr);
        answerFeed("");
        updater->dismiss();
    }
}

TEST_F(AppcastUpdaterTest, DestructionCancelsTheRequest) {
    start();
    updater->checkForUpdates();
    updater.reset();
    EXPECT_EQ(asked(), "");
}

TEST_F(AppcastUpdaterTest, SkippedVersionIsNotOfferedAgainAutomatically) {
    startChecking();
    answerFeed(release().item());
    ASSERT_NE(shown<UpdateFound>(), nullptr);
    updater->skip();
    EXPECT_TRUE(showsNothing());
    start();
    desktop.runLoop.advance(25h);
    answerFeed(release().item());
    EXPECT_TRUE(showsNothing());
    updater->checkForUpdates();
    answerFeed(release().item());
    EXPECT_NE(shown<UpdateFound>(), nullptr) << "a manual check should offer the skipped version";
    updater->dismiss();
    desktop.runLoop.advance(25h);
    auto next = release();
    next.version = "47";
    answerFeed(next.item());
    EXPECT_NE(shown<UpdateFound>(), nullptr);
}

TEST_F(AppcastUpdaterTest, DismissedReleaseIsOfferedAgainByTheNextCheck) {
    startChecking();
    answerFeed(release().item());
    updater->dismiss();
    desktop.runLoop.advance(23h);
    EXPECT_TRUE(showsNothing());
    desktop.runLoop.advance(1h);
    answerFeed(release().item());
    ASSERT_NE(shown<UpdateFound>(), nullptr);
    desktop.runLoop.advance(72h);
    EXPECT_EQ(asked(), "") << "no check should start while a release is shown";
}

TEST_F(AppcastUpdaterTest, OverlongFeedIsAnError) {
    start();
    updater->checkForUpdates();
    desktop.urlSession.send(std::string(1 << 17, ' '));
    EXPECT_NE(shown<UpdateCheckInProgress>(), nullptr);
    desktop.urlSession.send(" ");
    EXPECT_EQ(shownError(), "The feed is too long");
    EXPECT_EQ(asked(), "");
}

} // namespace
} // namespace nocta
