#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <sodium.h>
#include <string_view>

namespace nocta {

using Ed25519PublicKey = std::array<unsigned char, 32>;
using Ed25519Signature = std::array<unsigned char, 64>;

/// Decodes Base64. Returns nothing for a point that cannot be a valid key.
std::optional<Ed25519PublicKey> ed25519PublicKey(std::string_view base64);
/// Decodes Base64.
std::optional<Ed25519Signature> ed25519Signature(std::string_view base64);

/// Checks the signature of a message that does not fit in memory. It follows RFC 8032, section
/// 5.1.7, which hashes the message once and in order. Like libsodium's own check, it does not use
/// the cofactor.
///
///     Ed25519Verification verification(key, signature);
///     verification.update(piece); // for each piece
///     verification.isValid();     // only once
class Ed25519Verification {
public:
    Ed25519Verification(const Ed25519PublicKey& key, const Ed25519Signature& signature);

    void update(std::string_view piece);
    bool isValid();

private:
    Ed25519PublicKey key_;
    Ed25519Signature signature_;
    crypto_hash_sha512_state hash_;
};

} // namespace nocta
