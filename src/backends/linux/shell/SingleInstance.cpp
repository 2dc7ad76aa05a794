#include "backends/linux/shell/SingleInstance.h"

#include <chrono>
#include <cstddef>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace nocta {

namespace {

using namespace std::chrono_literals;

constexpr int waitingKnocks = 16;
constexpr auto patience = 5000ms;  // with one that is starting or ending
constexpr auto nextAttempt = 10ms; // between two knocks at a closed door

/// An abstract socket address: the kernel forgets it with its last socket.
struct Address {
    sockaddr_un address{};
    socklen_t length = 0;

    explicit Address(std::string_view name) {
        address.sun_family = AF_UNIX;
        length =
            static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 +
                                   name.copy(address.sun_path + 1, sizeof address.sun_path - 1));
    }
    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&address); }
};

FileDescriptor makeSocket(int flags) {
    return FileDescriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | flags, 0));
}

/// True when the other end of a connected socket runs as this user. The names of abstract sockets
/// are open to every user of the machine.
bool isOwn(int socket) {
    ucred peer{};
    socklen_t length = sizeof peer;
    return getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &length) == 0 &&
           peer.uid == geteuid();
}

} // namespace

SingleInstance::SingleInstance(std::string_view display) {
    role_ = knock(display);
}

SingleInstance::Role SingleInstance::knock(std::string_view display) {
    const Address address("nocta-" + std::to_string(geteuid()) + "-" + std::string(display));
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (true) {
        socket_ = makeSocket(SOCK_NONBLOCK);
        if (bind(socket_.get(), address.get(), address.length) == 0 &&
            ::listen(socket_.get(), waitingKnocks) == 0) {
            return Role::first;
        }
        socket_.reset();

        const auto door = makeSocket(SOCK_NONBLOCK); // a full queue must not hold us either
        const auto isOpen = connect(door.get(), address.get(), address.length) == 0;
        if (isOpen && !isOwn(door.get())) {
            return Role::first; // somebody else's, who may keep the name
        }
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        pollfd answer{.fd = door.get(), .events = POLLIN, .revents = 0};
        char word = 0;
        if (left <= 0ms || (isOpen && poll(&answer, 1, static_cast<int>(left.count())) == 0)) {
            return Role::unanswered;
        }
        if (isOpen && read(door.get(), &word, 1) == 1) {
            return Role::answered;
        }
        std::this_thread::sleep_for(nextAttempt); // it has gone, or does not listen yet
    }
}

void SingleInstance::listen(std::function<void()> knocked) {
    knocked_ = std::move(knocked);
    if (socket_) {
        knocks_ = std::make_unique<QSocketNotifier>(socket_.get(), QSocketNotifier::Read);
        QObject::connect(knocks_.get(), &QSocketNotifier::activated, [this] { answer(); });
    }
}

void SingleInstance::close() {
    knocks_.reset();
    socket_.reset();
}

void SingleInstance::answer() {
    const FileDescriptor visitor(accept4(socket_.get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (visitor && isOwn(visitor.get())) {
        send(visitor.get(), "y", 1, MSG_NOSIGNAL);
        knocked_();
    }
}

} // namespace nocta
