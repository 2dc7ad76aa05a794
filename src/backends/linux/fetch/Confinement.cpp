#include "backends/linux/fetch/Confinement.h"

#include "backends/linux/fetch/FileRules.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <fstream>
#include <initializer_list>
#include <memory>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sched.h>
#include <seccomp.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace nocta {

namespace {

constexpr rlim_t maxGrowth = 48 << 20; // bytes of address space, on top of what is mapped already
constexpr rlim_t maxDescriptors = 64;
constexpr rlim_t maxProcessorTime = 60; // seconds

/// System calls that a download needs with any arguments. Programs and libraries handle a missing
/// system call, so the others fail as if the kernel did not have them.
// clang-format off
constexpr std::array freeCalls = {
    // files that are open
    "read", "write", "readv", "writev", "pread64", "pwrite64", "lseek", "_llseek",
    "close", "close_range", "dup", "dup2", "dup3", "pipe2", "eventfd2",
    "fstat", "fstat64", "fstatfs", "fstatfs64", "getdents64",
    // paths, which have limits of their own
    "access", "faccessat", "faccessat2", "stat", "stat64", "lstat", "lstat64",
    "newfstatat", "fstatat64", "statx", "statfs", "statfs64", "readlink", "readlinkat", "getcwd",
    // memory
    "mmap", "mmap2", "mremap", "munmap", "mprotect", "madvise", "brk",
    // threads
    "membarrier", "futex", "futex_time64", "set_robust_list", "get_robust_list", "rseq",
    "set_tid_address", "sched_yield", "sched_getaffinity", "exit", "exit_group",
    "restart_syscall", "rt_sigaction", "rt_sigprocmask", "rt_sigreturn", "sigreturn",
    "sigaltstack",
    // waiting
    "poll", "ppoll", "ppoll_time64", "select", "_newselect", "pselect6", "pselect6_time64",
    "epoll_create1", "epoll_ctl", "epoll_wait", "epoll_pwait",
    "nanosleep", "clock_nanosleep", "clock_nanosleep_time64",
    // questions
    "clock_gettime", "clock_gettime64", "clock_getres", "gettimeofday", "time", "times",
    "getrandom", "getrusage", "uname", "sysinfo", "getpid", "getppid", "gettid",
    "getuid", "geteuid", "getgid", "getegid", "getuid32", "geteuid32", "getgid32", "getegid32"};
// clang-format on

/// System calls on sockets. Sockets themselves are limited to the internet's.
constexpr std::array socketCalls = {"connect",     "sendto",         "sendmsg",  "sendmmsg",
                                    "recvfrom",    "recvmsg",        "recvmmsg", "getsockname",
                                    "getpeername", "getsockopt",     "shutdown", "send",
                                    "recv",        "recvmmsg_time64"};

bool limit(__rlimit_resource resource, rlim_t value) {
    const rlimit limits{value, value};
    return setrlimit(resource, &limits) == 0;
}

/// The size of this process's address space, in bytes; 0 if it is unknown.
rlim_t mappedSize() {
    rlim_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
}

bool limitResources(const Needs& needs) {
    const auto mapped = mappedSize();
    return mapped != 0 && limit(RLIMIT_AS, mapped + maxGrowth) &&
           limit(RLIMIT_FSIZE, static_cast<rlim_t>(needs.maxFileSize)) &&
           limit(RLIMIT_NOFILE, maxDescriptors) && limit(RLIMIT_CPU, maxProcessorTime) &&
           limit(RLIMIT_CORE, 0);
}

class SystemCallFilter {
public:
    SystemCallFilter() : filter_(seccomp_init(SCMP_ACT_ERRNO(ENOSYS)), &seccomp_release) {}

    /// Allows a system call whose arguments meet all conditions. A name that this system does not
    /// know needs no rule.
    void allow(const char* name, std::initializer_list<scmp_arg_cmp> conditions = {}) {
        const auto number = seccomp_syscall_resolve_name(name);
        if (number == __NR_SCMP_ERROR) {
            return;
        }
        isComplete_ = isComplete_ && filter_ != nullptr &&
                      seccomp_rule_add_array(filter_.get(), SCMP_ACT_ALLOW, number,
                                             static_cast<unsigned>(conditions.size()),
                                             conditions.begin()) == 0;
    }

    bool load() const { return isComplete_ && seccomp_load(filter_.get()) == 0; }

private:
    std::unique_ptr<void, decltype(&seccomp_release)> filter_;
    bool isComplete_ = true;
};

void allowSockets(SystemCallFilter& filter) {
    for (const auto* const name : socketCalls) {
        filter.allow(name);
    }
    constexpr scmp_datum_t typeMask = 0xf;
    for (const auto family : {AF_INET, AF_INET6}) {
        for (const auto& [type, protocol] :
             {std::pair{SOCK_STREAM, 0}, std::pair{SOCK_STREAM, int{IPPROTO_TCP}},
              std::pair{SOCK_DGRAM, 0}, std::pair{SOCK_DGRAM, int{IPPROTO_UDP}}}) {
            filter.allow("socket",
                         {SCMP_A0(SCMP_CMP_EQ, static_cast<scmp_datum_t>(family)),
                          SCMP_A1(SCMP_CMP_MASKED_EQ, typeMask, static_cast<scmp_datum_t>(type)),
                          SCMP_A2(SCMP_CMP_EQ, static_cast<scmp_datum_t>(protocol))});
        }
    }
    // Other options could let a socket block the process that it is passed to.
    for (const auto& [level, option] :
         {std::pair{IPPROTO_TCP, TCP_NODELAY}, std::pair{IPPROTO_IP, IP_RECVERR},
          std::pair{IPPROTO_IPV6, IPV6_RECVERR}}) {
        filter.allow("setsockopt", {SCMP_A1(SCMP_CMP_EQ, static_cast<scmp_datum_t>(level)),
                                    SCMP_A2(SCMP_CMP_EQ, static_cast<scmp_datum_t>(option))});
    }
    // The resolver's thread wakes the main thread through a pair. Datagram sockets could be
    // connected to another program afterward.
    filter.allow("socketpair", {SCMP_A0(SCMP_CMP_EQ, AF_UNIX),
                                SCMP_A1(SCMP_CMP_MASKED_EQ, typeMask, SOCK_STREAM)});
}

void allowThreads(SystemCallFilter& filter) {
    constexpr scmp_datum_t required = CLONE_THREAD | CLONE_FILES; // one limit on descriptors
    constexpr scmp_datum_t newNamespaces = CLONE_NEWNS | CLONE_NEWCGROUP | CLONE_NEWUTS |
                                           CLONE_NEWIPC | CLONE_NEWUSER | CLONE_NEWPID |
                                           CLONE_NEWNET;
    filter.allow("clone", {SCMP_A0(SCMP_CMP_MASKED_EQ, required | newNamespaces, required)});
}

bool limitSystemCalls(const Needs& needs) {
    SystemCallFilter filter;
    for (const auto* const name : freeCalls) {
        filter.allow(name);
    }
    if (needs.network) {
        allowSockets(filter);
        allowThreads(filter); // the resolver has one
    }
    // Early versions of Landlock do not limit truncation, which needs neither reading nor writing.
    constexpr scmp_datum_t changes = O_ACCMODE | O_CREAT | O_TRUNC | (O_TMPFILE & ~O_DIRECTORY);
    filter.allow("open", {SCMP_A1(SCMP_CMP_MASKED_EQ, changes, 0)});
    filter.allow("openat", {SCMP_A2(SCMP_CMP_MASKED_EQ, changes, 0)});
    for (const auto command : {F_DUPFD, F_DUPFD_CLOEXEC, F_GETFD, F_SETFD, F_GETFL, F_SETFL}) {
        for (const auto* const name : {"fcntl", "fcntl64"}) {
            filter.allow(name, {SCMP_A1(SCMP_CMP_EQ, static_cast<scmp_datum_t>(command))});
        }
    }
    for (const auto request : {FIONBIO, FIONREAD, TCGETS}) {
        filter.allow("ioctl", {SCMP_A1(SCMP_CMP_EQ, static_cast<scmp_datum_t>(request))});
    }
    filter.allow("prctl", {SCMP_A0(SCMP_CMP_EQ, PR_SET_NAME)});
    // Only for this process.
    filter.allow("prlimit64", {SCMP_A0(SCMP_CMP_EQ, 0)});
    filter.allow("tgkill", {SCMP_A0(SCMP_CMP_EQ, static_cast<scmp_datum_t>(getpid()))});
    return filter.load();
}

} // namespace

bool confine(const Needs& needs) {
    return limitResources(needs) && prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           limitFiles(needs) && limitSystemCalls(needs);
}

} // namespace nocta
