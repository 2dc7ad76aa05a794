#include "backends/linux/fetch/Ed25519Signature.h"

#include <array>
#include <cstddef>
#include <optional>
#include <sodium.h>

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

} // namespace

bool isSigned(std::span<const unsigned char> message, std::string_view signature,
              std::string_view publicKey) {
    const auto key = decoded<crypto_sign_PUBLICKEYBYTES>(publicKey);
    const auto bytes = decoded<crypto_sign_BYTES>(signature);
    return sodium_init() >= 0 && key && bytes &&
           crypto_sign_verify_detached(bytes->data(), message.data(), message.size(),
                                       key->data()) == 0;
}

} // namespace nocta
