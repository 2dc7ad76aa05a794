#include "backends/linux/updates/AppcastUpdater.h"

#include "backends/virtual/VirtualDesktop.h"
#include "support/Process.h"
#include "support/Publisher.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace nocta {
namespace {

using namespace std::chrono_literals;
using Errors = std::vector<std::optional<std::string>>;

/// The updater on a virtual clock, and a server that is a person.
class AppcastUpdaterTest : public ::testing::Test {
protected:
    const std::string file = "the new Nocta";
    Publisher publisher;
    std::string key = publisher.publicKey();
    VirtualDesktop desktop;
    Bundle bundle{.shortVersionString = "1.2.3",
                  .version = "45",
                  .apiBase = {},
                  .feedUrl = "https://updates.example/appcast.xml",
                  .publicEdKey = key};
    TemporaryFolder folder;
    std::string memory = folder.path() + "/state/updates.json";
    std::string package = folder.path() + "/cache/nocta-update.deb";

    std::optional<AppcastUpdater> updater;
    std::optional<std::string> startError;
    Errors cycles; ///< how each ended
    std::vector<std::string> opened;
    std::function<void(const std::optional<std::string>&)> answerOfOpener;

    void start() {
        updater.emplace(desktop.runLoop, desktop.urlSession, bundle, "2.36",
                        AppcastUpdater::Places{memory, folder.path() + "/cache"},
                        [this](const std::filesystem::path& path, const auto& whenOpened) {
                            opened.push_back(path.string() + ": " + contentOf(path.string()));
                            answerOfOpener = whenOpened;
                            return Subscription();
                        });
        startError = updater->startUpdater([this](const auto& error) { cycles.push_back(error); });
        desktop.runLoop.advance(0s);
    }
    /// As if started before.
    void startWith(const std::string& remembered) {
        std::filesystem::create_directories(folder.path() + "/state");
        writeFile(memory, remembered);
        start();
    }
    void startChecking() { startWith(R"({"checksAutomatically":true})"); }

    template <class Stage>
    const Stage* shown() const {
        return std::get_if<Stage>(&updater->stage.get());
    }
    bool showsNothing() const { return shown<std::monostate>() != nullptr; }
    std::string shownError() const {
        const auto* const error = shown<UpdaterError>();
        return error == nullptr ? "" : error->description;
    }

    Release release() const {
        return {.signature = publisher.sign(file), .length = std::to_string(file.size())};
    }
    std::string asked() const {
        const auto* const request = desktop.urlSession.waiting();
        return request == nullptr ? "" : request->url;
    }
    void answer(const std::string& body, int status = 200) {
        desktop.urlSession.send(body);
        if (!asked().empty()) {
            desktop.urlSession.answer({.statusCode = status});
        }
    }
    void answerFeed(const std::string& items) {
        ASSERT_EQ(asked(), bundle.feedUrl);
        answer(appcast(items));
    }
    bool isKept() const {
        const auto cache = std::filesystem::path(package).parent_path();
        return std::filesystem::exists(cache) && !std::filesystem::is_empty(cache);
    }
};

TEST_F(AppcastUpdaterTest, NothingIsAskedBeforeTheUserAllowsIt) {
    start();
    EXPECT_FALSE(startError);
    EXPECT_TRUE(updater->canCheckForUpdates.get());
    desktop.runLoop.advance(72h);
    EXPECT_TRUE(showsNothing()) << "the first start has enough that is new";
    start();
    EXPECT_NE(shown<UpdatePermissionRequest>(), nullptr);
    desktop.runLoop.advance(72h);
    EXPECT_EQ(asked(), "");
}

TEST_F(AppcastUpdaterTest, PermissionIsAskedForOnce) {
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

TEST_F(AppcastUpdaterTest, AllowedItChecksAtOnceAndThenDaily) {
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
    EXPECT_EQ(asked(), "") << "it remembers when it last did";
    updater->setAutomaticallyChecksForUpdates(false);
    desktop.runLoop.advance(72h);
    EXPECT_EQ(asked(), "");
    EXPECT_TRUE(showsNothing());
}

TEST_F(AppcastUpdaterTest, ClockThatIsSetBackDelaysNothing) {
    startChecking();
    answerFeed("");
    desktop.runLoop.setWallClock(desktop.runLoop.wallNow() - 1000h);
    desktop.runLoop.advance(1h);
    EXPECT_EQ(asked(), bundle.feedUrl);
}

TEST_F(AppcastUpdaterTest, CheckThatFailedByItselfIsReportedAndTriedAgain) {
    startChecking();
    desktop.urlSession.answer({.error = "Host not found"});
    EXPECT_TRUE(showsNothing());
    EXPECT_EQ(cycles, Errors{"Host not found"});
    desktop.runLoop.advance(1h);
    EXPECT_EQ(asked(), bundle.feedUrl) << "at login the network may come up later";
    answerFeed("");
    desktop.runLoop.advance(23h);
    EXPECT_EQ(asked(), "");
}

TEST_F(AppcastUpdaterTest, TogglesAreRememberedWhereNothingCanBeChecked) {
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

TEST_F(AppcastUpdaterTest, KeyThatIsNoneStartsNothing) {
    for (const auto* const text :
         {"", "nonsense", "AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA="}) {
        bundle.publicEdKey = text;
        start();
        EXPECT_TRUE(startError) << text;
        EXPECT_EQ(updater->availability(), Updater::Availability::noFeed);
        EXPECT_FALSE(updater->canCheckForUpdates.get());
    }
}

TEST_F(AppcastUpdaterTest, UserIsToldOfEveryOutcome) {
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
    EXPECT_EQ(shownError(), "The server answered 500");
    updater->dismiss();
    updater->checkForUpdates();
    answer("hello");
    EXPECT_EQ(shownError(), "The feed cannot be read: line 1 is not in order");
    EXPECT_EQ(cycles, (Errors{std::nullopt, "The server answered 500",
                              "The feed cannot be read: line 1 is not in order"}));
}

TEST_F(AppcastUpdaterTest, CheckCanBeCancelledAndBroughtToTheFront) {
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
    EXPECT_TRUE(showsNothing()) << "nothing to answer";
    EXPECT_EQ(cycles.size(), 1U);
}

TEST_F(AppcastUpdaterTest, UserMayJoinACheckThatRuns) {
    startChecking();
    EXPECT_TRUE(showsNothing());
    updater->checkForUpdates();
    EXPECT_NE(shown<UpdateCheckInProgress>(), nullptr);
    answerFeed("");
    EXPECT_NE(shown<UpdateNotFound>(), nullptr);
    EXPECT_EQ(asked(), "") << "one check";
}

TEST_F(AppcastUpdaterTest, NewestForThisSystemIsOffered) {
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

TEST_F(AppcastUpdaterTest, WhatIsNotNewerIsNotOffered) {
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

TEST_F(AppcastUpdaterTest, ReleaseForAnotherSystemIsPassedOver) {
    start();
    updater->checkForUpdates();
    auto item = release().item();
    item.insert(item.find(" url="), " sparkle:os=\"macos\"");
    answerFeed(item);
    EXPECT_NE(shown<UpdateNotFound>(), nullptr);
}

TEST_F(AppcastUpdaterTest, VerifiedFileIsHandedToTheInstaller) {
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
    EXPECT_FALSE(std::filesystem::exists(package)) << "not under its name before it is known";
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

TEST_F(AppcastUpdaterTest, FileThatThePublisherDidNotSignIsNeverOpened) {
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

TEST_F(AppcastUpdaterTest, FileThatCouldBeNothingGoodIsNotLoaded) {
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
        EXPECT_EQ(refused(offered), "The file's address is not encrypted") << url;
    }
    for (const auto* const url : {"https://updates.example/nocta.sh", "https://updates.example/",
                                  "https://updates.example/nocta.deb?x", "https://deb"}) {
        auto offered = release();
        offered.url = url;
        EXPECT_EQ(refused(offered), "The file is no package") << url;
    }
    for (const auto* const length : {"", "0", "-1", "1073741825", "99999999999999999999"}) {
        auto offered = release();
        offered.length = length;
        EXPECT_EQ(refused(offered), "The feed gives the file no length that could be right")
            << length;
    }
}

TEST_F(AppcastUpdaterTest, DownloadCanBeCancelled) {
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

TEST_F(AppcastUpdaterTest, DownloadThatBreaksLeavesNothing) {
    start();
    for (const auto& response :
         {UrlResponse{.error = "The connection was closed"}, UrlResponse{.statusCode = 404}}) {
        updater->checkForUpdates();
        answerFeed(release().item());
        updater->install();
        desktop.urlSession.send("the");
        desktop.urlSession.answer(response);
        EXPECT_EQ(shownError(), response.error.value_or("The server answered 404"));
        EXPECT_FALSE(isKept());
        updater->dismiss();
    }
}

TEST_F(AppcastUpdaterTest, FolderThatCannotBeWrittenIsAnError) {
    writeFile(folder.path() + "/cache", "a file");
    start();
    updater->checkForUpdates();
    answerFeed(release().item());
    updater->install();
    answer(file);
    EXPECT_TRUE(shownError().starts_with("The file cannot be kept: ")) << shownError();
    EXPECT_TRUE(opened.empty());
}

TEST_F(AppcastUpdaterTest, InstallerThatIsMissingIsAnError) {
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
    EXPECT_NE(shown<UpdateCheckInProgress>(), nullptr) << "the user is at something else";
}

TEST_F(AppcastUpdaterTest, HandedOverReleaseIsNotOfferedAgainByItself) {
    startChecking();
    answerFeed(release().item());
    updater->install();
    answer(file);
    updater->dismiss();
    desktop.runLoop.advance(24h);
    answerFeed(release().item());
    EXPECT_TRUE(showsNothing()) << "it waits for the next start";
    updater->checkForUpdates();
    answerFeed(release().item());
    EXPECT_NE(shown<UpdateFound>(), nullptr);
}

TEST_F(AppcastUpdaterTest, CheckIsMadeAnewFromAnOldAnswer) {
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

TEST_F(AppcastUpdaterTest, TwoOfOneUserDoNotMixTheirFiles) {
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

TEST_F(AppcastUpdaterTest, WhatIsLeftOfOldUpdatesIsRemovedAtTheStart) {
    const auto make = [&](const std::string& name, std::chrono::hours age) {
        const auto path = folder.path() + "/cache/" + name;
        writeFile(path, "x");
        std::filesystem::last_write_time(path, std::filesystem::file_time_type::clock::now() - age);
        return path;
    };
    std::filesystem::create_directories(folder.path() + "/cache");
    const auto killed = make("nocta-update.deb.abcdef", 25h);
    const auto young = make("nocta-update.deb", 23h);
    start();
    EXPECT_FALSE(std::filesystem::exists(killed));
    EXPECT_TRUE(std::filesystem::exists(young)) << "an installer may still read it";
}

TEST_F(AppcastUpdaterTest, TurnedOffItStopsWhatItHasBegun) {
    startWith(R"({"checksAutomatically":true,"downloadsAutomatically":true})");
    answerFeed(release().item());
    desktop.urlSession.send("the");
    updater->setAutomaticallyChecksForUpdates(false);
    EXPECT_EQ(asked(), "");
    EXPECT_FALSE(isKept());
    updater->checkForUpdates();
    updater->setAutomaticallyChecksForUpdates(false);
    EXPECT_EQ(asked(), bundle.feedUrl) << "the user has asked for this one";
}

TEST_F(AppcastUpdaterTest, DestroyedWhileItLoadsItIsNotCalledAnyMore) {
    start();
    updater->checkForUpdates();
    updater.reset();
    EXPECT_EQ(asked(), "");
}

TEST_F(AppcastUpdaterTest, SkippedVersionIsNotOfferedAgainByItself) {
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
    EXPECT_NE(shown<UpdateFound>(), nullptr) << "the user asks";
    updater->dismiss();
    desktop.runLoop.advance(25h);
    auto next = release();
    next.version = "47";
    answerFeed(next.item());
    EXPECT_NE(shown<UpdateFound>(), nullptr);
}

TEST_F(AppcastUpdaterTest, ReminderComesWithTheNextCheck) {
    startChecking();
    answerFeed(release().item());
    updater->dismiss();
    desktop.runLoop.advance(23h);
    EXPECT_TRUE(showsNothing());
    desktop.runLoop.advance(1h);
    answerFeed(release().item());
    ASSERT_NE(shown<UpdateFound>(), nullptr);
    desktop.runLoop.advance(72h);
    EXPECT_EQ(asked(), "") << "one is on show";
}

TEST_F(AppcastUpdaterTest, DownloadedByItselfIsOfferedOnceItIsVerified) {
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
    EXPECT_EQ(asked(), "") << "it is there";
    updater->dismiss();
    std::filesystem::remove(package);
    updater->checkForUpdates();
    answerFeed(release().item());
    updater->install();
    answer(file);
    EXPECT_EQ(opened, std::vector{package + ": " + file}) << "it had been cleaned away";
}

TEST_F(AppcastUpdaterTest, DownloadByItselfThatFailsIsOnlyReported) {
    startWith(R"({"checksAutomatically":true,"downloadsAutomatically":true})");
    answerFeed(release().item());
    answer("the old Nocta");
    EXPECT_TRUE(showsNothing());
    EXPECT_EQ(cycles, Errors{"The file is not signed by the publisher"});
    EXPECT_FALSE(isKept());
}

TEST_F(AppcastUpdaterTest, UserMaySeeADownloadThatRuns) {
    startWith(R"({"checksAutomatically":true,"downloadsAutomatically":true})");
    answerFeed(release().item());
    updater->checkForUpdates();
    EXPECT_NE(shown<UpdateDownload>(), nullptr);
    answer(file);
    EXPECT_NE(shown<UpdateFound>(), nullptr);
    EXPECT_TRUE(opened.empty()) << "nobody has said that it is to be installed";
}

TEST_F(AppcastUpdaterTest, EndlessFeedIsLeft) {
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
