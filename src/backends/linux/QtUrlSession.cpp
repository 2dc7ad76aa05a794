#include "backends/linux/QtUrlSession.h"

#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>
#include <QUrl>

#include <utility>

namespace nocta {

namespace {

constexpr qint64 bufferSize = 1 << 16;  // bytes; nobody wants the body of a response
constexpr qint64 largestBody = 1 << 20; // after that much of it the rest is not waited for

/// One task, from the request to its completion.
class Task final : public QObject {
public:
    Task(QNetworkAccessManager& manager, const UrlRequest& request,
         std::function<void(const UrlResponse&)> completion)
        : completion_(std::move(completion)) {
        timeout_.setSingleShot(true);
        connect(&timeout_, &QTimer::timeout, this,
                [this] { finish({.error = "It took too long"}); });
        timeout_.start(request.timeout);

        QNetworkRequest question(QUrl(QString::fromStdString(request.url), QUrl::StrictMode));
        question.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                              QNetworkRequest::NoLessSafeRedirectPolicy);
        for (const auto& [name, value] : request.headers) {
            question.setRawHeader(QByteArray::fromStdString(name),
                                  QByteArray::fromStdString(value));
        }
        if (question.url().scheme() != QStringLiteral("https")) {
            QTimer::singleShot(0, this,
                               [this] { finish({.error = "The address is not encrypted"}); });
            return;
        }
        reply_.reset(manager.sendCustomRequest(question, QByteArray::fromStdString(request.method),
                                               QByteArray::fromStdString(request.body)));
        reply_->setReadBufferSize(bufferSize);
        connect(reply_.get(), &QNetworkReply::readyRead, this, [this] { discardBody(); });
        connect(reply_.get(), &QNetworkReply::finished, this, [this] { finishWithReply(); });
    }

private:
    struct Later {
        void operator()(QNetworkReply* reply) const {
            reply->disconnect();
            reply->abort();
            reply->deleteLater(); // it may be what calls
        }
    };

    void discardBody() {
        received_ += reply_->skip(reply_->bytesAvailable());
        if (received_ > largestBody) {
            finishWithReply();
        }
    }

    /// A response is one whatever its status; Qt takes those from 400 on for errors.
    void finishWithReply() {
        const auto status = reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute);
        const auto isBroken = reply_->error() != QNetworkReply::NoError &&
                              reply_->error() < QNetworkReply::ContentAccessDenied;
        if (status.isValid() && !isBroken) {
            finish({.statusCode = status.toInt()});
        } else {
            finish({.error = reply_->errorString().toStdString()});
        }
    }

    void finish(const UrlResponse& response) {
        timeout_.stop();
        reply_.reset();
        if (const auto completion = std::exchange(completion_, nullptr)) {
            completion(response); // and it may be the end of this
        }
    }

    std::function<void(const UrlResponse&)> completion_;
    QTimer timeout_;
    qint64 received_ = 0;
    std::unique_ptr<QNetworkReply, Later> reply_;
};

} // namespace

Subscription QtUrlSession::dataTask(const UrlRequest& request,
                                    std::function<void(const UrlResponse&)> completion) {
    if (manager_ == nullptr) {
        manager_ = std::make_unique<QNetworkAccessManager>();
    }
    auto task = std::make_shared<Task>(*manager_, request, std::move(completion));
    return Subscription([task]() mutable { task.reset(); });
}

} // namespace nocta
