#pragma once

#include "base/RunLoop.h"
#include "platform/UrlSession.h"

#include <string>

namespace nocta {

/// The network through nocta-fetch, one process for each task: HTTPS only, with checked
/// certificates. The memory of this process does not grow with what a server sends, in the header
/// or the body.
class CurlUrlSession final : public UrlSession {
public:
    /// `certificates` is a file of trusted authorities that replaces the system's.
    explicit CurlUrlSession(RunLoop& runLoop, std::string certificates = {});

    Subscription dataTask(const UrlRequest& request, Completion completion,
                          DidReceiveData didReceiveData) override;

private:
    RunLoop& runLoop_;
    std::string certificates_;
};

} // namespace nocta
