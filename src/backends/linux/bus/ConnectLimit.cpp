#include "backends/linux/bus/ConnectLimit.h"

#include <bitset>
#include <cerrno>
#include <fcntl.h>
#include <sys/socket.h>

namespace nocta {

namespace {

constexpr std::size_t maxDescriptors = 256; // Nocta uses about thirty
constexpr itimerspec limit{.it_interval = {.tv_sec = 0, .tv_nsec = 150'000'000},
                           .it_value = {.tv_sec = 0, .tv_nsec = 150'000'000}};

std::bitset<maxDescriptors> wasOpen; // the signal handler only reads it

void shutDownNewSockets(int /*signal*/) {
    const auto error = errno;
    for (std::size_t descriptor = 0; descriptor < wasOpen.size(); ++descriptor) {
        if (!wasOpen[descriptor]) {
            shutdown(static_cast<int>(descriptor), SHUT_RDWR); // has no effect on other files
        }
    }
    errno = error;
}

} // namespace

ConnectLimit::ConnectLimit() {
    for (std::size_t descriptor = 0; descriptor < wasOpen.size(); ++descriptor) {
        wasOpen[descriptor] = fcntl(static_cast<int>(descriptor), F_GETFD) != -1;
    }
    const auto signal = SIGRTMIN;
    struct sigaction action {};
    action.sa_handler = shutDownNewSockets;
    action.sa_flags = SA_RESTART;
    sigaction(signal, &action, &previous_);
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, signal);
    sigprocmask(SIG_UNBLOCK, &signals, nullptr);
    sigevent event{};
    event.sigev_notify = SIGEV_SIGNAL;
    event.sigev_signo = signal;
    timer_create(CLOCK_MONOTONIC, &event, &timer_);
    timer_settime(timer_, 0, &limit, nullptr);
}

ConnectLimit::~ConnectLimit() {
    timer_delete(timer_);
    sigaction(SIGRTMIN, &previous_, nullptr);
}

} // namespace nocta
