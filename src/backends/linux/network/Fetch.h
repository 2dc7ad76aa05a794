#pragma once

#include "backends/linux/fetch/FetchProtocol.h"
#include "base/RunLoop.h"
#include "base/Subscription.h"

#include <nlohmann/json_fwd.hpp>

#include <chrono>
#include <functional>
#include <string>

namespace nocta {

/// What to call for the answers of nocta-fetch.
struct FetchHandlers {
    std::function<void(const AppcastItem&)> item{};
    std::function<void(const FetchProgress&)> progress{};
    std::function<void(const FetchAnswer&)> end{}; ///< gets the last answer
};

/// Runs nocta-fetch with one request, and calls the handlers from the run loop. A helper that dies,
/// exceeds the timeout or sends an answer without a handler counts as a failed job. When `end` is
/// called, the helper no longer exists; canceling the subscription kills it as well.
Subscription fetch(RunLoop& runLoop, const nlohmann::json& request,
                   std::chrono::milliseconds timeout, FetchHandlers handlers);

/// Returns the error as one translatable line. It contains no text from the server.
std::string textOf(const FetchFailure& failure);

} // namespace nocta
