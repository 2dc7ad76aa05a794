#pragma once

#include "base/RunLoop.h"
#include "platform/UrlSession.h"

#include <string>

namespace nocta {

/// The network by nocta-fetch, one process for each task: HTTPS alone, certificates checked. The
/// memory of this process does not grow with what a server sends, head or body.
class CurlUrlSession final : public UrlSession {
public:
    /// `certificates` is a file of the authorities that are trusted in place of the system's.
    explicit CurlUrlSession(RunLoop& runLoop, std::string certificates = {});

    Subscription dataTask(const UrlRequest& request, Completion completion,
                          DidReceiveData didReceiveData) override;

private:
    RunLoop& runLoop_;
    std::string certificates_;
};

} // namespace nocta
