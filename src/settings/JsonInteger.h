#pragma once

#include <nlohmann/json_fwd.hpp>

#include <cstdint>

namespace nocta {

/// Reads an integer that fits into 64 bits and is written without a fraction or an exponent. Throws
/// nlohmann::json::exception for any other number, which the library would convert silently.
std::int64_t integerFrom(const nlohmann::json& json);

} // namespace nocta
