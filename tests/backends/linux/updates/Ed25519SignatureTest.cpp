#include "backends/linux/updates/Ed25519Signature.h"

#include "support/Publisher.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace nocta {
namespace {

template <std::size_t size>
std::array<unsigned char, size> fromHex(const std::string& hex) {
    std::array<unsigned char, size> bytes{};
    EXPECT_EQ(sodium_hex2bin(bytes.data(), size, hex.data(), hex.size(), nullptr, nullptr, nullptr),
              0);
    return bytes;
}

bool isValid(const Ed25519PublicKey& key, const Ed25519Signature& signature,
             const std::string& message, std::size_t piece = 1 << 16) {
    Ed25519Verification verification(key, signature);
    for (std::size_t i = 0; i < message.size(); i += piece) {
        verification.update(std::string_view(message).substr(i, piece));
    }
    return verification.isValid();
}

/// Verifies a complete message in memory with libsodium's own function.
bool isValidWithSodium(const Ed25519PublicKey& key, const Ed25519Signature& signature,
                       const std::string& message) {
    return crypto_sign_verify_detached(signature.data(),
                                       reinterpret_cast<const unsigned char*>(message.data()),
                                       message.size(), key.data()) == 0;
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
        EXPECT_TRUE(isValid(fromHex<32>(known.key), fromHex<64>(known.signature), known.message));
    }
}

TEST(Ed25519Signature, AgreesWithLibsodiumOnMessagesInMemory) {
    std::mt19937 random(8032);
    const Publisher signer;
    const Publisher other;
    for (int round = 0; round < 200; ++round) {
        std::string message(random() % 300, '\0');
        std::ranges::generate(message, [&] { return static_cast<char>(random()); });
        const auto signature = signer.signatureOf(message);
        const auto piece = 1 + random() % 70;
        ASSERT_TRUE(isValid(signer.key(), signature, message, piece));
        EXPECT_FALSE(isValid(other.key(), signature, message));
        EXPECT_FALSE(isValid(signer.key(), signature, message + 'x'));

        auto tampered = signature;
        tampered.at(random() % tampered.size()) ^= static_cast<unsigned char>(1U << random() % 8);
        EXPECT_FALSE(isValid(signer.key(), tampered, message));
        auto key = signer.key();
        key.at(random() % key.size()) ^= static_cast<unsigned char>(1U << random() % 8);
        EXPECT_EQ(isValid(key, signature, message), isValidWithSodium(key, signature, message));
        if (!message.empty()) {
            message.at(random() % message.size()) ^= static_cast<char>(1 << random() % 8);
            EXPECT_FALSE(isValid(signer.key(), signature, message));
        }
    }
}

TEST(Ed25519Signature, NonCanonicalSignatureIsRejected) {
    // S plus the order of the group gives the same point as S.
    const auto order =
        fromHex<32>("edd3f55c1a631258d69cf7a2def9de1400000000000000000000000000000010");
    const Publisher signer;
    auto signature = signer.signatureOf("message");
    unsigned carry = 0;
    for (std::size_t i = 0; i < order.size(); ++i) {
        carry += signature.at(32 + i) + order.at(i);
        signature.at(32 + i) = static_cast<unsigned char>(carry);
        carry >>= 8;
    }
    EXPECT_FALSE(isValid(signer.key(), signature, "message"));
    EXPECT_FALSE(isValidWithSodium(signer.key(), signature, "message"));
}

TEST(Ed25519Signature, EmptySignatureIsRejected) {
    EXPECT_FALSE(isValid(Publisher().key(), {}, "message"));
    EXPECT_FALSE(isValid({}, {}, "message"));
}

TEST(Ed25519Signature, OnlyCompleteBase64OfTheRightLengthIsAccepted) {
    const Publisher signer;
    const auto key = signer.publicKey();
    const auto signature = signer.sign("");
    EXPECT_EQ(ed25519PublicKey(key), signer.key());
    EXPECT_EQ(ed25519Signature(signature), signer.signatureOf(""));
    for (const auto& text : {std::string(), std::string("="), key.substr(1), key + "A", key + " ",
                             " " + key, signature, std::string(1 << 20, 'A')}) {
        EXPECT_FALSE(ed25519PublicKey(text)) << text.substr(0, 100);
    }
    for (const auto& text : {std::string(), key, signature + "\n", signature.substr(4)}) {
        EXPECT_FALSE(ed25519Signature(text)) << text;
    }
}

TEST(Ed25519Signature, InvalidOrLowOrderPointsAreRejected) {
    for (const auto* const hex :
         {"0000000000000000000000000000000000000000000000000000000000000000",
          "0100000000000000000000000000000000000000000000000000000000000000",
          "ecffffffffffffffffffffffffffffffffffffffffffffffffffffffffffff7f",
          "ffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffffff"}) {
        EXPECT_FALSE(ed25519PublicKey(Publisher::base64(fromHex<32>(hex)))) << hex;
    }
}

} // namespace
} // namespace nocta
