#include "base/DefaultsTable.h"

#include <type_traits>
#include <utility>

namespace nocta {

namespace {

/// 2^63, the first double above the range of a signed 64-bit integer.
constexpr double integerLimit = 9223372036854775808.0;

template <class Number>
Number numberFrom(const DefaultsValue* value) {
    if (value == nullptr) {
        return Number{};
    }
    return std::visit(
        [](const auto& held) -> Number {
            using Held = std::decay_t<decltype(held)>;
            if constexpr (!std::is_arithmetic_v<Held>) {
                return Number{};
            } else if constexpr (std::is_same_v<Number, bool>) {
                return held != Held{};
            } else if constexpr (std::is_same_v<Number, std::int64_t> &&
                                 std::is_same_v<Held, double>) {
                bool const fits = held >= -integerLimit && held < integerLimit;
                return fits ? static_cast<std::int64_t>(held) : 0;
            } else {
                return static_cast<Number>(held);
            }
        },
        *value);
}

} // namespace

void DefaultsTable::registerDefaults(const DefaultsMap& defaults) {
    for (const auto& [key, value] : defaults) {
        registered_.insert_or_assign(key, value);
    }
}

double DefaultsTable::doubleForKey(std::string_view key) const {
    return numberFrom<double>(find(key));
}

bool DefaultsTable::boolForKey(std::string_view key) const {
    return numberFrom<bool>(find(key));
}

std::int64_t DefaultsTable::integerForKey(std::string_view key) const {
    return numberFrom<std::int64_t>(find(key));
}

std::optional<std::string> DefaultsTable::stringForKey(std::string_view key) const {
    return objectForKey<std::string>(key);
}

std::optional<DefaultsData> DefaultsTable::dataForKey(std::string_view key) const {
    return objectForKey<DefaultsData>(key);
}

template <class Object>
std::optional<Object> DefaultsTable::objectForKey(std::string_view key) const {
    const auto* const value = find(key);
    const auto* const object = value == nullptr ? nullptr : std::get_if<Object>(value);
    return object == nullptr ? std::nullopt : std::optional(*object);
}

void DefaultsTable::set(std::string_view key, DefaultsValue value) {
    stored_.insert_or_assign(std::string(key), std::move(value));
}

void DefaultsTable::remove(std::string_view key) {
    if (const auto found = stored_.find(key); found != stored_.end()) {
        stored_.erase(found);
    }
}

const DefaultsValue* DefaultsTable::find(std::string_view key) const {
    for (const auto* const layer : {&stored_, &registered_}) {
        if (const auto found = layer->find(key); found != layer->end()) {
            return &found->second;
        }
    }
    return nullptr;
}

} // namespace nocta
