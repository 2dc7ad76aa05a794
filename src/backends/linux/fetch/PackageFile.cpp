#include "backends/linux/fetch/PackageFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nocta {

FileDescriptor openOwnFolder(const std::string& folder) {
    FileDescriptor descriptor(
        open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    if (!descriptor || fstat(descriptor.get(), &status) != 0) {
        return {};
    }
    constexpr mode_t allPermissions = 07777;
    if (status.st_uid != geteuid() || (status.st_mode & allPermissions) != S_IRWXU) {
        errno = EACCES;
        return {};
    }
    return descriptor;
}

PackageFile::PackageFile(const std::string& folder, const std::string& name, std::int64_t length)
    : length_(length) {
    if (const auto own = openOwnFolder(folder)) {
        file_ = FileDescriptor(openat(own.get(), name.c_str(),
                                      O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    }
    openError_ = file_ ? 0 : errno;
}

std::optional<FetchFailure> PackageFile::add(std::string_view piece) {
    if (!file_) {
        return FetchFailure{FetchError::fileNotSaved, openError_};
    }
    if (piece.size() > static_cast<std::uint64_t>(length_ - received_)) {
        return FetchFailure{FetchError::fileTooLong};
    }
    while (!piece.empty()) {
        const auto written = write(file_.get(), piece.data(), piece.size());
        if (written < 0) {
            return FetchFailure{FetchError::fileNotSaved, errno};
        }
        received_ += written;
        piece.remove_prefix(static_cast<std::size_t>(written));
    }
    return std::nullopt;
}

std::optional<FetchFailure> PackageFile::finish() const {
    if (!file_) {
        return FetchFailure{FetchError::fileNotSaved, openError_};
    }
    return received_ < length_ ? std::optional(FetchFailure{FetchError::fileTooShort})
                               : std::nullopt;
}

MappedFile::MappedFile(const std::string& folder, const std::string& name) {
    const auto own = openOwnFolder(folder);
    const FileDescriptor file(
        openat(own.get(), name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (!file || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode) ||
        status.st_size == 0 || status.st_size > maxPackageSize) {
        return;
    }
    const auto size = static_cast<std::size_t>(status.st_size);
    void* const start = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file.get(), 0);
    if (start != MAP_FAILED) {
        bytes_ = {static_cast<unsigned char*>(start), size};
    }
}

MappedFile::~MappedFile() {
    if (!bytes_.empty()) {
        munmap(bytes_.data(), bytes_.size());
    }
}

} // namespace nocta
