#include "settings/JsonInteger.h"

#include <nlohmann/json.hpp>

#include <limits>

namespace nocta {

std::int64_t integerFrom(const nlohmann::json& json) {
    constexpr auto max = std::uint64_t{std::numeric_limits<std::int64_t>::max()};
    if (!json.is_number_integer() ||
        (json.is_number_unsigned() && json.get<std::uint64_t>() > max)) {
        throw nlohmann::json::other_error::create(500, "not a 64-bit integer", &json);
    }
    return json.get<std::int64_t>();
}

} // namespace nocta
