#include "backends/linux/files/FileLock.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>

namespace nocta {

namespace {

using namespace std::chrono_literals;

constexpr auto attemptInterval = 1ms;

/// The sticky bit keeps programs that clean up the runtime folder from deleting the file.
constexpr mode_t lockMode = S_ISVTX | S_IRUSR | S_IWUSR;

} // namespace

FileLock::FileLock(const std::filesystem::path& file)
    : file_(open(file.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, lockMode)) {}

bool FileLock::acquire(std::chrono::milliseconds timeout) const {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (flock(file_.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK || std::chrono::steady_clock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(attemptInterval);
    }
    return true;
}

} // namespace nocta
