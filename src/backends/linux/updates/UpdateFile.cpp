#include "backends/linux/updates/UpdateFile.h"

#include "backends/linux/files/PrivateFolder.h"
#include "base/Translatable.h"

#include <system_error>

namespace nocta {

namespace {

std::string cannotKeep(const std::string& reason) {
    return translatable("Nocta", "The file cannot be saved") + (": " + reason);
}

} // namespace

UpdateFile::UpdateFile(const std::filesystem::path& file, std::int64_t length,
                       const Ed25519PublicKey& key, const Ed25519Signature& signature)
    : file_(file), part_(QString::fromStdString(file.string() + ".XXXXXX")), length_(length),
      verification_(key, signature) {
    std::error_code error;
    createPrivateFolders(file.parent_path());
    std::filesystem::permissions(file.parent_path(), std::filesystem::perms::owner_all, error);
    static_cast<void>(part_.open()); // `add` checks whether it is open
}

std::optional<std::string> UpdateFile::add(std::string_view piece) {
    const auto size = static_cast<std::int64_t>(piece.size());
    if (size > length_ - received_) {
        return translatable("Nocta", "The file is longer than the feed says");
    }
    received_ += size;
    verification_.update(piece);
    const auto isWritten = part_.isOpen() && part_.write(piece.data(), size) == size;
    return isWritten ? std::nullopt : std::optional(cannotKeep(part_.errorString().toStdString()));
}

std::optional<std::string> UpdateFile::finish() {
    if (received_ != length_) {
        return translatable("Nocta", "The file is shorter than the feed says");
    }
    if (!verification_.isValid()) {
        return translatable("Nocta", "The file is not signed by the publisher");
    }
    if (!part_.flush()) {
        return cannotKeep(part_.errorString().toStdString());
    }
    std::error_code error;
    std::filesystem::rename(part_.fileName().toStdString(), file_, error);
    if (error) {
        return cannotKeep(error.message());
    }
    part_.setAutoRemove(false);
    return std::nullopt;
}

double UpdateFile::progress() const {
    return static_cast<double>(received_) / static_cast<double>(length_);
}

} // namespace nocta
