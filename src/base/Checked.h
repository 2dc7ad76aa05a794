#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace nocta {

/// A stored value that a calculation starts from. A fault names it, so that a person can correct
/// it.
struct Origin {
    std::string_view key;
    std::variant<std::int64_t, double> value;
};
using Origins = std::vector<Origin>;

/// Stops the program with a message: for arithmetic that would overflow and conversions out of
/// range, which are programming errors and have no value to go on with.
[[noreturn]] void stopProgram(std::string_view reason, const Origins& origins = {});

/// Ends the message of each fault that names an origin: where the stored values can be corrected.
void setOriginAdvice(std::string advice);

/// The integer part, towards zero; stops the program for what a 64-bit integer cannot hold.
std::int64_t truncated(double value, const Origins& origins = {});

std::int64_t checkedSum(std::int64_t a, std::int64_t b, const Origins& origins = {});
std::int64_t checkedDifference(std::int64_t a, std::int64_t b, const Origins& origins = {});
std::int64_t checkedProduct(std::int64_t a, std::int64_t b, const Origins& origins = {});

} // namespace nocta
