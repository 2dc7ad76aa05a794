#pragma once

#include "backends/linux/updates/Ed25519Signature.h"

#include <QTemporaryFile>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace nocta {

/// A file that comes from the network in pieces. It has its name only once it is known to be what
/// the publisher has signed; else nothing of it stays. Several may come under the same name.
class UpdateFile {
public:
    /// `length` in bytes, as the feed says. The folder is made for this user alone.
    UpdateFile(const std::filesystem::path& file, std::int64_t length, const Ed25519PublicKey& key,
               const Ed25519Signature& signature);
    UpdateFile(const UpdateFile&) = delete;
    UpdateFile& operator=(const UpdateFile&) = delete;

    // Each returns why the file is refused, or nothing.
    std::optional<std::string> add(std::string_view piece);
    std::optional<std::string> finish();

    /// 0.0–1.0.
    double progress() const;

private:
    std::optional<std::string> cannotWrite();

    std::filesystem::path file_;
    QTemporaryFile part_; ///< that no other process writes to
    std::int64_t length_;
    std::int64_t received_ = 0;
    Ed25519Verification verification_;
};

} // namespace nocta
