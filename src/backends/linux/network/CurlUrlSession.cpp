#include "backends/linux/network/CurlUrlSession.h"

#include "backends/linux/network/Fetch.h"

#include <nlohmann/json.hpp>

#include <utility>
#include <variant>

namespace nocta {

namespace {

UrlResponse responseOf(const FetchAnswer& answer) {
    if (const auto* const status = std::get_if<FetchStatus>(&answer)) {
        return {.statusCode = status->code};
    }
    const auto* const failure = std::get_if<FetchFailure>(&answer);
    return {.error = textOf(failure != nullptr ? *failure : FetchFailure{})};
}

} // namespace

CurlUrlSession::CurlUrlSession(RunLoop& runLoop, std::string certificates)
    : runLoop_(runLoop), certificates_(std::move(certificates)) {}

Subscription CurlUrlSession::dataTask(const UrlRequest& request, Completion completion) {
    auto headers = nlohmann::json::array();
    for (const auto& [name, value] : request.headers) {
        headers.push_back(name + ": " + value);
    }
    nlohmann::json job = {{"job", "send"},
                          {"url", request.url},
                          {"headers", headers},
                          {"body", nullptr},
                          {"certificates", certificates_}};
    if (request.method == "POST") {
        job["body"] = request.body;
    }
    return fetch(runLoop_, job, request.timeout,
                 {.end = [completion = std::move(completion)](const FetchAnswer& answer) {
                     completion(responseOf(answer));
                 }});
}

} // namespace nocta
