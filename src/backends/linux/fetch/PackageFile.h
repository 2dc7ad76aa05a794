#pragma once

#include "backends/linux/fetch/FetchProtocol.h"
#include "backends/linux/files/FileDescriptor.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace nocta {

/// Opens a folder that belongs to this user alone: mode 0700, and not a symbolic link. Returns
/// nothing for any other folder, with the reason in errno.
FileDescriptor openOwnFolder(const std::string& folder);

/// A new file that arrives in pieces.
class PackageFile {
public:
    /// Creates the file in an own folder, as above. `length` is in bytes, according to the feed. No
    /// file of this name may exist yet.
    PackageFile(const std::string& folder, const std::string& name, std::int64_t length);

    // Each function returns the reason if the file is refused, or nothing.
    std::optional<FetchFailure> add(std::string_view piece);
    std::optional<FetchFailure> finish() const;

    /// The number of bytes that have arrived.
    std::int64_t received() const { return received_; }

private:
    FileDescriptor file_;
    int openError_ = 0;
    std::int64_t length_;
    std::int64_t received_ = 0;
};

/// A file of an own folder, mapped into memory for reading.
class MappedFile {
public:
    MappedFile(const std::string& folder, const std::string& name);
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;
    ~MappedFile();

    /// Empty if the file is empty, longer than `maxPackageSize`, is not a regular file, or cannot
    /// be read.
    std::span<const unsigned char> bytes() const { return bytes_; }

private:
    std::span<unsigned char> bytes_;
};

} // namespace nocta
