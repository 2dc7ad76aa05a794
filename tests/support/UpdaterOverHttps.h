#pragma once

#include "backends/linux/network/FetchUpdateSource.h"
#include "backends/linux/shell/QtRunLoop.h"
#include "backends/virtual/VirtualDesktop.h"
#include "support/DebianFile.h"
#include "support/EventLoop.h"
#include "support/HttpsServer.h"
#include "support/Process.h"
#include "support/Publisher.h"
#include "updates/UpdateService.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace nocta {

/// The updater with a real HTTPS server, and with nocta-fetch as it is installed.
class UpdaterOverHttps : public ::testing::Test {
protected:
    /// Downloads from the server, but opens packages by reading them.
    class Source final : public UpdateSource {
    public:
        Source(UpdaterOverHttps& test, const std::string& certificates)
            : test_(test), real_(test.runLoop, test.bundle, test.cache, certificates) {}

        Subscription loadAppcast(const std::string& url,
                                 std::function<void(const AppcastItem&)> didFindItem,
                                 Completion completion) override {
            return real_.loadAppcast(url, std::move(didFindItem), std::move(completion));
        }
        Subscription download(const AppcastItem& item, std::function<void(double)> didMakeProgress,
                              std::function<void(const DownloadResult&)> completion) override {
            return real_.download(item, std::move(didMakeProgress), std::move(completion));
        }
        bool exists(const Package& package) const override { return real_.exists(package); }
        void remove(const Package& package) override { real_.remove(package); }
        void removePackages(Duration age) override { real_.removePackages(age); }
        Subscription open(const Package& package, Completion completion) override {
            test_.opened.push_back(contentOf(package.path));
            completion(std::nullopt);
            return {};
        }

    private:
        UpdaterOverHttps& test_;
        FetchUpdateSource real_;
    };

    const std::string file = DebianFile().bytes(std::string(300'000, 'n'));
    HttpsServer server;
    QtRunLoop runLoop;
    VirtualDesktop desktop;
    Publisher publisher;
    std::string key = publisher.publicKey();
    std::string feedUrl = server.address("/appcast.xml");
    Bundle bundle{.shortVersionString = "1.2.3",
                  .version = "45",
                  .apiBase = {},
                  .feedUrl = feedUrl,
                  .publicEdKey = key};
    TemporaryFolder folder;
    std::string cache = folder.path() + "/cache";
    std::map<std::string, std::string> answers; ///< complete responses, keyed by path
    bool stallsAfterAnswer = false;             ///< instead of closing the connection
    std::vector<std::string> asked;             ///< the requested paths
    std::string lastRequest;
    std::vector<std::string> opened;
    std::vector<std::string> errors; ///< the errors of the update cycles
    MemoryDefaultsStore store{desktop.trace};
    std::optional<Source> source;
    std::optional<UpdateService> updater;

    void SetUp() override {
        server.respond = [this](QTcpSocket& socket) {
            const auto path = server.request.substr(4, server.request.find(' ', 4) - 4);
            lastRequest = std::exchange(server.request, {});
            asked.push_back(path);
            const auto answer = answers.find(path);
            socket.write(QByteArray::fromStdString(
                answer == answers.end() ? "HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n"
                                        : answer->second));
            if (!stallsAfterAnswer) {
                socket.disconnectFromHost();
            }
        };
        startWith(server.certificate.file());
    }
    void startWith(const std::string& certificates) {
        updater.reset();
        source.emplace(*this, certificates);
        updater.emplace(runLoop, *source, store, bundle,
                        UpdateSystem{.version = "2.36", .architecture = "amd64"});
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
    /// Serves a file with a valid signature, and a feed that offers it as `version`.
    void serveSigned(const std::string& content, const std::string& version = "1.3") {
        auto item = release();
        item.shortVersion = version;
        item.signature = publisher.sign(content);
        item.length = std::to_string(content.size());
        serve("/appcast.xml", appcast(item.item()));
        serve("/nocta.deb", content);
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
    /// The names of the files in the download folder.
    std::vector<std::string> files() const {
        std::vector<std::string> names;
        std::error_code error; // there may be no folder
        for (const auto& entry : std::filesystem::directory_iterator(cache, error)) {
            names.push_back(entry.path().filename().string());
        }
        return names;
    }
};

} // namespace nocta
