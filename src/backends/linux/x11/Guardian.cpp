#include "backends/linux/x11/Guardian.h"

#include "backends/linux/x11/GuardianProtocol.h"

#include <csignal>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <poll.h>
#include <spawn.h>
#include <string>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace nocta {

namespace {

constexpr auto programName = "nocta-guardian";
constexpr int answerTimeout = 5000; ///< milliseconds; above what the helper itself waits
constexpr int mostReplacements = 3;

/// Installed beside the program.
std::string guardianProgram() {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    return (program.parent_path() / programName).string();
}

void sendBytes(int socket, const void* bytes, std::size_t length) {
    const auto* rest = static_cast<const char*>(bytes);
    while (length > 0) {
        const auto sent = ::send(socket, rest, length, MSG_NOSIGNAL);
        if (sent <= 0) {
            return; // the helper is gone; its closed socket is noticed by itself
        }
        rest += sent;
        length -= static_cast<std::size_t>(sent);
    }
}

} // namespace

bool Guardian::start() {
    if (!isStarted_) {
        isStarted_ = true;
        outcome_ = launch();
        if (outcome_ == Outcome::refused) {
            std::cerr << "nocta: another Nocta controls the gamma of this display" << std::endl;
        } else if (outcome_ == Outcome::unguarded) {
            std::cerr << "nocta: cannot start " << guardianProgram()
                      << "; a crash would leave the screen as it is" << std::endl;
        }
    }
    return outcome_ != Outcome::refused;
}

void Guardian::hold(xcb_randr_crtc_t crtc, const GammaRamp& factory) {
    held_.insert_or_assign(crtc, factory);
    send(crtc, factory);
}

void Guardian::release() {
    closed_.reset();
    if (socket_) {
        end();
    }
    held_.clear();
    isStarted_ = false;
}

Guardian::Outcome Guardian::launch() {
    int ends[2] = {-1, -1};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        return Outcome::unguarded;
    }
    socket_ = FileDescriptor(ends[0]);
    FileDescriptor theirs(ends[1]);

    auto program = guardianProgram();
    char* const arguments[] = {program.data(), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, theirs.get(), STDIN_FILENO);
    const auto failed =
        posix_spawn(&process_, program.c_str(), &actions, nullptr, arguments, environ) != 0;
    posix_spawn_file_actions_destroy(&actions);
    if (failed) {
        socket_.reset();
        return Outcome::unguarded;
    }

    const GuardianHello hello{.window = connection_.window()};
    sendBytes(socket_.get(), &hello, sizeof hello);
    theirs.reset(); // so that a helper that dies closes the socket
    pollfd answerable{.fd = socket_.get(), .events = POLLIN, .revents = 0};
    GuardianAnswer answer{};
    const auto answered =
        poll(&answerable, 1, answerTimeout) == 1 && read(socket_.get(), &answer, 1) == 1;
    if (!answered || answer != GuardianAnswer::ready) {
        end();
        return answered ? Outcome::refused : Outcome::unguarded;
    }
    closed_ = std::make_unique<QSocketNotifier>(socket_.get(), QSocketNotifier::Read);
    QObject::connect(closed_.get(), &QSocketNotifier::activated, [this] { replace(); });
    return Outcome::guarded;
}

void Guardian::send(xcb_randr_crtc_t crtc, const GammaRamp& factory) {
    const GuardedRamp record{.crtc = crtc, .size = static_cast<std::uint32_t>(factory.size())};
    const auto channelBytes = factory.size() * sizeof(std::uint16_t);
    std::vector<char> message(sizeof record + 3 * channelBytes);
    std::memcpy(message.data(), &record, sizeof record);
    auto* rest = message.data() + sizeof record;
    for (const auto* const channel : {&factory.red, &factory.green, &factory.blue}) {
        std::memcpy(rest, channel->data(), channelBytes);
        rest += channelBytes;
    }
    sendBytes(socket_.get(), message.data(), message.size());
}

void Guardian::replace() {
    closed_->setEnabled(false);
    closed_.release()->deleteLater(); // this runs inside its signal
    end();
    connection_.synchronize();
    if (!connection_.isOpen()) {
        return; // the server has gone, and the helper after it
    }
    if (++replacements_ > mostReplacements || launch() != Outcome::guarded) {
        std::cerr << "nocta: " << guardianProgram()
                  << " keeps dying; a crash would leave the screen as it is" << std::endl;
        return;
    }
    for (const auto& [crtc, factory] : held_) {
        send(crtc, factory);
    }
}

void Guardian::end() {
    kill(process_, SIGKILL); // before the socket closes, which would tell it to act
    waitpid(process_, nullptr, 0);
    socket_.reset();
}

} // namespace nocta
