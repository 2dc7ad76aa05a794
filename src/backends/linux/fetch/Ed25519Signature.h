#pragma once

#include <span>
#include <string_view>

namespace nocta {

/// Verifies a detached Ed25519 signature. The key (32 bytes) and the signature (64 bytes) are in
/// Base64; anything else is not valid.
bool isSigned(std::span<const unsigned char> message, std::string_view signature,
              std::string_view publicKey);

} // namespace nocta
