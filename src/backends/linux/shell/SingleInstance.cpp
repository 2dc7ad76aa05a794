#include "backends/linux/shell/SingleInstance.h"

#include "backends/linux/files/PrivateFolder.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <iostream>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace nocta {

namespace {

using namespace std::chrono_literals;

constexpr int maxWaitingStarts = 16;
constexpr auto attemptInterval = 10ms;

/// The sticky bit keeps programs that clean up the runtime folder from deleting the socket.
constexpr mode_t socketMode = S_ISVTX | S_IRUSR | S_IWUSR;

/// The 64-bit FNV-1a hash of a server's name. The name itself may be long or contain slashes.
std::string hashed(std::string_view text) {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const auto character : text) {
        hash = (hash ^ static_cast<unsigned char>(character)) * 0x100000001b3;
    }
    std::array<char, 16> digits{};
    return {digits.begin(), std::to_chars(digits.begin(), digits.end(), hash, 16).ptr};
}

/// The address of a socket in an open folder. It stays short even if the folder's path is long.
sockaddr_un addressIn(int folder, const std::string& name) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const auto path = "/proc/self/fd/" + std::to_string(folder) + "/" + name;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    return address;
}

FileDescriptor makeSocket() {
    return FileDescriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

} // namespace

SingleInstance::SingleInstance(std::string_view server, const std::filesystem::path& folder,
                               std::chrono::milliseconds answerTimeout)
    : name_("nocta-" + hashed(server)) {
    if (!open(folder)) {
        std::cerr << "nocta: cannot use " << folder.string() << " (" << std::strerror(errno)
                  << "); a second Nocta will not find this one" << std::endl;
        return;
    }
    role_ = findRole(answerTimeout);
}

bool SingleInstance::open(const std::filesystem::path& folder) {
    createPrivateFolders(folder); // after an error, opening the folder fails
    folder_ = FileDescriptor(::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (folder_ && !isPrivateFolder(folder)) {
        errno = EPERM;
        return false;
    }
    lock_ = FileLock(folder / (name_ + ".lock"));
    return lock_.isOpen();
}

SingleInstance::Role SingleInstance::findRole(std::chrono::milliseconds answerTimeout) {
    const auto deadline = std::chrono::steady_clock::now() + answerTimeout;
    while (true) {
        if (lock_.acquire(0ms)) {
            if (!bindSocket()) {
                std::cerr << "nocta: cannot listen for later starts (" << std::strerror(errno)
                          << ")" << std::endl;
                socket_.reset();
            }
            return Role::first;
        }
        const auto socket = makeSocket();
        const auto isConnected = connectTo(socket.get());
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        pollfd answer{.fd = socket.get(), .events = POLLIN, .revents = 0};
        char byte = 0;
        if (left <= 0ms || (isConnected && poll(&answer, 1, static_cast<int>(left.count())) == 0)) {
            return Role::unanswered;
        }
        if (isConnected && read(socket.get(), &byte, 1) == 1) {
            return Role::answered;
        }
        std::this_thread::sleep_for(attemptInterval); // the process is gone or not listening yet
    }
}

/// Replaces the socket that a killed process left. Only the holder of the lock does this.
bool SingleInstance::bindSocket() {
    const auto name = name_ + ".socket";
    const auto address = addressIn(folder_.get(), name);
    unlinkat(folder_.get(), name.c_str(), 0);
    socket_ = makeSocket();
    return fchmod(socket_.get(), socketMode) == 0 &&
           bind(socket_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
           ::listen(socket_.get(), maxWaitingStarts) == 0;
}

/// Returns false immediately if nothing is listening or the queue is full.
bool SingleInstance::connectTo(int socket) const {
    const auto address = addressIn(folder_.get(), name_ + ".socket");
    return connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

void SingleInstance::listen(std::function<void()> started) {
    started_ = std::move(started);
    if (socket_) {
        waiting_ = std::make_unique<QSocketNotifier>(socket_.get(), QSocketNotifier::Read);
        QObject::connect(waiting_.get(), &QSocketNotifier::activated, [this] { answer(); });
    }
}

void SingleInstance::close() {
    waiting_.reset();
    if (socket_) {
        unlinkat(folder_.get(), (name_ + ".socket").c_str(), 0);
        socket_.reset();
    }
    lock_.release();
}

void SingleInstance::answer() {
    const FileDescriptor client(accept4(socket_.get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (client) {
        send(client.get(), "y", 1, MSG_NOSIGNAL);
        started_();
    }
}

} // namespace nocta
