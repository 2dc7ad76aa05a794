#include "backends/linux/shell/EndingSignals.h"

#include <cerrno>
#include <cstdint>
#include <sys/eventfd.h>
#include <unistd.h>

namespace nocta {

namespace {

constexpr unsigned int maxDelay = 1; // seconds

// A signal handler may use these.
volatile std::sig_atomic_t wakeUpDescriptor = -1;
volatile std::sig_atomic_t receivedSignal = 0;

void notifyLoop(int signal) {
    const auto error = errno;
    receivedSignal = signal;
    alarm(maxDelay);
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = write(wakeUpDescriptor, &one, sizeof one);
    errno = error;
}

void endAtOnce(int /*signal*/) {
    std::signal(receivedSignal, SIG_DFL);
    raise(receivedSignal);
}

} // namespace

void EndingSignals::unblock() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const auto signal : {SIGINT, SIGTERM, SIGHUP, SIGALRM}) {
        sigaddset(&signals, signal);
    }
    sigprocmask(SIG_UNBLOCK, &signals, nullptr);
}

EndingSignals::EndingSignals(std::function<void()> received)
    : wakeUp_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      notifier_(wakeUp_.get(), QSocketNotifier::Read) {
    wakeUpDescriptor = wakeUp_.get();
    QObject::connect(&notifier_, &QSocketNotifier::activated,
                     [this, received = std::move(received)] {
                         notifier_.setEnabled(false);
                         received();
                     });
    handle(SIGALRM, endAtOnce);
    for (const auto signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction inherited {};
        sigaction(signal, nullptr, &inherited);
        if (inherited.sa_handler != SIG_IGN) {
            handle(signal, notifyLoop);
        }
    }
}

EndingSignals::~EndingSignals() {
    for (const auto& [signal, action] : previous_) {
        sigaction(signal, &action, nullptr);
    }
    alarm(0);
}

void EndingSignals::handle(int signal, void (*handler)(int)) {
    struct sigaction action {};
    struct sigaction previous {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigaction(signal, &action, &previous);
    previous_.emplace_back(signal, previous);
}

} // namespace nocta
