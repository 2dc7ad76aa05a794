// Tests the updater with a real HTTPS server and with releases that the test signs.

#include "backends/linux/network/CurlUrlSession.h"
#include "backends/linux/shell/QtRunLoop.h"
#include "backends/linux/updates/AppcastUpdater.h"
#include "support/EventLoop.h"
#include "support/HttpsServer.h"
#include "support/Publisher.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace nocta {
namespace {

class UpdatesOverHttpsTest : public ::testing::Test {
protected:
    const std::string file = std::string(300'000, 'n') + "octa";
    HttpsServer server;
    QtRunLoop runLoop;
    CurlUrlSession session{runLoop, server.certificate.file()};
    CurlUrlSession distrustful{runLoop};
    Publisher publisher;
    std::string key = publisher.publicKey();
    std::string feedUrl = server.address("/appcast.xml");
    Bundle bundle{.shortVersionString = "1.2.3",
                  .version = "45",
                  .apiBase = {},
                  .feedUrl = feedUrl,
                  .publicEdKey = key};
    TemporaryFolder folder;
    std::map<std::string, std::string> answers; ///< complete responses, keyed by path
    std::vector<std::string> asked;             ///< the requested paths
    std::vector<std::string> opened;
    std::vector<std::string> errors; ///< the errors of the update cycles
    std::optional<AppcastUpdater> updater;

    void SetUp() override {
        server.respond = [this](QTcpSocket& socket) {
            const auto path = server.request.substr(4, server.request.find(' ', 4) - 4);
            server.request.clear();
            asked.push_back(path);
            const auto answer = answers.find(path);
            socket.write(QByteArray::fromStdString(
                answer == answers.end() ? "HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n"
                                        : answer->second));
            socket.disconnectFromHost();
        };
        startWith(session);
    }
    void startWith(UrlSession& network) {
        updater.emplace(
            runLoop, network, bundle, "2.36",
            AppcastUpdater::Places{folder.path() + "/state.json", folder.path() + "/cache"},
            [this](const std::filesystem::path& path, const auto& whenOpened) {
                opened.push_back(contentOf(path.string()));
                whenOpened(std::nullopt);
                return Subscription();
            });
        updater->startUpdater([this](const std::optional<std::string>& error) {
            if (error) {
                errors.push_back(*error);
            }
        });
    }

    Release release() const {
        return {.url = server.address("/nocta.deb"),
                .signature = publisher.sign(file),
                .length = std::to_string(file.size())};
    }
    void serve(const std::string& path, const std::string& body) {
        answers[path] = "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n" + body;
    }
    void redirect(const std::string& path, const std::string& address) {
        answers[path] = "HTTP/1.1 302 Found\r\nLocation: " + address +
                        "\r\nContent-Length: 0\r\nConnection: close\r\n\r\n";
    }

    template <class Stage>
    bool shows() const {
        return std::holds_alternative<Stage>(updater->stage.get());
    }
    /// Checks for updates as the user does, and waits until the check is complete.
    void check() {
        updater->checkForUpdates();
        EXPECT_TRUE(serveUntil([this] { return !shows<UpdateCheckInProgress>(); }));
    }
    /// Checks, downloads and starts the installer. Returns the error, or "" if there is none.
    std::string install() {
        check();
        if (shows<UpdateFound>()) {
            updater->install();
            EXPECT_TRUE(serveUntil([this] { return !shows<UpdateDownload>(); }));
        }
        const auto* const error = std::get_if<UpdaterError>(&updater->stage.get());
        const auto text = error == nullptr ? "" : error->description;
        EXPECT_EQ(text, errors.empty() ? "" : errors.back());
        errors.clear();
        updater->dismiss();
        return text;
    }
    void expectRefused() {
        EXPECT_NE(install(), "");
        EXPECT_TRUE(opened.empty());
        EXPECT_TRUE(!std::filesystem::exists(folder.path() + "/cache") ||
                    std::filesystem::is_empty(folder.path() + "/cache"));
    }
};

TEST_F(UpdatesOverHttpsTest, SignedReleaseReachesTheInstaller) {
    serve("/appcast.xml", appcast(release().item()));
    serve("/nocta.deb", file);
    EXPECT_EQ(install(), "");
    EXPECT_EQ(opened, std::vector{file});
    EXPECT_EQ(asked, (std::vector<std::string>{"/appcast.xml", "/nocta.deb"}));
}

TEST_F(UpdatesOverHttpsTest, EncryptedRedirectsAreFollowed) {
    redirect("/appcast.xml", "/moved.xml");
    serve("/moved.xml", appcast(release().item()));
    redirect("/nocta.deb", server.address("/1.3/nocta.deb"));
    serve("/1.3/nocta.deb", file);
    EXPECT_EQ(install(), "");
    EXPECT_EQ(opened, std::vector{file});
}

TEST_F(UpdatesOverHttpsTest, UnencryptedOrEndlessRedirectIsRejected) {
    const PlainServer plain;
    for (const auto& address : {plain.address() + "appcast.xml", std::string("/appcast.xml"),
                                std::string("file:///etc/passwd"), std::string("https://")}) {
        redirect("/appcast.xml", address);
        expectRefused();
    }
    serve("/appcast.xml", appcast(release().item()));
    redirect("/nocta.deb", plain.address() + "nocta.deb");
    expectRefused();
    EXPECT_EQ(plain.connections, 0);
}

TEST_F(UpdatesOverHttpsTest, InvalidFeedIsRejected) {
    for (const auto& feed :
         {std::string(), std::string("hello"), std::string("<html><p>Log in to the network"),
          std::string("<!DOCTYPE rss [<!ENTITY a \"ha\"><!ENTITY b \"&a;&a;\">]><rss>&b;</rss>"),
          appcast(release().item()).substr(0, 200), std::string(2 << 20, '<'),
          std::string(2 << 20, ' ')}) {
        serve("/appcast.xml", feed);
        expectRefused();
    }
    answers["/appcast.xml"] = "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n<rss/>";
    expectRefused();
    answers["/appcast.xml"] = "hello\r\n\r\n";
    expectRefused();
    for (const auto* const status : {"404 Not Found", "500 Error", "204 No Content"}) {
        answers["/appcast.xml"] =
            std::string("HTTP/1.1 ") + status + "\r\nConnection: close\r\n\r\n";
        expectRefused();
    }
}

TEST_F(UpdatesOverHttpsTest, ServerWithAnUntrustedCertificateIsRejected) {
    serve("/appcast.xml", appcast(release().item()));
    startWith(distrustful);
    expectRefused();
    EXPECT_TRUE(asked.empty());
}

TEST_F(UpdatesOverHttpsTest, FileThatDiffersFromTheSignedOneIsRejected) {
    serve("/appcast.xml", appcast(release().item()));
    for (const auto& other : {std::string(), file + "x", file.substr(1), "x" + file.substr(1)}) {
        serve("/nocta.deb", other);
        expectRefused();
    }
    answers.erase("/nocta.deb");
    expectRefused();

    serve("/nocta.deb", file);
    auto item = release();
    item.signature = Publisher().sign(file);
    serve("/appcast.xml", appcast(item.item()));
    expectRefused();
    item = release();
    item.url.replace(0, 5, "http");
    serve("/appcast.xml", appcast(item.item()));
    expectRefused();
}

TEST_F(UpdatesOverHttpsTest, MaliciousNamesAndNotesAreHarmless) {
    auto item = release();
    item.more = "<description>&lt;script&gt;x&lt;/script&gt;&lt;img src='file:///etc/passwd'&gt;"
                "Seen</description>";
    for (const auto* const version :
         {"../../../etc/passwd", "99;reboot", "$(reboot)", "%n%n%1", "9999999999999999999999"}) {
        item.version = "1000" + std::string(version);
        item.shortVersion = version;
        serve("/appcast.xml", appcast(item.item()));
        check();
        ASSERT_TRUE(shows<UpdateFound>()) << version;
        EXPECT_EQ(std::get<UpdateFound>(updater->stage.get()).version, version);
        EXPECT_EQ(std::get<UpdateFound>(updater->stage.get()).releaseNotes, "Seen");
        updater->dismiss();
    }
    EXPECT_FALSE(std::filesystem::exists(folder.path() + "/cache"))
        << "nothing should be downloaded";
}

} // namespace
} // namespace nocta
