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

/// A self-signed certificate for a server on loopback. No client trusts it by default.
class ServerCertificate {
public:
    ServerCertificate() {
        EXPECT_EQ(runToEnd({"openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days",
                            "1", "-subj", "/CN=localhost", "-addext",
                            "subjectAltName=DNS:localhost", "-keyout", keyFile(), "-out", file()}),
                  0);
    }

    std::string file() const { return folder_.path() + "/certificate.pem"; }
    std::string keyFile() const { return folder_.path() + "/key.pem"; }

private:
    TemporaryFolder folder_;
};

/// An HTTPS server on loopback that sends the responses set by the test.
class HttpsServer {
public:
    HttpsServer() {
        QFile key(QString::fromStdString(certificate.keyFile()));
        EXPECT_TRUE(key.open(QIODevice::ReadOnly));
        auto configuration = QSslConfiguration::defaultConfiguration();
        configuration.setLocalCertificate(
            QSslCertificate::fromPath(QString::fromStdString(certificate.file())).value(0));
        configuration.setPrivateKey(QSslKey(&key, QSsl::Rsa));
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

    const ServerCertificate certificate;
    std::string request;
    std::function<void(QTcpSocket&)> respond;

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
    QSslServer server_;
};

/// A server without encryption, which no client should contact.
class PlainServer {
public:
    PlainServer() {
        EXPECT_TRUE(server_.listen(QHostAddress::LocalHost));
        QObject::connect(&server_, &QTcpServer::newConnection, &server_, [this] {
            ++connections;
            auto* const socket = server_.nextPendingConnection();
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [socket] {
                socket->write("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
            });
        });
    }

    int connections = 0;

    std::string address() const {
        return "http://localhost:" + std::to_string(server_.serverPort()) + "/";
    }

private:
    QTcpServer server_;
};

} // namespace nocta
