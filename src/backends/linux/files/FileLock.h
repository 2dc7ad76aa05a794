#pragma once

#include "backends/linux/files/FileDescriptor.h"

#include <chrono>
#include <filesystem>

namespace nocta {

/// A lock that one process at a time can hold, on a file that has no other purpose. The kernel
/// releases the lock when its holder exits or dies. The file stays: if a process removed it, two
/// other processes could each hold a lock.
class FileLock {
public:
    FileLock() = default;

    /// Opens the file, and creates it if it is missing. Neither follows a link nor waits for a
    /// named pipe.
    explicit FileLock(const std::filesystem::path& file);

    /// Returns false if the file could not be opened; `errno` then contains the reason.
    bool isOpen() const { return static_cast<bool>(file_); }

    /// Takes the lock. Returns false if another process holds it for all of `timeout`, or if the
    /// file could not be opened or locked.
    bool acquire(std::chrono::milliseconds timeout) const;

    void release() { file_.reset(); }

private:
    FileDescriptor file_;
};

} // namespace nocta
