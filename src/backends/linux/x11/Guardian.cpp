#include "backends/linux/x11/Guardian.h"

#include "backends/linux/x11/GuardianProtocol.h"

#include <csignal>
#include <filesystem>
#include <iostream>
#include <poll.h>
#include <spawn.h>
#include <string>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace nocta {

namespace {

constexpr auto programName = "nocta-guardian";
constexpr int answerTimeout = 5000; // milliseconds; above what the helper itself waits
constexpr int mostReplacements = 3;

/// Installed beside the program.
std::string guardianProgram() {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    return (program.parent_path() / programName).string();
}

} // namespace

bool Guardian::start() {
    if (outcome_ == Outcome::refused && hasOwner()) {
        return false;
    }
    if (outcome_ == Outcome::none || outcome_ == Outcome::refused) {
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

/// Whether some guardian works on this display.
bool Guardian::hasOwner() {
    auto* const x = connection_.get();
    const XcbReply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        x, xcb_get_selection_owner(x, connection_.atom(guardianSelection)), nullptr));
    connection_.finishTurn();
    return !reply || reply->owner != XCB_NONE;
}

void Guardian::dismiss() {
    stop();
    outcome_ = Outcome::none;
}

void Guardian::wake() {
    closeSocket();
    outcome_ = Outcome::none;
}

Guardian::Outcome Guardian::launch() {
    int ends[2] = {-1, -1};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        return Outcome::unguarded;
    }
    FileDescriptor ours(ends[0]);
    FileDescriptor theirs(ends[1]);

    auto program = guardianProgram();
    char* const arguments[] = {program.data(), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, theirs.get(), STDIN_FILENO);
    const auto error =
        posix_spawn(&process_, program.c_str(), &actions, nullptr, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        process_ = -1;
        return Outcome::unguarded;
    }
    theirs.reset(); // so that a helper that dies closes the socket

    const GuardianHello hello{.window = connection_.window()};
    pollfd answerable{.fd = ours.get(), .events = POLLIN, .revents = 0};
    GuardianAnswer answer{};
    const auto answered = send(ours.get(), &hello, sizeof hello, MSG_NOSIGNAL) == sizeof hello &&
                          poll(&answerable, 1, answerTimeout) == 1 &&
                          read(ours.get(), &answer, 1) == 1;
    socket_ = std::move(ours);
    if (!answered || answer != GuardianAnswer::ready) {
        stop();
        return answered ? Outcome::refused : Outcome::unguarded;
    }
    closed_ = std::make_unique<QSocketNotifier>(socket_.get(), QSocketNotifier::Read);
    QObject::connect(closed_.get(), &QSocketNotifier::activated, [this] { replace(); });
    return Outcome::guarded;
}

void Guardian::replace() {
    stop();
    if (!connection_.synchronize()) {
        return; // the server has gone, and the helper after it
    }
    if (++replacements_ > mostReplacements || launch() != Outcome::guarded) {
        std::cerr << "nocta: " << guardianProgram()
                  << " keeps dying; a crash would leave the screen as it is" << std::endl;
    }
}

void Guardian::stop() {
    if (process_ > 0) {
        kill(process_, SIGKILL); // before the socket closes, which would tell it to act
        waitpid(std::exchange(process_, -1), nullptr, 0);
    }
    closeSocket();
}

void Guardian::closeSocket() {
    if (closed_ != nullptr) {
        closed_->setEnabled(false);
        closed_.release()->deleteLater(); // this may run inside its signal
    }
    socket_.reset();
}

} // namespace nocta
