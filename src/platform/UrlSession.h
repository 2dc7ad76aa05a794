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

/// Has exactly one of the two: the status of an HTTP response, or the reason why there is none.
struct UrlResponse {
    std::optional<int> statusCode{};
    std::optional<std::string> error{}; ///< a text from the desktop
};

/// Loads URLs over the network. Stands for NSURLSession.
///
///     task_ = urlSession.dataTask({.url = "https://…", .method = "GET", .timeout = 60s},
///                                 [this](const UrlResponse& response) { finish(response); },
///                                 [this](std::string_view data) { body_ += data; });
class UrlSession {
public:
    using Completion = std::function<void(const UrlResponse& response)>;
    using DidReceiveData = std::function<void(std::string_view data)>;

    virtual ~UrlSession() = default;

    /// Calls `completion` once, from the run loop. Destroying the returned subscription cancels the
    /// task at any time. `didReceiveData` gets the body of the response in pieces as it arrives.
    /// Without it the body is dropped, and the task does not wait for more than 1 MiB of it.
    /// Redirects are followed, but never to an unencrypted URL. Stands for
    /// dataTaskWithRequest:completionHandler:, URLSession:dataTask:didReceiveData: and resume.
    virtual Subscription dataTask(const UrlRequest& request, Completion completion,
                                  DidReceiveData didReceiveData) = 0;
};

} // namespace nocta
