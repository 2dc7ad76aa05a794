#pragma once

#include "backends/linux/files/FileDescriptor.h"

#include <QSocketNotifier>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace nocta {

/// One of the helper programs that are installed next to Nocta. Its standard input and output are a
/// socket to this process, so each process notices when the other exits, for whatever reason.
class HelperProcess {
public:
    HelperProcess() = default;
    HelperProcess(const HelperProcess&) = delete;
    HelperProcess& operator=(const HelperProcess&) = delete;

    ~HelperProcess() { release(); }

    static std::string path(const char* name);

    /// Returns false if the helper cannot be started. The helper gets the variables of the
    /// environment that are given as NAME=VALUE, or else this process's own.
    bool start(const char* name, const std::vector<std::string>& arguments = {},
               std::optional<std::vector<std::string>> variables = {});

    /// Whether a helper was started and has not been waited for, killed or released since.
    bool isRunning() const { return process_ > 0; }

    bool send(const void* data, std::size_t size) const;

    /// The next byte from the helper, if it arrives in time.
    std::optional<char> answer(std::chrono::milliseconds timeout) const;

    /// Sends the helper an end of file; nothing more can be sent after it.
    void endInput() const;

    /// Calls `action` from the event loop whenever data or an end of file can be received.
    void whenReadable(std::function<void()> action);

    /// Reads at most `size` bytes without waiting. Returns what `recv` returns: 0 at the end of
    /// file.
    ssize_t receive(char* data, std::size_t size) const;

    /// Waits for the helper to exit. Returns false on a timeout.
    bool waitForEnd(std::chrono::milliseconds timeout);

    /// Kills the helper before it can react to anything.
    void kill();

    /// Leaves the helper running without this process. The helper then behaves as if this process
    /// had died.
    void release();

private:
    void reap();

    pid_t process_ = -1;
    FileDescriptor socket_;
    std::unique_ptr<QSocketNotifier> readable_;
};

} // namespace nocta
