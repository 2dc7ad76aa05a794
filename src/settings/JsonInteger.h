#pragma once

#include <nlohmann/json_fwd.hpp>

#include <cstdint>

namespace nocta {

/// A whole number that 64 bits hold, written without a fraction or an exponent. The library itself
/// would turn any other number into one of these: nlohmann::json::exception refuses it.
std::int64_t integerFrom(const nlohmann::json& json);

} // namespace nocta
