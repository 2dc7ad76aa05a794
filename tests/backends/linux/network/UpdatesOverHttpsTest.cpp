// Tests the updater with a real HTTPS server and with packages that the test signs.

#include "support/UpdaterOverHttps.h"

#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

namespace nocta {
namespace {

class UpdatesOverHttpsTest : public UpdaterOverHttps {
protected:
    void expectRefused(const std::string& error) {
        EXPECT_EQ(install(), error);
        EXPECT_TRUE(opened.empty());
        EXPECT_EQ(files(), std::vector<std::string>{});
    }
};

TEST_F(UpdatesOverHttpsTest, SignedReleaseReachesTheInstaller) {
    serve("/appcast.xml", appcast(release().item()));
    serve("/nocta.deb", file);
    EXPECT_EQ(install(), "");
    EXPECT_EQ(opened, std::vector{file});
    EXPECT_EQ(asked, (std::vector<std::string>{"/appcast.xml", "/nocta.deb"}));
    EXPECT_EQ(files(), std::vector{"nocta-1.3-" + std::to_string(getpid()) + ".deb"});
    EXPECT_EQ(std::filesystem::status(cache).permissions(), std::filesystem::perms::owner_all);
}

TEST_F(UpdatesOverHttpsTest, RequestsDoNotIdentifyTheUser) {
    serve("/appcast.xml", appcast(""));
    check();
    const auto host = server.address("").substr(std::string("https://").size());
    EXPECT_EQ(lastRequest, "GET /appcast.xml HTTP/1.1\r\nHost: " + host +
                               "\r\nAccept: */*\r\nUser-Agent: Nocta/1.2.3\r\n\r\n");
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
    for (const auto& [address, error] :
         {std::pair{plain.address() + "appcast.xml", "The address does not use HTTPS"},
          std::pair{std::string("file:///etc/passwd"), "The address does not use HTTPS"},
          std::pair{std::string("/appcast.xml"), "Too many redirects"}}) {
        redirect("/appcast.xml", address);
        expectRefused(error);
    }
    serve("/appcast.xml", appcast(release().item()));
    redirect("/nocta.deb", plain.address() + "nocta.deb");
    expectRefused("The address does not use HTTPS");
    EXPECT_EQ(plain.connections, 0);
}

TEST_F(UpdatesOverHttpsTest, InvalidFeedIsRejected) {
    for (const auto& [feed, error] : std::vector<std::pair<std::string, std::string>>{
             {"", "The feed is malformed"},
             {"hello", "The feed is malformed"},
             {appcast(release().item()).substr(0, 200), "The feed is malformed"},
             {"<html><p>Log in to the network", "The feed is not RSS"},
             {std::string(2 << 20, ' '), "The feed is too long"}}) {
        serve("/appcast.xml", feed);
        expectRefused(error);
    }
    answers["/appcast.xml"] = "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n<rss/>";
    expectRefused("The connection was lost");
    answers["/appcast.xml"] = "hello\r\n\r\n"; // not even HTTP
    EXPECT_NE(install(), "");
    for (const auto* const status : {"404 Not Found", "500 Error", "204 No Content"}) {
        answers["/appcast.xml"] =
            std::string("HTTP/1.1 ") + status + "\r\nConnection: close\r\n\r\n";
        expectRefused("The server answered with an error: " + std::string(status).substr(0, 3));
    }
}

TEST_F(UpdatesOverHttpsTest, CompressedFeedIsNotDecompressed) {
    const std::string packed = "\x1F\x8B packed";
    answers["/appcast.xml"] =
        "HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nConnection: close\r\n\r\n" + packed;
    expectRefused("The feed is malformed");
    for (const auto* const encoding :
         {"gzip", "GZIP", "deflate", "gzip, chunked", "chunked, gzip", "x", ""}) {
        answers["/appcast.xml"] = std::string("HTTP/1.1 200 OK\r\ntransfer-encoding:  ") +
                                  encoding + " \r\nConnection: close\r\n\r\n" + appcast("");
        expectRefused("The connection was lost");
    }
}

TEST_F(UpdatesOverHttpsTest, ChunkedFeedIsRead) {
    answers["/appcast.xml"] = "HTTP/1.1 200 OK\r\nTransfer-Encoding: Chunked\r\n\r\n6\r\n<rss/>"
                              "\r\n0\r\nTrailer: x\r\n\r\n";
    EXPECT_EQ(install(), "");
    EXPECT_TRUE(errors.empty());
    for (const auto* const body : {"5\r\n<rss/\r\nxyz\r\n", "6\r\n<rss/", "x\r\n"}) {
        answers["/appcast.xml"] =
            std::string("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n") + body;
        expectRefused("The connection was lost");
    }
}

TEST_F(UpdatesOverHttpsTest, ServerWithAnUntrustedCertificateIsRejected) {
    serve("/appcast.xml", appcast(release().item()));
    startWith(""); // only the system's authorities
    expectRefused("The server cannot be trusted");
    EXPECT_TRUE(asked.empty());
}

TEST_F(UpdatesOverHttpsTest, FileThatDiffersFromTheSignedOneIsRejected) {
    serve("/appcast.xml", appcast(release().item()));
    for (const auto& [other, error] :
         {std::pair{std::string(), "The file is shorter than the feed says"},
          std::pair{file.substr(1), "The file is shorter than the feed says"},
          std::pair{file + "x", "The file is longer than the feed says"},
          std::pair{"x" + file.substr(1), "The file is not signed by the publisher"}}) {
        serve("/nocta.deb", other);
        expectRefused(error);
    }
    answers.erase("/nocta.deb");
    expectRefused("The server answered with an error: 404");

    serve("/nocta.deb", file);
    for (const auto& signature : {Publisher().sign(file), std::string("c2ln")}) {
        auto item = release();
        item.signature = signature;
        serve("/appcast.xml", appcast(item.item()));
        expectRefused("The file is not signed by the publisher");
    }
    serveSigned("hello");
    expectRefused("The file is not a package");
}

TEST_F(UpdatesOverHttpsTest, OldPackageWithAValidSignatureIsRejected) {
    DebianFile old;
    old.version = "1.2.2-1";
    serveSigned(old.bytes());
    expectRefused("The package contains another version than the feed says");
    serveSigned(old.bytes(), "1.2.2");
    expectRefused("The package is not newer than this version");
}

TEST_F(UpdatesOverHttpsTest, OtherPackageWithAValidSignatureIsRejected) {
    DebianFile other;
    other.name = "nocta-server";
    serveSigned(other.bytes());
    expectRefused("The package does not contain Nocta");
    other = {};
    other.architecture = "arm64";
    serveSigned(other.bytes());
    expectRefused("The package is for another kind of computer");
}

TEST_F(UpdatesOverHttpsTest, FolderOfOthersIsNotUsed) {
    serve("/appcast.xml", appcast(release().item()));
    serve("/nocta.deb", file);
    std::filesystem::create_directory(cache);
    for (const auto permissions : {0755, 0770}) {
        std::filesystem::permissions(cache, static_cast<std::filesystem::perms>(permissions));
        expectRefused("The file cannot be saved: Permission denied");
    }
    std::filesystem::remove(cache);
    const TemporaryFolder elsewhere;
    std::filesystem::create_directory_symlink(elsewhere.path(), cache);
    expectRefused("The file cannot be saved: Not a directory");
    EXPECT_TRUE(std::filesystem::is_empty(elsewhere.path()));
    std::filesystem::remove(cache);
    writeFile(cache, "a file");
    EXPECT_EQ(install(), "The file cannot be saved: Not a directory");
    EXPECT_TRUE(opened.empty());
}

TEST_F(UpdatesOverHttpsTest, CanceledDownloadLeavesNoFile) {
    serve("/appcast.xml", appcast(release().item()));
    answers["/nocta.deb"] = "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(file.size()) +
                            "\r\n\r\n" + file.substr(0, file.size() / 2);
    check();
    stallsAfterAnswer = true;
    updater->install();
    ASSERT_TRUE(serveUntil([this] { return updater->downloadProgress.get() > 0.3; }));
    EXPECT_EQ(files().size(), 1U);
    updater->dismiss();
    EXPECT_EQ(files(), std::vector<std::string>{});
}

TEST_F(UpdatesOverHttpsTest, PartOfAnEarlierDownloadIsReplaced) {
    serve("/appcast.xml", appcast(release().item()));
    serve("/nocta.deb", file);
    std::filesystem::create_directory(cache);
    std::filesystem::permissions(cache, std::filesystem::perms::owner_all);
    const auto name = cache + "/nocta-1.3-" + std::to_string(getpid()) + ".deb";
    writeFile(name + ".part", "left by a process with the same number");
    writeFile(name, "old");
    EXPECT_EQ(install(), "");
    EXPECT_EQ(opened, std::vector{file});
}

} // namespace
} // namespace nocta
