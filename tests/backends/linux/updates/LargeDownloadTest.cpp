// Tests that memory use stays small no matter how much a server sends.

#include "backends/linux/network/CurlUrlSession.h"
#include "backends/linux/shell/QtRunLoop.h"
#include "backends/linux/updates/AppcastUpdater.h"
#include "support/EventLoop.h"
#include "support/HttpsServer.h"
#include "support/Publisher.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <sys/resource.h>

namespace nocta {
namespace {

constexpr std::int64_t gibibyte = 1LL << 30;
constexpr std::int64_t maxGrowth = 16LL << 20;     // bytes
constexpr std::int64_t maxHelperSize = 32LL << 20; // bytes, for the whole process

/// Returns the peak memory usage of this process, in bytes.
std::int64_t peakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmHWM:")) {
            return 1024 * std::stoll(line.substr(6));
        }
    }
    return 0;
}

/// Resets the peak and returns the current memory usage of this process.
std::int64_t forgetPeak() {
    std::ofstream("/proc/self/clear_refs") << 5;
    return peakMemory();
}

/// A server in another process. The files that it serves contain complete responses.
class FileServer {
public:
    FileServer() {
        EXPECT_TRUE(waitUntil([this] { return !port().empty(); })) << contentOf(output_);
    }

    const ServerCertificate certificate;

    /// Serves a response with a body of `size` bytes: `head`, followed by zeros.
    void serve(const std::string& name, const std::string& head, std::int64_t size) {
        const auto start =
            "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: " + std::to_string(size) +
            "\r\n\r\n";
        serveRaw(name, start + head, static_cast<std::int64_t>(start.size()) + size);
    }
    /// Serves `size` bytes: `start`, followed by zeros. Adds no response header.
    void serveRaw(const std::string& name, const std::string& start, std::int64_t size) {
        const auto file = folder_.path() + "/" + name;
        writeFile(file, start);
        std::filesystem::resize_file(file, static_cast<std::uintmax_t>(size));
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

/// Returns the largest peak memory usage among the child processes that have exited, in bytes.
std::int64_t peakMemoryOfHelpers() {
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    return std::int64_t{1024} * usage.ru_maxrss;
}

/// Generates a gibibyte of zeros without storing it.
class Zeros {
public:
    Zeros()
        : data_(mmap(nullptr, gibibyte, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1,
                     0)) {}
    Zeros(const Zeros&) = delete;
    Zeros& operator=(const Zeros&) = delete;
    ~Zeros() { munmap(data_, gibibyte); }

    std::string_view view() const { return {static_cast<const char*>(data_), gibibyte}; }

private:
    void* data_;
};

class LargeDownloadTest : public ::testing::Test {
protected:
    FileServer server;
    QtRunLoop runLoop;
    CurlUrlSession session{runLoop, server.certificate.file()};
    Publisher publisher;
    std::string key = publisher.publicKey();
    std::string feedUrl = server.address("appcast.xml");
    Bundle bundle{.shortVersionString = "1.2.3",
                  .version = "45",
                  .apiBase = {},
                  .feedUrl = feedUrl,
                  .publicEdKey = key};
    TemporaryFolder folder;
    std::uintmax_t openedSize = 0;
    AppcastUpdater updater{runLoop,
                           session,
                           bundle,
                           "2.36",
                           {folder.path() + "/state.json", folder.path() + "/cache"},
                           [this](const std::filesystem::path& path, const auto& whenOpened) {
                               openedSize = std::filesystem::file_size(path);
                               whenOpened(std::nullopt);
                               return Subscription();
                           }};

    void SetUp() override {
        updater.startUpdater([](const std::optional<std::string>& /*error*/) {});
    }

    /// Runs the event loop until the stage ends or stops making progress.
    template <class Stage>
    void waitForEndOf() {
        for (double before = -1; std::holds_alternative<Stage>(updater.stage.get()) &&
                                 updater.downloadProgress.get() > before;) {
            before = updater.downloadProgress.get();
            serveUntil([&] {
                return !std::holds_alternative<Stage>(updater.stage.get()) ||
                       updater.downloadProgress.get() > before;
            });
        }
    }
    void expectLittleGrowth(std::int64_t before) {
        EXPECT_LT(peakMemory() - before, maxGrowth);
        EXPECT_LT(peakMemoryOfHelpers(), maxHelperSize);
        RecordProperty("growth", std::to_string(peakMemory() - before));
        RecordProperty("helper", std::to_string(peakMemoryOfHelpers()));
    }
    std::string error() const {
        const auto* const failed = std::get_if<UpdaterError>(&updater.stage.get());
        return failed == nullptr ? "" : failed->description;
    }
};

TEST_F(LargeDownloadTest, GibibyteFeedIsRejectedEarly) {
    server.serve("appcast.xml", "<rss><!--", gibibyte);
    const auto before = forgetPeak();
    updater.checkForUpdates();
    waitForEndOf<UpdateCheckInProgress>();
    EXPECT_EQ(error(), "The feed is too long");
    expectLittleGrowth(before);
}

TEST_F(LargeDownloadTest, GibibyteHeaderIsRejectedEarly) {
    for (const auto* const head : {"HTTP/1.1 200 ", "HTTP/1.1 200 OK\r\nLong: ",
                                   "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"}) {
        server.serveRaw("appcast.xml", head, gibibyte);
        const auto before = forgetPeak();
        updater.checkForUpdates();
        waitForEndOf<UpdateCheckInProgress>();
        EXPECT_NE(error(), "") << head;
        expectLittleGrowth(before);
        updater.dismiss();
    }
}

TEST_F(LargeDownloadTest, GibibyteFileIsVerifiedAsItArrives) {
    const Release release = {.url = server.address("nocta.deb"),
                             .signature = publisher.sign(Zeros().view()),
                             .length = std::to_string(gibibyte)};
    const auto feed = appcast(release.item());
    server.serve("appcast.xml", feed, static_cast<std::int64_t>(feed.size()));
    server.serve("nocta.deb", "", gibibyte);
    const auto before = forgetPeak();
    updater.checkForUpdates();
    waitForEndOf<UpdateCheckInProgress>();
    ASSERT_TRUE(std::holds_alternative<UpdateFound>(updater.stage.get())) << error();
    updater.install();
    waitForEndOf<UpdateDownload>();
    EXPECT_EQ(error(), "");
    EXPECT_EQ(openedSize, gibibyte);
    expectLittleGrowth(before);
}

} // namespace
} // namespace nocta
