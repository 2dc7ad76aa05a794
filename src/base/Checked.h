#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace nocta {

/// A stored value that a calculation depends on.
struct Origin {
    std::string_view key;
    std::variant<std::int64_t, double> value;
};

/// While a context exists, the message of `stopProgram` names the context's values, so that the
/// user can correct the value that caused the fault. If contexts are nested, the innermost context
/// is used.
///
///     const FaultContext context({settings.breakIntervalMinutes.origin()});
///     const auto interval = checkedProduct(settings.breakIntervalMinutes.get(), 60);
class FaultContext {
public:
    explicit FaultContext(std::vector<Origin> origins);
    FaultContext(const FaultContext&) = delete;
    FaultContext& operator=(const FaultContext&) = delete;
    ~FaultContext();

    const std::vector<Origin>& origins() const { return origins_; }

private:
    std::vector<Origin> origins_;
    const FaultContext* outer_;
};

/// Sets the advice to append to each message that names an origin. The advice explains where to
/// correct the stored values.
void setOriginAdvice(std::string advice);

/// Prints a message and aborts. Call it when arithmetic would overflow or a conversion is out of
/// range, because there is no correct value to continue with.
[[noreturn]] void stopProgram(std::string_view reason);

/// Rounds the value toward zero. Stops the program if the result does not fit into a 64-bit
/// integer.
inline std::int64_t truncated(double value) {
    constexpr double limit = 9223372036854775808.0; // 2^63
    if (!(value >= -limit && value < limit)) {
        stopProgram("a number is too large for an integer");
    }
    return static_cast<std::int64_t>(value);
}

inline std::int64_t checkedSum(std::int64_t a, std::int64_t b) {
    std::int64_t sum = 0;
    if (__builtin_add_overflow(a, b, &sum)) {
        stopProgram("a sum is too large for an integer");
    }
    return sum;
}

inline std::int64_t checkedDifference(std::int64_t a, std::int64_t b) {
    std::int64_t difference = 0;
    if (__builtin_sub_overflow(a, b, &difference)) {
        stopProgram("a difference is too large for an integer");
    }
    return difference;
}

inline std::int64_t checkedProduct(std::int64_t a, std::int64_t b) {
    std::int64_t product = 0;
    if (__builtin_mul_overflow(a, b, &product)) {
        stopProgram("a product is too large for an integer");
    }
    return product;
}

} // namespace nocta
