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

/// One of the two: the status of an HTTP response, or why there is none.
struct UrlResponse {
    std::optional<int> statusCode{};
    std::optional<std::string> error{}; ///< in the words of the desktop
};

/// Loads addresses over the network. Stands for NSURLSession.
class UrlSession {
public:
    using Completion = std::function<void(const UrlResponse& response)>;
    using DidReceiveData = std::function<void(std::string_view data)>;

    virtual ~UrlSession() = default;

    /// `completion` is called once, from the run loop, unless what is returned has gone: that ends
    /// the task, at any time. The body of the response is given to `didReceiveData` as it comes,
    /// in pieces; without that it is dropped, and one of more than 1 MiB not waited for.
    /// Redirections are followed, but never to an address that is not encrypted. Stands for
    /// dataTaskWithRequest:completionHandler:, URLSession:dataTask:didReceiveData: and resume.
    virtual Subscription dataTask(const UrlRequest& request, Completion completion,
                                  DidReceiveData didReceiveData) = 0;
};

} // namespace nocta
