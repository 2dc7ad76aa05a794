#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace nocta {

/// A universally unique identifier (RFC 4122).
struct Uuid {
    std::array<std::uint8_t, 16> bytes{};

    /// Parses the 36-character hyphenated form, in upper or lower case. Returns `std::nullopt` for
    /// any other string.
    static std::optional<Uuid> parse(std::string_view text);

    /// Makes a version 4 (random) identifier from 16 random bytes.
    static Uuid fromRandomBytes(std::array<std::uint8_t, 16> bytes);

    /// Returns the canonical form, which is hyphenated and in upper case.
    std::string toString() const;

    bool operator==(const Uuid&) const = default;
};

} // namespace nocta

template <>
struct std::hash<nocta::Uuid> {
    std::size_t operator()(const nocta::Uuid& uuid) const noexcept;
};
