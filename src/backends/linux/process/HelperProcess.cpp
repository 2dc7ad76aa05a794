#include "backends/linux/process/HelperProcess.h"

#include "backends/linux/process/HelperProtocol.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace nocta {

namespace {

/// This process ignores SIGPIPE, but its children must not. A helper starts with the ending signals
/// blocked: the terminal sends Ctrl-C to the helper as well, perhaps before the helper can ignore
/// it.
class SpawnAttributes {
public:
    SpawnAttributes() {
        posix_spawnattr_init(&attributes_);
        sigset_t reset;
        sigemptyset(&reset);
        sigaddset(&reset, SIGPIPE);
        posix_spawnattr_setsigdefault(&attributes_, &reset);
        sigset_t blocked;
        sigemptyset(&blocked);
        for (const auto signal : {SIGINT, SIGTERM, SIGHUP}) {
            sigaddset(&blocked, signal);
        }
        posix_spawnattr_setsigmask(&attributes_, &blocked);
        posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    }
    SpawnAttributes(const SpawnAttributes&) = delete;
    SpawnAttributes& operator=(const SpawnAttributes&) = delete;
    ~SpawnAttributes() { posix_spawnattr_destroy(&attributes_); }

    const posix_spawnattr_t* get() const { return &attributes_; }

private:
    posix_spawnattr_t attributes_;
};

/// A null-terminated list, as for exec.
std::vector<char*> pointersTo(std::vector<std::string>& words) {
    std::vector<char*> list(words.size() + 1, nullptr);
    std::ranges::transform(words, list.begin(), [](std::string& word) { return word.data(); });
    return list;
}

} // namespace

std::string HelperProcess::path(const char* name) {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    return (program.parent_path() / name).string();
}

bool HelperProcess::start(const char* name, const std::vector<std::string>& arguments,
                          std::optional<std::vector<std::string>> variables) {
    int ends[2] = {-1, -1};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        return false;
    }
    FileDescriptor ours(ends[0]);
    const FileDescriptor theirs(ends[1]); // closed here, so that we notice when the helper exits

    auto words = arguments;
    words.insert(words.begin(), path(name));
    words.emplace_back(helperProtocol);
    const auto list = pointersTo(words);
    const auto environment = variables ? pointersTo(*variables) : std::vector<char*>();
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, theirs.get(), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, theirs.get(), STDOUT_FILENO);
    const SpawnAttributes attributes;
    const auto error = posix_spawn(&process_, words[0].c_str(), &actions, attributes.get(),
                                   list.data(), variables ? environment.data() : environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        process_ = -1;
        return false;
    }
    socket_ = std::move(ours);
    return true;
}

bool HelperProcess::send(const void* data, std::size_t size) const {
    return ::send(socket_.get(), data, size, MSG_NOSIGNAL) == static_cast<ssize_t>(size);
}

std::optional<char> HelperProcess::answer(std::chrono::milliseconds timeout) const {
    pollfd answerable{.fd = socket_.get(), .events = POLLIN, .revents = 0};
    char byte = 0;
    const auto answered = poll(&answerable, 1, static_cast<int>(timeout.count())) == 1 &&
                          read(socket_.get(), &byte, 1) == 1;
    return answered ? std::optional(byte) : std::nullopt;
}

void HelperProcess::endInput() const {
    shutdown(socket_.get(), SHUT_WR);
}

void HelperProcess::whenReadable(std::function<void()> action) {
    readable_ = std::make_unique<QSocketNotifier>(socket_.get(), QSocketNotifier::Read);
    QObject::connect(readable_.get(), &QSocketNotifier::activated, std::move(action));
}

ssize_t HelperProcess::receive(char* data, std::size_t size) const {
    return recv(socket_.get(), data, size, MSG_DONTWAIT);
}

bool HelperProcess::waitForEnd(std::chrono::milliseconds timeout) {
    if (process_ > 0) {
        // Waits for the hang-up only; unread data from the helper does not matter.
        pollfd ended{.fd = socket_.get(), .events = POLLRDHUP, .revents = 0};
        if (poll(&ended, 1, static_cast<int>(timeout.count())) != 1) {
            return false;
        }
        reap();
    }
    return true;
}

void HelperProcess::kill() {
    if (process_ > 0) {
        ::kill(process_, SIGKILL); // before the socket closes, which the helper would react to
        reap();
    }
}

void HelperProcess::reap() {
    waitpid(process_, nullptr, 0);
    release();
}

void HelperProcess::release() {
    process_ = -1;
    if (readable_ != nullptr) {
        readable_->setEnabled(false);
        readable_.release()->deleteLater(); // the notifier may be emitting its signal
    }
    socket_.reset();
}

} // namespace nocta
