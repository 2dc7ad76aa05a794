#pragma once

#include "base/Subscription.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
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

/// Loads URLs over the network. Corresponds to NSURLSession on macOS.
///
///     task_ = urlSession.dataTask({.url = "https://…", .method = "GET", .timeout = 60s},
///                                 [this](const UrlResponse& response) { finish(response); },
///                                 [this](std::string_view data) { body_ += data; });
class UrlSession {
public:
    using Completion = std::function<void(const UrlResponse& response)>;
    using DidReceiveData = std::function<void(std::string_view data)>;

    virtual ~UrlSession() = default;

    /// Calls `completion` once, from the run loop. Destroy the returned subscription to cancel the
    /// task. `didReceiveData` gets the body of the response in one or more pieces before
    /// `completion` is called. If `didReceiveData` is null, the body is dropped, and the task may
    /// complete before all of it has arrived. Redirects are followed, but never to an unencrypted
    /// URL. Corresponds to dataTaskWithRequest:completionHandler:,
    /// URLSession:dataTask:didReceiveData: and resume on macOS.
    virtual Subscription dataTask(const UrlRequest& request, Completion completion,
                                  DidReceiveData didReceiveData) = 0;
};

} // namespace nocta
