#include "backends/linux/QtUrlSession.h"

#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPointer>
#include <QTimer>
#include <QUrl>

#include <utility>

namespace nocta {

namespace {

constexpr qint64 bufferSize = 1 << 16;         // bytes
constexpr qint64 largestDroppedBody = 1 << 20; // the rest is not waited for

/// One task, from the request to its completion.
class Task final : public QObject {
public:
    Task(QNetworkAccessManager& manager, const UrlRequest& request,
         UrlSession::Completion completion, UrlSession::DidReceiveData didReceiveData)
        : completion_(std::move(completion)), didReceiveData_(std::move(didReceiveData)) {
        timeout_.setSingleShot(true);
        connect(&timeout_, &QTimer::timeout, this,
                [this] { finish({.error = "It took too long"}); });
        timeout_.start(request.timeout);

        QNetworkRequest question(QUrl(QString::fromStdString(request.url), QUrl::StrictMode));
        question.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                              QNetworkRequest::NoLessSafeRedirectPolicy);
        // Only the older protocol minds the size of the buffer, and only what was not compressed
        // is as large as it seems.
        question.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
        question.setRawHeader("Accept-Encoding", "identity");
        for (const auto attribute : {QNetworkRequest::CookieLoadControlAttribute,
                                     QNetworkRequest::CookieSaveControlAttribute,
                                     QNetworkRequest::AuthenticationReuseAttribute}) {
            question.setAttribute(attribute, QNetworkRequest::Manual); // nobody is recognised
        }
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
        // Now there is nobody yet who would mind it.
        connect(reply_.get(), &QNetworkReply::metaDataChanged, reply_.get(),
                [reply = reply_.get()] { reply->setReadBufferSize(bufferSize); });
        connect(reply_.get(), &QNetworkReply::readyRead, this, [this] { receive(); });
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

    void receive() {
        if (didReceiveData_ == nullptr) {
            dropped_ += reply_->skip(reply_->bytesAvailable());
            if (dropped_ > largestDroppedBody) {
                finishWithStatus();
            }
            return;
        }
        const auto didReceiveData = didReceiveData_;
        const QPointer<Task> alive(this);
        while (alive && reply_->bytesAvailable() > 0) { // whoever receives may end the task
            const auto data = reply_->read(bufferSize);
            didReceiveData({data.constData(), static_cast<std::size_t>(data.size())});
        }
    }

    void finishWithReply() {
        const QPointer<Task> alive(this);
        receive(); // what came last
        if (alive && reply_ != nullptr) {
            finishWithStatus();
        }
    }

    /// A response is one whatever its status; Qt takes those from 400 on for errors.
    void finishWithStatus() {
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

    UrlSession::Completion completion_;
    UrlSession::DidReceiveData didReceiveData_;
    QTimer timeout_;
    qint64 dropped_ = 0;
    std::unique_ptr<QNetworkReply, Later> reply_;
};

} // namespace

Subscription QtUrlSession::dataTask(const UrlRequest& request, Completion completion,
                                    DidReceiveData didReceiveData) {
    if (manager_ == nullptr) {
        manager_ = std::make_unique<QNetworkAccessManager>();
    }
    auto task = std::make_shared<Task>(*manager_, request, std::move(completion),
                                       std::move(didReceiveData));
    return Subscription([task]() mutable { task.reset(); });
}

} // namespace nocta
