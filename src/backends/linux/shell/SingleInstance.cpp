#include "backends/linux/shell/SingleInstance.h"

#include <cstddef>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

namespace nocta {

namespace {

constexpr int waitingKnocks = 4;

/// True when the other end of a connected socket runs as this user. The names of abstract sockets
/// are open to every user of the machine.
bool isOwn(int socket) {
    ucred peer{};
    socklen_t length = sizeof peer;
    return getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &length) == 0 &&
           peer.uid == geteuid();
}

} // namespace

SingleInstance::SingleInstance(std::string_view display)
    : socket_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
    const auto name = "nocta-" + std::to_string(geteuid()) + "-" + std::string(display);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (!socket_ || name.size() >= sizeof address.sun_path) {
        return;
    }
    name.copy(address.sun_path + 1, name.size()); // a leading zero: an abstract name
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
    const auto* const generic = reinterpret_cast<const sockaddr*>(&address);
    if (bind(socket_.get(), generic, length) == 0 && ::listen(socket_.get(), waitingKnocks) == 0) {
        return;
    }
    const FileDescriptor door(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    isFirst_ = connect(door.get(), generic, length) != 0 || !isOwn(door.get());
    socket_.reset();
}

void SingleInstance::listen(std::function<void()> knocked) {
    knocked_ = std::move(knocked);
    if (socket_) {
        knocks_ = std::make_unique<QSocketNotifier>(socket_.get(), QSocketNotifier::Read);
        QObject::connect(knocks_.get(), &QSocketNotifier::activated, [this] { answer(); });
    }
}

void SingleInstance::answer() {
    const FileDescriptor knock(accept4(socket_.get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (knock && isOwn(knock.get())) {
        knocked_();
    }
}

} // namespace nocta
