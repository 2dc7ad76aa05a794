#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace nocta {

/// Bytes that only the code that stored them can interpret.
struct DefaultsData {
    std::vector<std::uint8_t> bytes;
    bool operator==(const DefaultsData&) const = default;
};

using DefaultsValue = std::variant<bool, std::int64_t, double, std::string, DefaultsData>;
using DefaultsMap = std::map<std::string, DefaultsValue, std::less<>>;

/// Typed values by key on top of a layer of registered defaults. Every defaults store shares these
/// rules. A getter returns the stored value, or else the registered value, or else zero, false or
/// `std::nullopt`. Numbers and booleans convert to each other. If the types do not match otherwise,
/// or a number does not fit, the getter also returns zero, false or `std::nullopt`.
class DefaultsTable {
public:
    void registerDefaults(const DefaultsMap& defaults);

    double doubleForKey(std::string_view key) const;
    bool boolForKey(std::string_view key) const;
    std::int64_t integerForKey(std::string_view key) const;
    std::optional<std::string> stringForKey(std::string_view key) const;
    std::optional<DefaultsData> dataForKey(std::string_view key) const;

    void set(std::string_view key, DefaultsValue value);
    void remove(std::string_view key);

    /// The stored values, without the registered ones.
    const DefaultsMap& stored() const { return stored_; }

private:
    const DefaultsValue* find(std::string_view key) const;
    template <class Object>
    std::optional<Object> objectForKey(std::string_view key) const;

    DefaultsMap registered_;
    DefaultsMap stored_;
};

} // namespace nocta
