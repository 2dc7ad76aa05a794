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

/// One of the two: the status of an HTTP response, or why there is none.
struct UrlResponse {
    std::optional<int> statusCode{};
    std::optional<std::string> error{}; ///< in the words of the desktop
};

/// Loads addresses over the network. Stands for NSURLSession.
class UrlSession {
public:
    virtual ~UrlSession() = default;

    /// `completion` is called once, from the run loop, unless what is returned has gone: that ends
    /// the task. Redirections are followed, but never to an address that is not encrypted. Stands
    /// for dataTaskWithRequest:completionHandler: and resume.
    virtual Subscription dataTask(const UrlRequest& request,
                                  std::function<void(const UrlResponse&)> completion) = 0;
};

} // namespace nocta
