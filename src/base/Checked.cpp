#include "base/Checked.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace nocta {

namespace {

std::string originAdvice;

std::string textOf(const Origin& origin) {
    std::array<char, 32> digits{};
    const auto end = std::visit(
        [&](auto value) { return std::to_chars(digits.begin(), digits.end(), value).ptr; },
        origin.value);
    return std::string(origin.key) + " is " + std::string(digits.begin(), end);
}

} // namespace

void stopProgram(std::string_view reason, const Origins& origins) {
    std::string message;
    for (const auto& origin : origins) {
        message += (message.empty() ? "" : ", ") + textOf(origin);
    }
    message += (message.empty() ? "" : ": ") + std::string(reason);
    if (!origins.empty() && !originAdvice.empty()) {
        message += "; " + originAdvice;
    }
    std::fprintf(stderr, "nocta: stopped: %s\n", message.c_str());
    std::abort();
}

void setOriginAdvice(std::string advice) {
    originAdvice = std::move(advice);
}

std::int64_t truncated(double value, const Origins& origins) {
    constexpr double limit = 9223372036854775808.0; // 2^63
    if (!(value >= -limit && value < limit)) {
        stopProgram("a number is too large for an integer", origins);
    }
    return static_cast<std::int64_t>(value);
}

std::int64_t checkedSum(std::int64_t a, std::int64_t b, const Origins& origins) {
    std::int64_t sum = 0;
    if (__builtin_add_overflow(a, b, &sum)) {
        stopProgram("a sum is too large for an integer", origins);
    }
    return sum;
}

std::int64_t checkedDifference(std::int64_t a, std::int64_t b, const Origins& origins) {
    std::int64_t difference = 0;
    if (__builtin_sub_overflow(a, b, &difference)) {
        stopProgram("a difference is too large for an integer", origins);
    }
    return difference;
}

std::int64_t checkedProduct(std::int64_t a, std::int64_t b, const Origins& origins) {
    std::int64_t product = 0;
    if (__builtin_mul_overflow(a, b, &product)) {
        stopProgram("a product is too large for an integer", origins);
    }
    return product;
}

} // namespace nocta
