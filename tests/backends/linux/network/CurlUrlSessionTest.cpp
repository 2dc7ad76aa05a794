#include "backends/linux/network/CurlUrlSession.h"

#include "backends/linux/shell/QtRunLoop.h"
#include "contracts/UrlSessionContract.h"
#include "support/EventLoop.h"
#include "support/HttpsServer.h"

#include <QTimer>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace nocta {

using namespace std::chrono_literals;

struct CurlUrlSessionHarness {
    HttpsServer server;
    QtRunLoop runLoop;
    CurlUrlSession session{runLoop, server.certificate.file()};

    UrlSession& urlSession() { return session; }
    UrlRequest request() const {
        return {
            .url = server.address(), .method = "GET", .headers = {}, .body = {}, .timeout = 20s};
    }
    void answer(int status, const std::string& body) {
        server.respond = [status, body](QTcpSocket& socket) {
            socket.write("HTTP/1.1 " + QByteArray::number(status) +
                         " Status\r\nConnection: close\r\n\r\n" + QByteArray::fromStdString(body));
            socket.disconnectFromHost();
        };
    }
    void breakConnections() {
        server.respond = [](QTcpSocket& socket) { socket.abort(); };
    }
    static bool runUntil(const std::function<bool()>& condition) { return serveUntil(condition); }
};

INSTANTIATE_TYPED_TEST_SUITE_P(Curl, UrlSessionContract, CurlUrlSessionHarness);

namespace {

/// Writes the block repeatedly, as fast as the client reads.
void pour(QTcpSocket& socket, const QByteArray& block) {
    auto* const tap = new QTimer(&socket);
    QObject::connect(tap, &QTimer::timeout, &socket, [&socket, block] {
        if (socket.bytesToWrite() < 1 << 20) {
            socket.write(block);
        }
    });
    tap->start();
}

class CurlUrlSessionTest : public ::testing::Test {
protected:
    HttpsServer server;
    QtRunLoop runLoop;
    CurlUrlSession session{runLoop, server.certificate.file()};
    int completions = 0;
    Subscription task;

    UrlResponse post(const std::string& url, std::chrono::milliseconds timeout = 20s) {
        return postBy(session, url, timeout);
    }
    UrlResponse postBy(CurlUrlSession& by, const std::string& url,
                       std::chrono::milliseconds timeout = 20s) {
        std::optional<UrlResponse> response;
        task = by.dataTask({.url = url,
                            .method = "POST",
                            .headers = {{"Content-Type", "application/json"}},
                            .body = R"({"message":"hello"})",
                            .timeout = timeout},
                           [&](const UrlResponse& answer) {
                               ++completions;
                               response = answer;
                           });
        EXPECT_FALSE(response.has_value()) << "the completion should come from the run loop";
        EXPECT_TRUE(serveUntil([&] { return response.has_value(); }));
        EXPECT_NE(response->statusCode.has_value(), response->error.has_value());
        return response.value_or(UrlResponse{});
    }
};

TEST_F(CurlUrlSessionTest, PostsOverAnEncryptedConnection) {
    server.answer("200 OK");
    EXPECT_EQ(post(server.address()).statusCode, 200);
    EXPECT_TRUE(server.request.starts_with("POST /api/feedback HTTP/1.1\r\n"));
    EXPECT_NE(server.request.find("Content-Type: application/json\r\n"), std::string::npos);
    EXPECT_TRUE(server.request.ends_with("\r\n\r\n{\"message\":\"hello\"}"));
}

TEST_F(CurlUrlSessionTest, EncryptedRedirectIsFollowed) {
    server.respond = [this](QTcpSocket& socket) {
        const auto isFirst = server.request.find(" /elsewhere ") == std::string::npos;
        socket.write(isFirst ? "HTTP/1.1 302 Found\r\nLocation: /elsewhere\r\nContent-Length: 0\r\n"
                               "Connection: close\r\n\r\n"
                             : "HTTP/1.1 200 OK\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
    };
    EXPECT_EQ(post(server.address()).statusCode, 200);
    const auto second = server.request.find("POST /elsewhere ");
    ASSERT_NE(second, std::string::npos) << server.request;
    EXPECT_NE(server.request.find("hello", second), std::string::npos)
        << "the message should not be lost";
}

TEST_F(CurlUrlSessionTest, UnencryptedRedirectIsRejected) {
    const PlainServer plain;
    server.answer("302 Found", "Location: " + QByteArray::fromStdString(plain.address()) + "\r\n");
    EXPECT_EQ(post(server.address()).error, "The address does not use HTTPS");
    for (const auto* const address :
         {"file:///etc/passwd", "ftp://localhost/", "dict://localhost/"}) {
        server.request.clear();
        server.answer("302 Found", QByteArray("Location: ") + address + "\r\n");
        EXPECT_TRUE(post(server.address()).error.has_value()) << address;
    }
    EXPECT_EQ(plain.connections, 0);
}

TEST_F(CurlUrlSessionTest, RedirectLoopIsAnError) {
    server.answer("302 Found", "Location: /api/feedback\r\n");
    EXPECT_EQ(post(server.address()).error, "Too many redirects");
}

TEST_F(CurlUrlSessionTest, UnencryptedAddressIsRejected) {
    for (const auto* const address : {"http://localhost/", "ftp://localhost/", "nonsense", "",
                                      "file:///etc/passwd", "https//localhost"}) {
        EXPECT_EQ(post(address).error, "The address does not use HTTPS") << address;
    }
}

TEST_F(CurlUrlSessionTest, UntrustedCertificateIsRejected) {
    CurlUrlSession distrustful(runLoop);
    server.answer("200 OK");
    EXPECT_EQ(postBy(distrustful, server.address()).error, "The server cannot be trusted");
    EXPECT_EQ(server.request, "") << "the client should not send anything";
}

TEST_F(CurlUrlSessionTest, UnreachableServerIsAnError) {
    EXPECT_EQ(post("https://nocta.invalid/").error, "The server was not found");
    EXPECT_EQ(post("https://localhost:1/").error, "The server cannot be reached");
}

TEST_F(CurlUrlSessionTest, SilentServerTimesOut) {
    EXPECT_EQ(post(server.address(), 300ms).error, "It took too long");
    EXPECT_EQ(completions, 1);
}

TEST_F(CurlUrlSessionTest, SlowServerTimesOut) {
    server.respond = [](QTcpSocket& socket) {
        socket.write("HTTP/1.1 200 OK\r\nX-Drip: ");
        QObject::connect(&socket, &QTcpSocket::bytesWritten, &socket, [&socket] {
            QTimer::singleShot(20, &socket, [&socket] { socket.write("."); });
        });
    };
    EXPECT_EQ(post(server.address(), 500ms).error, "It took too long");
}

TEST_F(CurlUrlSessionTest, IgnoredEndlessBodyDoesNotDelayTheCompletion) {
    server.respond = [](QTcpSocket& socket) {
        socket.write("HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n");
        pour(socket, QByteArray(1 << 16, 'x'));
    };
    EXPECT_EQ(post(server.address()).statusCode, 200);
}

TEST_F(CurlUrlSessionTest, RequestsDoNotIdentifyTheUser) {
    server.answer("200 OK", "Set-Cookie: who=me\r\n");
    post(server.address());
    server.request.clear();
    post(server.address());
    const auto host = server.address("").substr(std::string("https://").size());
    EXPECT_EQ(server.request, "POST /api/feedback HTTP/1.1\r\nHost: " + host +
                                  "\r\nAccept: */*\r\nContent-Type: application/json\r\n"
                                  "Content-Length: 19\r\n\r\n{\"message\":\"hello\"}");
}

TEST_F(CurlUrlSessionTest, InvalidResponseIsAnError) {
    for (const auto* const said :
         {"hello\r\n\r\n", "", "HTTP/1.1 200 OK\r\nContent-Length: x\r\n\r\nhello"}) {
        server.request.clear();
        server.respond = [said](QTcpSocket& socket) {
            socket.write(said);
            socket.disconnectFromHost();
        };
        EXPECT_TRUE(post(server.address()).error.has_value()) << said;
    }
}

TEST_F(CurlUrlSessionTest, EndlessHeaderIsAnError) {
    for (const auto* const piece : {"x", "Field: x\r\n"}) {
        server.request.clear();
        server.respond = [piece](QTcpSocket& socket) {
            socket.write("HTTP/1.1 200 OK\r\nLong: ");
            pour(socket, QByteArray(piece).repeated(1 << 12));
        };
        EXPECT_EQ(post(server.address()).error, "The connection was lost") << piece;
    }
}

} // namespace
} // namespace nocta
