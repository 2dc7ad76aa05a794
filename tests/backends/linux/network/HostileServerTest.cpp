// Tests that a server can neither fill the memory nor stop the run loop, no matter what it sends.

#include "backends/linux/network/FetchUpdateSource.h"
#include "backends/linux/shell/QtRunLoop.h"
#include "backends/virtual/VirtualDesktop.h"
#include "support/DebianFile.h"
#include "support/HttpsServer.h"
#include "support/Memory.h"
#include "support/Process.h"
#include "support/Publisher.h"
#include "updates/UpdateService.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QEventLoop>
#include <QObject>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <optional>
#include <string>
#include <variant>

namespace nocta {
namespace {

using namespace std::chrono_literals;

constexpr std::int64_t mebibyte = 1 << 20;
constexpr std::int64_t gibibyte = 1024 * mebibyte;
constexpr std::int64_t maxFileSize = 32 * mebibyte;
constexpr std::int64_t maxGrowth = mebibyte;
constexpr std::int64_t maxHelperSize = 64 * mebibyte;
constexpr auto maxTurn = 50ms; // of processor time, which does not depend on other programs

/// A server in another process. The files that it serves contain complete responses.
class FileServer {
public:
    FileServer() {
        EXPECT_TRUE(waitUntil([this] { return !port().empty(); })) << contentOf(output_);
    }

    const ServerCertificate certificate;

    /// Serves `start`, followed by zeros up to `size` bytes in total.
    void serveRaw(const std::string& name, const std::string& start, std::int64_t size) {
        const auto file = folder_.path() + "/" + name;
        writeFile(file, start);
        std::filesystem::resize_file(file, static_cast<std::uintmax_t>(size));
    }
    void serveRaw(const std::string& name, const std::string& response) {
        serveRaw(name, response, static_cast<std::int64_t>(response.size()));
    }
    /// Serves a response with a body of `size` bytes: `head`, followed by zeros.
    void serve(const std::string& name, const std::string& head, std::int64_t size) {
        const auto start =
            "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: " + std::to_string(size) +
            "\r\n\r\n";
        serveRaw(name, start + head, static_cast<std::int64_t>(start.size()) + size);
    }
    void serve(const std::string& name, const std::string& body) {
        serve(name, body, static_cast<std::int64_t>(body.size()));
    }
    std::string address(const std::string& name) const {
        return "https://localhost:" + port() + "/" + name;
    }

private:
    std::string port() const {
        const auto said = contentOf(output_);
        const std::string listening = "ACCEPT 127.0.0.1:";
        const auto begin = said.find(listening);
        const auto end = said.find('\n', begin);
        return begin == std::string::npos || end == std::string::npos
                   ? ""
                   : said.substr(begin + listening.size(), end - begin - listening.size());
    }

    TemporaryFolder folder_;
    std::string output_ = folder_.path() + "/output";
    Process server_{{"sh", "-c",
                     "cd \"$0\" && exec openssl s_server -HTTP -accept 127.0.0.1:0 "
                     "-cert \"$1\" -key \"$2\"",
                     folder_.path(), certificate.file(), certificate.keyFile()},
                    {},
                    output_};
};

std::chrono::nanoseconds processorTime() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

std::string repeated(const std::string& unit, std::size_t size) {
    std::string text;
    while (text.size() < size) {
        text += unit;
    }
    return text;
}

class HostileServerTest : public ::testing::Test {
protected:
    static constexpr auto chunked = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";

    FileServer server;
    QtRunLoop runLoop;
    VirtualDesktop desktop;
    Publisher publisher;
    std::string key = publisher.publicKey();
    std::string feedUrl = server.address("appcast.xml");
    Bundle bundle{.shortVersionString = "1.2.3",
                  .version = "45",
                  .apiBase = {},
                  .feedUrl = feedUrl,
                  .publicEdKey = key};
    TemporaryFolder folder;
    FetchUpdateSource source{runLoop, bundle, folder.path() + "/cache", server.certificate.file()};
    MemoryDefaultsStore store{desktop.trace};
    UpdateService updater{
        runLoop, source, store, bundle, {.version = "2.36", .architecture = "arm64"}};
    QObject turns;
    std::chrono::steady_clock::time_point turnStart;
    std::chrono::nanoseconds processorTimeBefore{};
    std::chrono::nanoseconds longestTurn{};
    std::chrono::nanoseconds longestTurnWithWaits{}; ///< reported, but other programs affect it

    void SetUp() override {
        auto* const dispatcher = QAbstractEventDispatcher::instance();
        QObject::connect(dispatcher, &QAbstractEventDispatcher::awake, &turns,
                         [this] { startTurn(); });
        QObject::connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, &turns, [this] {
            longestTurn = std::max(longestTurn, processorTime() - processorTimeBefore);
            longestTurnWithWaits =
                std::max(longestTurnWithWaits, std::chrono::steady_clock::now() - turnStart);
            startTurn();
        });
        updater.startUpdater([](const std::optional<std::string>& /*error*/) {});
        server.serve("appcast.xml", appcast("")); // so that everything has run before the attack
        EXPECT_EQ(attack(), "");
    }

    void startTurn() {
        turnStart = std::chrono::steady_clock::now();
        processorTimeBefore = processorTime();
    }

    /// Runs the event loop until the stage ends. Every progress may take some time.
    template <class Stage>
    void waitForEndOf() {
        const auto isRunning = [this] {
            return std::holds_alternative<Stage>(updater.stage.get());
        };
        auto progress = updater.downloadProgress.get();
        auto deadline = std::chrono::steady_clock::now() + 60s;
        while (isRunning() && std::chrono::steady_clock::now() < deadline) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            if (progress != updater.downloadProgress.get()) {
                progress = updater.downloadProgress.get();
                deadline = std::chrono::steady_clock::now() + 60s;
            }
        }
        EXPECT_FALSE(isRunning());
    }
    /// Checks for updates, and installs one if it is offered. Returns the error.
    std::string attack() {
        updater.dismiss();
        longestTurn = longestTurnWithWaits = {};
        const auto before = forgetPeak();
        startTurn();
        updater.checkForUpdates();
        waitForEndOf<UpdateCheckInProgress>();
        if (std::holds_alternative<UpdateFound>(updater.stage.get())) {
            updater.install();
            waitForEndOf<UpdateDownload>();
        }
        growth = std::max(growth, peakMemory() - before);
        const auto* const failed = std::get_if<UpdaterError>(&updater.stage.get());
        return failed == nullptr ? "" : failed->description;
    }
    std::string attackWithFeed(const std::string& feed) {
        server.serve("appcast.xml", feed);
        return attack();
    }
    void TearDown() override {
        EXPECT_LE(growth, maxGrowth);
        EXPECT_LE(longestTurn, maxTurn);
        EXPECT_LE(peakMemoryOfChildren(), maxHelperSize);
        RecordProperty("growth", std::to_string(growth));
        RecordProperty("longestTurn", std::to_string(longestTurn / 1us));
        RecordProperty("longestTurnWithWaits", std::to_string(longestTurnWithWaits / 1us));
        RecordProperty("helper", std::to_string(peakMemoryOfChildren()));
    }

    std::int64_t growth = 0;
};

TEST_F(HostileServerTest, EntityBombIsRejected) {
    const auto entities = repeated("<!ENTITY e ''>", 4000);
    const auto bomb =
        "<!DOCTYPE rss [<!ENTITY % a \"" + entities + "\">" + repeated("%a;", 126'000) + "]>";
    growth = 0;
    EXPECT_EQ(attackWithFeed(bomb + appcast("")), "The feed contains a document type declaration");
}

TEST_F(HostileServerTest, ElementWithManyAttributesIsCheap) {
    std::string attributes;
    for (int i = 0; attributes.size() < 130'000; ++i) {
        attributes += " a" + std::to_string(i) + "=''";
    }
    growth = 0;
    EXPECT_EQ(attackWithFeed("<rss" + attributes + "/>"), "");
}

TEST_F(HostileServerTest, FeedOfManyItemsIsCheap) {
    auto release = Release{.signature = publisher.sign("x"), .length = "1"};
    release.more =
        "<description sparkle:format='plain-text'>" + std::string(1000, '"') + "</description>";
    release.more += "<sparkle:channel>beta</sparkle:channel>";
    growth = 0;
    EXPECT_EQ(attackWithFeed(appcast(repeated(release.item(), 128'000))), "");
}

TEST_F(HostileServerTest, GibibyteFeedIsRejected) {
    server.serve("appcast.xml", "<rss><!--", gibibyte);
    growth = 0;
    EXPECT_EQ(attack(), "The feed is malformed"); // zeros are no characters
    server.serve("appcast.xml", "<rss>" + std::string(1 << 18, ' '), gibibyte);
    EXPECT_EQ(attack(), "The feed is too long");
}

TEST_F(HostileServerTest, GibibyteHeaderIsRejected) {
    growth = 0;
    for (const auto& start :
         {std::string("HTTP/1.1 200 "), std::string("HTTP/1.1 200 OK\r\nLong: "),
          std::string(chunked), std::string(chunked) + "5;extension="}) {
        server.serveRaw("appcast.xml", start, gibibyte);
        EXPECT_EQ(attack(), "The connection was lost") << start;
    }
    server.serveRaw("appcast.xml",
                    "HTTP/1.1 200 OK\r\n" + repeated("Field: value\r\n", 64 * mebibyte));
    EXPECT_EQ(attack(), "The connection was lost");
}

TEST_F(HostileServerTest, EndlessTrailerIsRejected) {
    const auto start = std::string(chunked) + "6\r\n<rss/>\r\n0\r\n";
    growth = 0;
    server.serveRaw("appcast.xml", start + "Long: ", gibibyte);
    EXPECT_EQ(attack(), "The connection was lost");
    server.serveRaw("appcast.xml", start + repeated("Field: value\r\n", 64 * mebibyte));
    EXPECT_EQ(attack(), "The connection was lost");
}

TEST_F(HostileServerTest, GibibyteFileIsRejected) {
    auto release = Release{.url = server.address("nocta.deb"), .signature = publisher.sign("")};
    growth = 0;
    release.length = std::to_string(gibibyte);
    EXPECT_EQ(attackWithFeed(appcast(release.item())),
              "The feed gives no valid length for the file");
    server.serve("nocta.deb", "!<arch>\n", gibibyte);
    release.length = std::to_string(maxFileSize);
    EXPECT_EQ(attackWithFeed(appcast(release.item())), "The file is longer than the feed says");
}

TEST_F(HostileServerTest, LargestFileIsVerifiedInLittleMemory) {
    auto content = DebianFile().bytes();
    content.resize(maxFileSize); // the end is not read
    auto release =
        Release{.url = server.address("nocta.deb"), .signature = publisher.sign(content)};
    release.length = std::to_string(maxFileSize);
    server.serve("nocta.deb", content);
    server.serve("appcast.xml", appcast(release.item()));
    content = {};
    growth = 0;
    EXPECT_EQ(attack(), "The package is for another kind of computer"); // so nothing opens it
}

} // namespace
} // namespace nocta
