#pragma once

#include "backends/linux/files/FileDescriptor.h"

#include <QSocketNotifier>

#include <csignal>
#include <functional>
#include <utility>
#include <vector>

namespace nocta {

/// Turns SIGINT, SIGTERM and SIGHUP into a call from the event loop, as long as this object lives.
/// Those that the process was told to ignore, as by `nohup`, stay ignored. If this object still
/// lives a second later, because the loop or the end is held up, the signal ends the process after
/// all. Before and after, a signal does what it does to every process. One at a time.
class EndingSignals {
public:
    explicit EndingSignals(std::function<void()> received);
    /// Lets them through where the starter has blocked them.
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
