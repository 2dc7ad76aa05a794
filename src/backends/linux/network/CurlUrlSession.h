#pragma once

#include "base/RunLoop.h"
#include "platform/UrlSession.h"

#include <string>

namespace nocta {

/// Sends requests through nocta-fetch, with one process for each task. Only HTTPS with verified
/// certificates is allowed. The memory of this process does not grow, no matter how much the server
/// sends.
class CurlUrlSession final : public UrlSession {
public:
    /// `certificates` is a file of trusted authorities that replaces the system's.
    explicit CurlUrlSession(RunLoop& runLoop, std::string certificates = {});

    Subscription dataTask(const UrlRequest& request, Completion completion) override;

private:
    RunLoop& runLoop_;
    std::string certificates_;
};

} // namespace nocta
