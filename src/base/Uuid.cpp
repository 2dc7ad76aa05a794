#include "base/Uuid.h"

#include <uuid/uuid.h>

#include <cstring>

namespace nocta {

namespace {
/// The length of the hyphenated form. Not every libuuid defines a constant for it.
constexpr std::size_t textLength = 36;
} // namespace

std::optional<Uuid> Uuid::parse(std::string_view text) {
    Uuid uuid;
    if (text.size() != textLength ||
        uuid_parse(std::string(text).c_str(), uuid.bytes.data()) != 0) {
        return std::nullopt;
    }
    return uuid;
}

Uuid Uuid::fromRandomBytes(std::array<std::uint8_t, 16> bytes) {
    bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0f) | 0x40); // version 4
    bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3f) | 0x80); // RFC 4122 variant
    return Uuid{bytes};
}

std::string Uuid::toString() const {
    std::array<char, textLength + 1> text{}; // with the terminating null
    uuid_unparse_upper(bytes.data(), text.data());
    return {text.data(), textLength};
}

} // namespace nocta

std::size_t std::hash<nocta::Uuid>::operator()(const nocta::Uuid& uuid) const noexcept {
    std::size_t value = 0;
    std::memcpy(&value, uuid.bytes.data(), sizeof value); // the bytes are already random
    return value;
}
