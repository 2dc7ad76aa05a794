#pragma once

#include "backends/linux/updates/Ed25519Signature.h"

#include <QTemporaryFile>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace nocta {

/// A file that arrives from the network in pieces. It gets its final name only after its signature
/// has been verified; otherwise it is deleted. Several downloads may use the same name, one after
/// the other.
class UpdateFile {
public:
    /// `length` is in bytes, according to the feed. The folder is created for this user only.
    UpdateFile(const std::filesystem::path& file, std::int64_t length, const Ed25519PublicKey& key,
               const Ed25519Signature& signature);
    UpdateFile(const UpdateFile&) = delete;
    UpdateFile& operator=(const UpdateFile&) = delete;

    // Each function returns the reason if the file is refused, or nothing.
    std::optional<std::string> add(std::string_view piece);
    std::optional<std::string> finish();

    /// The fraction that has arrived, 0.0–1.0.
    double progress() const;

private:
    std::filesystem::path file_;
    QTemporaryFile part_; ///< no other process writes to it
    std::int64_t length_;
    std::int64_t received_ = 0;
    Ed25519Verification verification_;
};

} // namespace nocta
