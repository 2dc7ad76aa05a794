#pragma once

#include "platform/UrlSession.h"

#include <QNetworkAccessManager>

#include <memory>

namespace nocta {

/// The network by Qt: HTTPS alone, certificates checked against those of the system.
class QtUrlSession final : public UrlSession {
public:
    Subscription dataTask(const UrlRequest& request, Completion completion,
                          DidReceiveData didReceiveData) override;

private:
    std::unique_ptr<QNetworkAccessManager> manager_; ///< made for the first task
};

} // namespace nocta
