// A program that gives up what nocta-fetch gives up, tries what it may no longer do, and prints the
// outcome of each attempt. It is built without sanitizers, which need what is forbidden.
//
// Usage: nocta-confined JOB FOLDER FILE ATTEMPT...
// JOB is "download", "verify" or "none". FOLDER is the folder of an open file, FILE a file of the
// user's elsewhere.

#include "backends/linux/fetch/Confinement.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <pthread.h>
#include <sched.h>
#include <spawn.h>
#include <string>
#include <string_view>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/shm.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

std::string folder;
std::string file;
int openFileDescriptor = -1; // a file that was opened before

/// Returns 0 if the attempt succeeded, or else its errno.
using Attempt = int (*)();

int outcome(long result) {
    return result < 0 ? errno : 0;
}

int openFile(const std::string& path, int flags) {
    return outcome(open(path.c_str(), flags | O_CLOEXEC, 0600));
}

int makeSocket(int family, int type, int protocol = 0) {
    return outcome(socket(family, type, protocol));
}

int startThread() {
    pthread_t thread{};
    const auto error = pthread_create(
        &thread, nullptr, [](void* value) { return value; }, nullptr);
    return error != 0 ? error : pthread_join(thread, nullptr);
}

template <class Value>
int setSocketOption(int level, int option, const Value& value) {
    const auto client = socket(AF_INET, SOCK_STREAM, 0);
    return client < 0 ? errno : outcome(setsockopt(client, level, option, &value, sizeof value));
}

int listenOnLoopback() {
    const auto server = socket(AF_INET, SOCK_STREAM, 0);
    return server < 0 ? errno : outcome(listen(server, 1));
}

int connectToLoopback() {
    const auto client = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(1); // nobody listens there
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return client < 0 ? errno
                      : outcome(connect(client, reinterpret_cast<const sockaddr*>(&address),
                                        sizeof address));
}

int allocate(std::size_t size) {
    void* const memory =
        mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return memory == MAP_FAILED ? errno : 0;
}

struct Named {
    std::string_view name;
    Attempt attempt;
};

// clang-format off
constexpr std::array attempts = {
    Named{"exec", [] { return outcome(execl("/bin/true", "true", nullptr)); }},
    Named{"execveat", [] { return outcome(syscall(SYS_execveat, AT_FDCWD, "/bin/true", nullptr, nullptr, 0)); }},
    Named{"spawn", [] { pid_t child = 0; char name[] = "true"; char* words[] = {name, nullptr};
                        return posix_spawn(&child, "/bin/true", nullptr, nullptr, words, environ); }},
    Named{"fork", [] { const auto child = fork(); if (child == 0) { _exit(0); } return outcome(child); }},
    Named{"clone3", [] { return outcome(syscall(SYS_clone3, nullptr, 0)); }},
    Named{"ptrace", [] { return outcome(ptrace(PTRACE_ATTACH, getppid(), nullptr, nullptr)); }},
    Named{"processMemory", [] { return outcome(syscall(SYS_process_vm_readv, getppid(), nullptr, 0, nullptr, 0, 0)); }},
    Named{"kill", [] { return outcome(kill(getppid(), 0)); }},
    Named{"tgkill", [] { return outcome(syscall(SYS_tgkill, getppid(), getppid(), 0)); }},
    Named{"pidfd", [] { return outcome(syscall(SYS_pidfd_open, getppid(), 0)); }},
    Named{"signalByOwner", [] { return outcome(fcntl(STDIN_FILENO, F_SETOWN, getppid())); }},
    Named{"limitsOfOthers", [] { rlimit limits{}; return outcome(prlimit(getppid(), RLIMIT_NOFILE, nullptr, &limits)); }},
    Named{"mount", [] { return outcome(mount("none", folder.c_str(), "tmpfs", 0, nullptr)); }},
    Named{"unshare", [] { return outcome(unshare(CLONE_NEWUSER)); }},
    Named{"setns", [] { return outcome(setns(STDIN_FILENO, 0)); }},
    Named{"chroot", [] { return outcome(chroot(folder.c_str())); }},
    Named{"keyring", [] { return outcome(syscall(SYS_keyctl, 0, -3, 0, 0, 0)); }},
    Named{"ioUring", [] { return outcome(syscall(SYS_io_uring_setup, 1, nullptr)); }},
    Named{"bpf", [] { return outcome(syscall(SYS_bpf, 0, nullptr, 0)); }},
    Named{"perf", [] { return outcome(syscall(SYS_perf_event_open, nullptr, 0, -1, -1, 0)); }},
    Named{"sharedMemory", [] { return outcome(shmget(IPC_PRIVATE, 1, IPC_CREAT | 0600)); }},
    Named{"terminal", [] { char c = 'x'; return outcome(ioctl(STDIN_FILENO, TIOCSTI, &c)); }},
    Named{"chmod", [] { return outcome(chmod(file.c_str(), 0777)); }},
    Named{"chown", [] { return outcome(chown(file.c_str(), getuid(), getgid())); }},
    Named{"attributes", [] { return outcome(setxattr(file.c_str(), "user.x", "", 0, 0)); }},
    Named{"truncate", [] { return outcome(truncate(file.c_str(), 0)); }},
    Named{"unlink", [] { return outcome(unlink(file.c_str())); }},
    Named{"rename", [] { return outcome(rename(file.c_str(), (file + "2").c_str())); }},
    Named{"chmodAt", [] { return outcome(fchmodat(AT_FDCWD, file.c_str(), 0777, 0)); }},
    Named{"unlinkAt", [] { return outcome(unlinkat(AT_FDCWD, file.c_str(), 0)); }},
    Named{"renameAt", [] { return outcome(syscall(SYS_renameat2, AT_FDCWD, file.c_str(), AT_FDCWD, (file + "2").c_str(), 0)); }},
    Named{"linkAt", [] { return outcome(linkat(AT_FDCWD, file.c_str(), AT_FDCWD, (file + "2").c_str(), 0)); }},
    Named{"times", [] { return outcome(utimensat(AT_FDCWD, file.c_str(), nullptr, 0)); }},
    Named{"truncateOpen", [] { return outcome(ftruncate(openFileDescriptor, 0)); }},
    Named{"memoryFile", [] { return outcome(memfd_create("x", 0)); }},
    Named{"writeOpen", [] { return outcome(write(openFileDescriptor, "x", 1)); }},
    Named{"linger", [] { const linger value{1, 60}; return setSocketOption(SOL_SOCKET, SO_LINGER, value); }},
    Named{"noDelay", [] { return setSocketOption(IPPROTO_TCP, TCP_NODELAY, 1); }},
    Named{"threadWithOwnFiles", [] { return outcome(syscall(SYS_clone, CLONE_VM | CLONE_SIGHAND | CLONE_THREAD, nullptr, nullptr, nullptr, 0)); }},
    Named{"newPrivileges", [] { return outcome(prctl(PR_SET_NO_NEW_PRIVS, 0, 0, 0, 0)); }},
    Named{"unixSocket", [] { return makeSocket(AF_UNIX, SOCK_STREAM); }},
    Named{"datagramPair", [] { int ends[2]; return outcome(socketpair(AF_UNIX, SOCK_DGRAM, 0, ends)); }},
    Named{"netlinkSocket", [] { return makeSocket(AF_NETLINK, SOCK_RAW); }},
    Named{"packetSocket", [] { return makeSocket(AF_PACKET, SOCK_RAW); }},
    Named{"vsock", [] { return makeSocket(AF_VSOCK, SOCK_STREAM); }},
    Named{"multipathSocket", [] { return makeSocket(AF_INET, SOCK_STREAM, IPPROTO_MPTCP); }},
    Named{"lightSocket", [] { return makeSocket(AF_INET, SOCK_DGRAM, IPPROTO_UDPLITE); }},
    Named{"tcpSocket", [] { return makeSocket(AF_INET, SOCK_STREAM); }},
    Named{"udpSocket", [] { return makeSocket(AF_INET6, SOCK_DGRAM); }},
    Named{"server", listenOnLoopback},
    Named{"client", connectToLoopback},
    Named{"readUserFile", [] { return openFile(file, O_RDONLY); }},
    Named{"writeUserFile", [] { return openFile(file, O_WRONLY); }},
    Named{"truncateByOpening", [] { return openFile(file, O_ACCMODE | O_TRUNC); }},
    Named{"newUserFile", [] { return openFile(file + "3", O_WRONLY | O_CREAT); }},
    Named{"listUserFolder", [] { return openFile(file.substr(0, file.rfind('/')), O_RDONLY | O_DIRECTORY); }},
    Named{"processes", [] { return openFile("/proc/self/environ", O_RDONLY); }},
    Named{"passwords", [] { return openFile("/etc/passwd", O_RDONLY); }},
    Named{"terminalFile", [] { return openFile("/dev/tty", O_RDWR); }},
    Named{"certificates", [] { return openFile("/etc/ssl", O_RDONLY | O_DIRECTORY); }},
    Named{"hosts", [] { return openFile("/etc/hosts", O_RDONLY); }},
    Named{"writeHosts", [] { return openFile("/etc/hosts", O_WRONLY); }},
    Named{"readFolder", [] { return openFile(folder + "/old", O_RDONLY); }},
    Named{"newFile", [] { return openFile(folder + "/new", O_WRONLY | O_CREAT | O_EXCL); }},
    Named{"newLink", [] { return outcome(symlink("/", (folder + "/link").c_str())); }},
    Named{"newFolder", [] { return outcome(mkdir((folder + "/folder").c_str(), 0700)); }},
    Named{"thread", startThread},
    Named{"littleMemory", [] { return allocate(16 << 20); }},
    Named{"muchMemory", [] { return allocate(64 << 20); }},
};
// clang-format on

void printLimits() {
    for (const auto& [name, resource] :
         {std::pair{"fileSize", RLIMIT_FSIZE}, std::pair{"descriptors", RLIMIT_NOFILE},
          std::pair{"processorTime", RLIMIT_CPU}, std::pair{"core", RLIMIT_CORE}}) {
        rlimit limits{};
        getrlimit(resource, &limits);
        std::printf("%s %lu\n", name, static_cast<unsigned long>(limits.rlim_max));
    }
}

} // namespace

int main(int argumentCount, char** arguments) {
    const std::vector<std::string> words(arguments + 1, arguments + argumentCount);
    if (words.size() < 3) {
        return EXIT_FAILURE;
    }
    const auto downloads = words[0] == "download";
    folder = words[1];
    file = words[2];
    openFileDescriptor = open((folder + "/open").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    constexpr auto maxFileSize = 100'000; // bytes, includes the output
    if (words[0] != "none" && !nocta::confine({.network = downloads, .maxFileSize = maxFileSize})) {
        return EXIT_FAILURE;
    }
    std::setvbuf(stdout, nullptr, _IONBF, 0); // an attempt may end the process
    for (auto word = words.begin() + 3; word != words.end(); ++word) {
        const auto* const named = std::ranges::find(attempts, *word, &Named::name);
        const auto error = named == attempts.end() ? EINVAL : named->attempt();
        std::printf("%s %s\n", word->c_str(), error == 0 ? "OK" : strerrorname_np(error));
    }
    printLimits();
    return EXIT_SUCCESS;
}
