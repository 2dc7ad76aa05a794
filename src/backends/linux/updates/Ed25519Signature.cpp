#include "backends/linux/updates/Ed25519Signature.h"

#include <algorithm>
#include <tuple>

namespace nocta {

namespace {

template <std::size_t size>
std::optional<std::array<unsigned char, size>> decoded(std::string_view base64) {
    std::array<unsigned char, size> bytes{};
    std::size_t length = 0;
    const char* end = nullptr;
    const auto isDecoded =
        sodium_base642bin(bytes.data(), bytes.size(), base64.data(), base64.size(), nullptr,
                          &length, &end, sodium_base64_VARIANT_ORIGINAL) == 0;
    if (!isDecoded || length != size || end != base64.data() + base64.size()) {
        return std::nullopt;
    }
    return bytes;
}

using Scalar = std::array<unsigned char, crypto_core_ed25519_SCALARBYTES>;
using WideScalar = std::array<unsigned char, crypto_core_ed25519_NONREDUCEDSCALARBYTES>;
using Point = std::array<unsigned char, crypto_core_ed25519_BYTES>;

Scalar reduced(const WideScalar& wide) {
    Scalar scalar{};
    crypto_core_ed25519_scalar_reduce(scalar.data(), wide.data());
    return scalar;
}

} // namespace

std::optional<Ed25519PublicKey> ed25519PublicKey(std::string_view base64) {
    static const bool isReady = sodium_init() >= 0;
    const auto key = decoded<std::tuple_size_v<Ed25519PublicKey>>(base64);
    return isReady && key && crypto_core_ed25519_is_valid_point(key->data()) == 1 ? key
                                                                                  : std::nullopt;
}

std::optional<Ed25519Signature> ed25519Signature(std::string_view base64) {
    return decoded<std::tuple_size_v<Ed25519Signature>>(base64);
}

Ed25519Verification::Ed25519Verification(const Ed25519PublicKey& key,
                                         const Ed25519Signature& signature)
    : key_(key), signature_(signature), hash_{} {
    crypto_hash_sha512_init(&hash_);
    crypto_hash_sha512_update(&hash_, signature_.data(), std::tuple_size_v<Point>); // R
    crypto_hash_sha512_update(&hash_, key_.data(), key_.size());
}

void Ed25519Verification::update(std::string_view piece) {
    crypto_hash_sha512_update(&hash_, reinterpret_cast<const unsigned char*>(piece.data()),
                              piece.size());
}

/// R = S·B − H(R, A, message)·A
bool Ed25519Verification::isValid() {
    WideScalar digest{};
    crypto_hash_sha512_final(&hash_, digest.data());
    const auto h = reduced(digest);

    WideScalar wideS{};
    std::copy_n(signature_.begin() + std::tuple_size_v<Point>, std::tuple_size_v<Scalar>,
                wideS.begin());
    const auto s = reduced(wideS);
    if (!std::equal(s.begin(), s.end(), wideS.begin())) {
        return false; // otherwise every message would have a second valid signature
    }
    Point sB{};
    Point hA{};
    Point r{};
    return crypto_scalarmult_ed25519_base_noclamp(sB.data(), s.data()) == 0 &&
           crypto_scalarmult_ed25519_noclamp(hA.data(), h.data(), key_.data()) == 0 &&
           crypto_core_ed25519_sub(r.data(), sB.data(), hA.data()) == 0 &&
           crypto_verify_32(r.data(), signature_.data()) == 0;
}

} // namespace nocta
