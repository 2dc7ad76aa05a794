#include "base/Checked.h"

#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <limits>
#include <sstream>
#include <utility>

namespace nocta {

namespace {

const FaultContext* innermostContext = nullptr;
std::string originAdvice;

std::string textOf(const Origin& origin) {
    std::ostringstream text;
    text << std::setprecision(std::numeric_limits<double>::digits10) << origin.key << " is ";
    std::visit([&](auto value) { text << value; }, origin.value);
    return text.str();
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
    std::cerr << "nocta: stopped: " << message << std::endl;
    std::abort();
}

} // namespace nocta
