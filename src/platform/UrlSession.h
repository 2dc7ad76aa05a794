#pragma once

#include "base/Subscription.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace nocta {

struct UrlRequest {
    std::string url; ///< https
    std::string method;
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;
    std::chrono::milliseconds timeout{};
};

/// Exactly one member has a value: the status of an HTTP response, or the reason why there is no
/// response.
struct UrlResponse {
    std::optional<int> statusCode{};
    std::optional<std::string> error{}; ///< a message from the desktop
};

/// Sends requests over the network. Only the status of the response is reported; its body is
/// dropped. Corresponds to NSURLSession on macOS.
///
///     task_ = urlSession.dataTask({.url = "https://…", .method = "POST", .timeout = 60s},
///                                 [this](const UrlResponse& response) { finish(response); });
class UrlSession {
public:
    using Completion = std::function<void(const UrlResponse& response)>;

    virtual ~UrlSession() = default;

    /// Calls `completion` once, from the run loop. Destroy the returned subscription to cancel the
    /// task. Redirects are followed, but never to an unencrypted URL. Corresponds to
    /// dataTaskWithRequest:completionHandler: and resume on macOS.
    virtual Subscription dataTask(const UrlRequest& request, Completion completion) = 0;
};

} // namespace nocta
