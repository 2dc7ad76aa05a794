#include "base/Checked.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace nocta {

namespace {

const FaultContext* innermostContext = nullptr;
std::string originAdvice;

std::string textOf(const Origin& origin) {
    std::array<char, 32> digits{};
    const auto end = std::visit(
        [&](auto value) { return std::to_chars(digits.begin(), digits.end(), value).ptr; },
        origin.value);
    return std::string(origin.key) + " is " + std::string(digits.begin(), end);
}

} // namespace

FaultContext::FaultContext(std::vector<Origin> origins)
    : origins_(std::move(origins)), outer_(std::exchange(innermostContext, this)) {}

FaultContext::~FaultContext() {
    innermostContext = outer_;
}

void setOriginAdvice(std::string advice) {
    originAdvice = std::move(advice);
}

void stopProgram(std::string_view reason) {
    std::string origins;
    if (innermostContext != nullptr) {
        for (const auto& origin : innermostContext->origins()) {
            origins += (origins.empty() ? "" : ", ") + textOf(origin);
        }
    }
    auto message = origins.empty() ? std::string(reason) : origins + ": " + std::string(reason);
    if (!origins.empty() && !originAdvice.empty()) {
        message += "; " + originAdvice;
    }
    std::fprintf(stderr, "nocta: stopped: %s\n", message.c_str());
    std::abort();
}

} // namespace nocta
