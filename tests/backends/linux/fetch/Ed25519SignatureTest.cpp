#include "backends/linux/fetch/Ed25519Signature.h"

#include "support/Publisher.h"

#include <gtest/gtest.h>

#include <string>

namespace nocta {
namespace {

template <std::size_t size>
std::array<unsigned char, size> fromHex(const std::string& hex) {
    std::array<unsigned char, size> bytes{};
    EXPECT_EQ(sodium_hex2bin(bytes.data(), size, hex.data(), hex.size(), nullptr, nullptr, nullptr),
              0);
    return bytes;
}

bool isSigned(const std::string& message, const std::string& signature, const std::string& key) {
    return nocta::isSigned({reinterpret_cast<const unsigned char*>(message.data()), message.size()},
                           signature, key);
}

// Tests 1 to 3 of RFC 8032, section 7.1.
TEST(Ed25519Signature, KnownSignaturesAreValid) {
    struct Known {
        const char* key;
        const char* message;
        const char* signature;
    };
    for (const auto& known :
         {Known{"d75a980182b10ab7d54bfed3c964073a0ee172f3daa62325af021a68f707511a", "",
                "e5564300c360ac729086e2cc806e828a84877f1eb8e5d974d873e065224901555fb8821590a33bacc6"
                "1e39701cf9b46bd25bf5f0595bbe24655141438e7a100b"},
          Known{"3d4017c3e843895a92b70aa74d1b7ebc9c982ccf2ec4968cc0cd55f12af4660c", "\x72",
                "92a009a9f0d4cab8720e820b5f642540a2b27b5416503f8fb3762223ebdb69da085ac1e43e15996e45"
                "8f3613d0f11d8c387b2eaeb4302aeeb00d291612bb0c00"},
          Known{"fc51cd8e6218a1a38da47ed00230f0580816ed13ba3303ac5deb911548908025", "\xaf\x82",
                "6291d657deec24024827e69c3abe01a30ce548a284743a445e3680d7db5ac3ac18ff9b538d16f290ae"
                "67f760984dc6594a7c15e9716ed28dc027beceea1ec40a"}}) {
        EXPECT_TRUE(isSigned(known.message, Publisher::base64(fromHex<64>(known.signature)),
                             Publisher::base64(fromHex<32>(known.key))));
    }
}

TEST(Ed25519Signature, OnlyTheSignersMessageIsSigned) {
    const Publisher signer;
    const auto signature = signer.sign("message");
    EXPECT_TRUE(isSigned("message", signature, signer.publicKey()));
    EXPECT_FALSE(isSigned("massage", signature, signer.publicKey()));
    EXPECT_FALSE(isSigned("message!", signature, signer.publicKey()));
    EXPECT_FALSE(isSigned("message", signature, Publisher().publicKey()));
    EXPECT_FALSE(isSigned("message", Publisher().sign("message"), signer.publicKey()));
}

TEST(Ed25519Signature, OnlyCompleteBase64OfTheRightLengthIsAccepted) {
    const Publisher signer;
    const auto key = signer.publicKey();
    const auto signature = signer.sign("");
    EXPECT_TRUE(isSigned("", signature, key));
    for (const auto& text : {std::string(), std::string("="), key.substr(1), key + "A", key + " ",
                             " " + key, signature, std::string(1 << 20, 'A')}) {
        EXPECT_FALSE(isSigned("", signature, text)) << text.substr(0, 100);
    }
    for (const auto& text : {std::string(), key, signature + "\n", signature.substr(4)}) {
        EXPECT_FALSE(isSigned("", text, key)) << text;
    }
}

TEST(Ed25519Signature, KeyOfLowOrderSignsNothing) {
    for (const auto* const hex :
         {"0000000000000000000000000000000000000000000000000000000000000000",
          "0100000000000000000000000000000000000000000000000000000000000000",
          "ecffffffffffffffffffffffffffffffffffffffffffffffffffffffffffff7f"}) {
        const auto key = fromHex<32>(hex);
        // With such a key, R = S = 0 would sign many messages.
        EXPECT_FALSE(isSigned("message", Publisher::base64(std::array<unsigned char, 64>{1}),
                              Publisher::base64(key)))
            << hex;
    }
}

} // namespace
} // namespace nocta
