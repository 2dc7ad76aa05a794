#pragma once

#include "backends/linux/files/FileDescriptor.h"

#include <chrono>
#include <filesystem>

namespace nocta {

/// A lock that one process at a time holds, by a file that has no other use. The kernel gives it
/// back when the holder ends, however it ends. The file stays: a process that removed it could
/// leave two others with a lock each.
class FileLock {
public:
    FileLock() = default;

    /// Opens the file, and makes it where it is missing. It neither follows a link nor waits for a
    /// named pipe.
    explicit FileLock(const std::filesystem::path& file);

    /// False where the file could not be opened; `errno` says why.
    bool isOpen() const { return static_cast<bool>(file_); }

    /// Takes the lock. False where somebody else holds it for all of `timeout`, or where the file
    /// could not be opened or locked.
    bool acquire(std::chrono::milliseconds timeout) const;

    void release() { file_.reset(); }

private:
    FileDescriptor file_;
};

} // namespace nocta
