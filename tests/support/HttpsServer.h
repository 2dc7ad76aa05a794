#pragma once

#include "support/Process.h"

#include <QFile>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QSslSocket>
#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace nocta {

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

/// Takes the server's certificate for one of the system's.
class TrustIn {
public:
    explicit TrustIn(const HttpsServer& server) {
        auto trusting = before_;
        trusting.addCaCertificate(server.certificate());
        QSslConfiguration::setDefaultConfiguration(trusting);
    }
    TrustIn(const TrustIn&) = delete;
    TrustIn& operator=(const TrustIn&) = delete;
    ~TrustIn() { QSslConfiguration::setDefaultConfiguration(before_); }

private:
    QSslConfiguration before_ = QSslConfiguration::defaultConfiguration();
};

} // namespace nocta
