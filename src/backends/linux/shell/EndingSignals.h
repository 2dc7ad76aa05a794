#pragma once

#include "backends/linux/files/FileDescriptor.h"

#include <QSocketNotifier>

#include <csignal>
#include <functional>
#include <utility>
#include <vector>

namespace nocta {

/// Turns SIGINT, SIGTERM and SIGHUP into a call from the event loop while this object lives.
/// Signals that the process inherited as ignored, as from `nohup`, stay ignored. If this object
/// still exists a second after a signal, because the event loop or the shutdown is stuck, the
/// signal ends the process anyway. While no object exists, the signals have their default effect.
/// Only one object may exist at a time.
class EndingSignals {
public:
    explicit EndingSignals(std::function<void()> received);
    /// Unblocks the signals if the parent process blocked them.
    static void unblock();

    EndingSignals(const EndingSignals&) = delete;
    EndingSignals& operator=(const EndingSignals&) = delete;
    ~EndingSignals();

private:
    void handle(int signal, void (*handler)(int));

    FileDescriptor wakeUp_;
    QSocketNotifier notifier_;
    std::vector<std::pair<int, struct sigaction>> previous_;
};

} // namespace nocta
