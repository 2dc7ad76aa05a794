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

/// One of Nocta's own helper programs, which are installed beside it. It finds a socket to this
/// process as its standard input and output, so that the end of either is seen by the other,
/// whatever has ended it.
class HelperProcess {
public:
    HelperProcess() = default;
    HelperProcess(const HelperProcess&) = delete;
    HelperProcess& operator=(const HelperProcess&) = delete;

    ~HelperProcess() { release(); }

    static std::string path(const char* name);

    /// False where it cannot be started.
    bool start(const char* name, const std::vector<std::string>& arguments = {});

    /// Whether one was started and has not been waited for, ended or left since.
    bool isRunning() const { return process_ > 0; }

    bool send(const void* data, std::size_t size) const;

    /// The next byte that the helper says, if it does so in time.
    std::optional<char> answer(std::chrono::milliseconds timeout) const;

    /// The helper sees that nothing more comes.
    void endInput() const;

    /// Called once, from the event loop, when the helper has ended or says something unasked.
    void whenEnded(std::function<void()> action);

    /// Called from the event loop whenever there is something to receive, its end included.
    void whenReadable(std::function<void()> action);

    /// At most `size` bytes of what it has said, as `recv` without waiting: 0 at its end.
    ssize_t receive(char* data, std::size_t size) const;

    /// Waits for its end. False where it takes longer.
    bool waitForEnd(std::chrono::milliseconds timeout);

    /// Ends it before it can see anything.
    void kill();

    /// Leaves it to what it does when this process ends.
    void release();

private:
    void reap();

    pid_t process_ = -1;
    FileDescriptor socket_;
    std::unique_ptr<QSocketNotifier> readable_;
};

} // namespace nocta
