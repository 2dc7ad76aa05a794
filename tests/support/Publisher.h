#pragma once

#include <array>
#include <sodium.h>
#include <string>
#include <string_view>

namespace nocta {

/// A publisher of updates, with a key pair for signatures.
class Publisher {
public:
    Publisher() { crypto_sign_keypair(key_.data(), secret_.data()); }

    std::string publicKey() const { return base64(key_); }

    std::string sign(std::string_view file) const {
        std::array<unsigned char, crypto_sign_BYTES> signature{};
        crypto_sign_detached(signature.data(), nullptr,
                             reinterpret_cast<const unsigned char*>(file.data()), file.size(),
                             secret_.data());
        return base64(signature);
    }

    template <std::size_t size>
    static std::string base64(const std::array<unsigned char, size>& bytes) {
        std::string text(sodium_base64_ENCODED_LEN(size, sodium_base64_VARIANT_ORIGINAL), '\0');
        sodium_bin2base64(text.data(), text.size(), bytes.data(), size,
                          sodium_base64_VARIANT_ORIGINAL);
        text.pop_back(); // the terminating null of the C string
        return text;
    }

private:
    std::array<unsigned char, crypto_sign_PUBLICKEYBYTES> key_{};
    std::array<unsigned char, crypto_sign_SECRETKEYBYTES> secret_{};
};

/// The description of one release in an appcast.
struct Release {
    std::string version = "46";
    std::string shortVersion = "1.3";
    std::string url = "https://updates.example/nocta.deb";
    std::string signature{};
    std::string length{};
    std::string more{}; ///< additional elements

    std::string item() const {
        return "<item><sparkle:version>" + version + "</sparkle:version>" +
               "<sparkle:shortVersionString>" + shortVersion + "</sparkle:shortVersionString>" +
               more + "<enclosure url=\"" + url + "\" sparkle:edSignature=\"" + signature +
               "\" length=\"" + length + "\"/></item>";
    }
};

inline std::string appcast(const std::string& items) {
    return "<rss version=\"2.0\" "
           "xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\"><channel>" +
           items + "</channel></rss>";
}

} // namespace nocta
