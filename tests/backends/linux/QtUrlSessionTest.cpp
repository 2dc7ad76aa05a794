#include "backends/linux/QtUrlSession.h"

#include "support/EventLoop.h"
#include "support/Process.h"

#include <QFile>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QSslSocket>
#include <QTimer>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace nocta {
namespace {

using namespace std::chrono_literals;

/// An HTTPS server on loopback, with a certificate of its own that nobody knows yet.
class HttpsServer {
public:
    HttpsServer() {
        const auto key = folder_.path() + "/key.pem";
        const auto certificate = folder_.path() + "/certificate.pem";
        EXPECT_EQ(runToEnd({"openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days",
                            "1", "-subj", "/CN=localhost", "-addext",
                            "subjectAltName=DNS:localhost", "-keyout", key, "-out", certificate}),
                  0);
        certificate_ = QSslCertificate::fromPath(QString::fromStdString(certificate)).value(0);
        QFile keyFile(QString::fromStdString(key));
        EXPECT_TRUE(keyFile.open(QIODevice::ReadOnly));
        auto configuration = QSslConfiguration::defaultConfiguration();
        configuration.setLocalCertificate(certificate_);
        configuration.setPrivateKey(QSslKey(&keyFile, QSsl::Rsa));
        server_.setSslConfiguration(configuration);
        EXPECT_TRUE(server_.listen(QHostAddress::LocalHost));
        QObject::connect(&server_, &QSslServer::pendingConnectionAvailable, &server_, [this] {
            auto* const socket = server_.nextPendingConnection();
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                request += socket->readAll().toStdString();
                const auto head = request.find("\r\n\r\n");
                if (head != std::string::npos && respond) {
                    respond(*socket);
                }
            });
        });
    }

    std::string request;
    std::function<void(QTcpSocket&)> respond;

    const QSslCertificate& certificate() const { return certificate_; }
    std::string address(const std::string& path = "/api/feedback") const {
        return "https://localhost:" + std::to_string(server_.serverPort()) + path;
    }
    void answer(const QByteArray& status, const QByteArray& headers = {}) {
        respond = [status, headers](QTcpSocket& socket) {
            socket.write("HTTP/1.1 " + status + "\r\n" + headers +
                         "Content-Length: 0\r\nConnection: close\r\n\r\n");
        };
    }

private:
    TemporaryFolder folder_;
    QSslCertificate certificate_;
    QSslServer server_;
};

class QtUrlSessionTest : public ::testing::Test {
protected:
    HttpsServer server;
    QSslConfiguration before = QSslConfiguration::defaultConfiguration();
    QtUrlSession session;
    int completions = 0;
    Subscription task;

    void SetUp() override {
        auto trusting = before;
        trusting.addCaCertificate(server.certificate());
        QSslConfiguration::setDefaultConfiguration(trusting);
    }
    void TearDown() override { QSslConfiguration::setDefaultConfiguration(before); }

    UrlResponse post(const std::string& url, std::chrono::milliseconds timeout = 20s) {
        std::optional<UrlResponse> response;
        task = session.dataTask({.url = url,
                                 .method = "POST",
                                 .headers = {{"Content-Type", "application/json"}},
                                 .body = R"({"message":"hello"})",
                                 .timeout = timeout},
                                [&](const UrlResponse& answer) {
                                    ++completions;
                                    response = answer;
                                });
        EXPECT_FALSE(response.has_value()) << "from the run loop";
        EXPECT_TRUE(serveUntil([&] { return response.has_value(); }));
        EXPECT_NE(response->statusCode.has_value(), response->error.has_value());
        return response.value_or(UrlResponse{});
    }
};

TEST_F(QtUrlSessionTest, PostsOverAnEncryptedConnection) {
    server.answer("200 OK");
    EXPECT_EQ(post(server.address()).statusCode, 200);
    EXPECT_TRUE(server.request.starts_with("POST /api/feedback HTTP/1.1\r\n"));
    EXPECT_NE(server.request.find("Content-Type: application/json\r\n"), std::string::npos);
    EXPECT_TRUE(server.request.ends_with("\r\n\r\n{\"message\":\"hello\"}"));
}

TEST_F(QtUrlSessionTest, EveryStatusIsAResponse) {
    for (const auto status : {201, 204, 400, 403, 404, 500, 503}) {
        server.request.clear();
        server.answer(QByteArray::number(status) + " Status");
        EXPECT_EQ(post(server.address()).statusCode, status);
    }
}

TEST_F(QtUrlSessionTest, RedirectionIsFollowedWhereItIsEncrypted) {
    server.respond = [this](QTcpSocket& socket) {
        const auto isFirst = server.request.find(" /elsewhere ") == std::string::npos;
        socket.write(isFirst ? "HTTP/1.1 302 Found\r\nLocation: /elsewhere\r\nContent-Length: 0\r\n"
                               "Connection: close\r\n\r\n"
                             : "HTTP/1.1 200 OK\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
    };
    EXPECT_EQ(post(server.address()).statusCode, 200);
    server.request.clear();
    server.answer("302 Found", "Location: http://localhost/\r\n");
    EXPECT_TRUE(post(server.address()).error.has_value());
}

TEST_F(QtUrlSessionTest, RedirectionsWithoutEndAreLeft) {
    server.answer("302 Found", "Location: /api/feedback\r\n");
    EXPECT_TRUE(post(server.address()).error.has_value());
}

TEST_F(QtUrlSessionTest, AddressThatIsNotEncryptedIsRefused) {
    for (const auto* const address : {"http://localhost/", "ftp://localhost/", "nonsense", "",
                                      "file:///etc/passwd", "https//localhost"}) {
        EXPECT_EQ(post(address).error, "The address is not encrypted") << address;
    }
}

TEST_F(QtUrlSessionTest, CertificateThatNobodyKnowsIsRefused) {
    QSslConfiguration::setDefaultConfiguration(before);
    server.answer("200 OK");
    EXPECT_TRUE(post(server.address()).error.has_value());
    EXPECT_EQ(server.request, "") << "nothing was told";
}

TEST_F(QtUrlSessionTest, HostThatIsNotThereIsAnError) {
    EXPECT_TRUE(post("https://nocta.invalid/").error.has_value());
    EXPECT_TRUE(post("https://localhost:1/").error.has_value());
}

TEST_F(QtUrlSessionTest, ServerThatSaysNothingIsLeft) {
    EXPECT_EQ(post(server.address(), 300ms).error, "It took too long");
    EXPECT_EQ(completions, 1);
}

TEST_F(QtUrlSessionTest, ServerThatDripsIsLeft) {
    server.respond = [](QTcpSocket& socket) {
        socket.write("HTTP/1.1 200 OK\r\nX-Drip: ");
        QObject::connect(&socket, &QTcpSocket::bytesWritten, &socket, [&socket] {
            QTimer::singleShot(20, &socket, [&socket] { socket.write("."); });
        });
    };
    EXPECT_EQ(post(server.address(), 500ms).error, "It took too long");
}

TEST_F(QtUrlSessionTest, BodyWithoutEndIsNotWaitedFor) {
    server.respond = [](QTcpSocket& socket) {
        socket.write("HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n");
        auto* const tap = new QTimer(&socket);
        QObject::connect(tap, &QTimer::timeout, &socket, [&socket] {
            if (socket.bytesToWrite() < 1 << 20) {
                socket.write(QByteArray(1 << 16, 'x'));
            }
        });
        tap->start();
    };
    EXPECT_EQ(post(server.address()).statusCode, 200);
}

TEST_F(QtUrlSessionTest, ConnectionThatBreaksIsAnError) {
    server.respond = [](QTcpSocket& socket) { socket.abort(); };
    EXPECT_TRUE(post(server.address()).error.has_value());
}

TEST_F(QtUrlSessionTest, TaskThatIsDroppedIsNotCompleted) {
    server.answer("200 OK");
    task = session.dataTask(
        {.url = server.address(), .method = "POST", .headers = {}, .body = {}, .timeout = 20s},
        [&](const UrlResponse& /*answer*/) { ++completions; });
    task.cancel();
    EXPECT_EQ(post(server.address()).statusCode, 200);
    EXPECT_EQ(completions, 1) << "of the second";
}

} // namespace
} // namespace nocta
