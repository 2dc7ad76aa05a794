#include "backends/linux/bus/BusProbe.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

namespace nocta {

namespace {

constexpr std::size_t maxReceived = 1 << 20;
constexpr auto usualSystemBus = "unix:path=/run/dbus/system_bus_socket";

constexpr std::uint32_t helloSerial = 1;
constexpr std::uint32_t questionSerial = 2;

/// The unescaped value of a key in an address; empty if the address does not contain the key.
std::string valueOf(std::string_view pairs, std::string_view key) {
    while (!pairs.empty()) {
        const auto pair = pairs.substr(0, pairs.find(','));
        pairs.remove_prefix(std::min(pairs.size(), pair.size() + 1));
        if (!pair.starts_with(key) || pair.substr(key.size(), 1) != "=") {
            continue;
        }
        std::string value;
        for (auto rest = pair.substr(key.size() + 1); !rest.empty(); rest.remove_prefix(1)) {
            unsigned char letter = 0;
            if (rest[0] == '%' && rest.size() > 2 &&
                std::from_chars(rest.data() + 1, rest.data() + 3, letter, 16).ec == std::errc()) {
                value += static_cast<char>(letter);
                rest.remove_prefix(2);
            } else {
                value += rest[0];
            }
        }
        return value;
    }
    return {};
}

/// A socket connected to the address, or an empty descriptor.
FileDescriptor connected(std::string_view address) {
    constexpr std::string_view transport = "unix:";
    if (!address.starts_with(transport)) {
        return {};
    }
    const auto pairs = address.substr(transport.size());
    auto name = valueOf(pairs, "path");
    if (name.empty()) {
        name = std::string(1, '\0') + valueOf(pairs, "abstract");
    }
    sockaddr_un server{};
    server.sun_family = AF_UNIX;
    if (name.size() < 2 || name.size() >= sizeof server.sun_path) {
        return {};
    }
    name.copy(server.sun_path, name.size());
    const auto length = offsetof(sockaddr_un, sun_path) + name.size() + (name[0] == '\0' ? 0 : 1);
    FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (connect(socket.get(), reinterpret_cast<const sockaddr*>(&server),
                static_cast<socklen_t>(length)) != 0) {
        return {};
    }
    return socket;
}

/// The EXTERNAL mechanism identifies the user by the decimal user ID, with each character encoded
/// in hexadecimal.
std::string greeting() {
    std::string text(1, '\0'); // required first; some systems attach credentials to it
    text += "AUTH EXTERNAL ";
    for (const auto digit : std::to_string(geteuid())) {
        text += '3';
        text += digit;
    }
    return text + "\r\n";
}

} // namespace

BusProbe::BusProbe(std::string_view addresses, BusQuestion question)
    : question_(std::move(question)) {
    while (!addresses.empty() && !socket_) {
        address_ = addresses.substr(0, addresses.find(';'));
        addresses.remove_prefix(std::min(addresses.size(), address_.size() + 1));
        socket_ = connected(address_);
    }
    if (socket_) {
        state_ = State::pending;
        send(greeting());
    }
}

/// Reads and handles what has arrived so far.
BusProbe::State BusProbe::advance() {
    while (state_ == State::pending && readMore()) {
        if (!isAuthenticated_) {
            readGreeting();
        }
        if (isAuthenticated_) {
            readMessage();
        }
    }
    return state_;
}

BusProbe::State BusProbe::waitFor(std::chrono::milliseconds time) {
    const auto deadline = std::chrono::steady_clock::now() + time;
    while (advance() == State::pending) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        pollfd readable{.fd = socket_.get(), .events = POLLIN, .revents = 0};
        if (left.count() <= 0 || poll(&readable, 1, static_cast<int>(left.count())) == 0) {
            break;
        }
    }
    return state_;
}

void BusProbe::whenDone(std::function<void()> callback) {
    readable_ = std::make_unique<QSocketNotifier>(socket_.get(), QSocketNotifier::Read);
    QObject::connect(readable_.get(), &QSocketNotifier::activated,
                     [this, callback = std::move(callback)] {
                         if (advance() != State::pending) {
                             readable_->setEnabled(false);
                             readable_.release()->deleteLater(); // it is emitting this signal
                             callback();
                         }
                     });
}

/// Returns false when there is nothing more to read for now.
bool BusProbe::readMore() {
    std::array<char, 4096> block{};
    const auto length = recv(socket_.get(), block.data(), block.size(), MSG_DONTWAIT);
    if (length > 0) {
        received_.append(block.data(), static_cast<std::size_t>(length));
    }
    const auto isNothingYet =
        length < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR);
    if ((length <= 0 && !isNothingYet) || received_.size() > maxReceived) {
        state_ = State::failed;
    }
    return length > 0 && state_ == State::pending;
}

void BusProbe::readGreeting() {
    const auto end = received_.find("\r\n");
    if (end == std::string::npos) {
        return;
    }
    if (!received_.starts_with("OK")) {
        state_ = State::failed;
        return;
    }
    received_.erase(0, end + 2);
    isAuthenticated_ = true;
    send("BEGIN\r\n" +
         busCall(helloSerial, {.interface = "org.freedesktop.DBus", .method = "Hello"}) +
         busCall(questionSerial, question_));
}

void BusProbe::readMessage() {
    while (const auto message = BusMessage::read(received_)) {
        if (message->isDamaged()) {
            state_ = State::failed;
            return;
        }
        received_.erase(0, message->size());
        if (message->replySerial() == helloSerial && message->isError()) {
            state_ = State::failed;
            return;
        }
        if (message->replySerial() == questionSerial) {
            state_ = State::answered;
            answer_ = message;
            return;
        }
    }
}

void BusProbe::send(const std::string& bytes) {
    // The buffer of an idle socket has room for all of this.
    if (::send(socket_.get(), bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_NOSIGNAL) !=
        static_cast<ssize_t>(bytes.size())) {
        state_ = State::failed;
    }
}

std::string sessionBusAddress() {
    if (const auto* const address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
        address != nullptr && *address != '\0') {
        return address;
    }
    const auto* const folder = std::getenv("XDG_RUNTIME_DIR");
    const auto socket = std::string(folder == nullptr ? "" : folder) + "/bus";
    struct stat status {};
    return stat(socket.c_str(), &status) == 0 && S_ISSOCK(status.st_mode) ? "unix:path=" + socket
                                                                          : std::string();
}

std::string systemBusAddress() {
    const auto* const address = std::getenv("DBUS_SYSTEM_BUS_ADDRESS");
    return address == nullptr || *address == '\0' ? usualSystemBus : address;
}

} // namespace nocta
