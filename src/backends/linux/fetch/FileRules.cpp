#include "backends/linux/fetch/FileRules.h"

#include "backends/linux/files/FileDescriptor.h"

#include <array>
#include <cstdint>
#include <fcntl.h>
#include <linux/landlock.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace nocta {

namespace {

constexpr std::uint64_t readFile = LANDLOCK_ACCESS_FS_READ_FILE;
constexpr std::uint64_t readFolder = readFile | LANDLOCK_ACCESS_FS_READ_DIR;

/// What a system's libraries read while they resolve names and verify certificates.
// clang-format off
constexpr std::array systemPaths = {
    "/etc/ssl", "/etc/pki", "/etc/ca-certificates", "/usr/lib/ssl", "/usr/share/pki",
    "/usr/share/ca-certificates", "/usr/local/share/ca-certificates", "/usr/share/p11-kit",
    "/etc/crypto-policies", "/usr/share/crypto-policies", "/etc/gnutls",
    "/lib", "/lib64", "/usr/lib", "/usr/lib64", "/usr/local/lib", "/nix/store", "/gnu/store",
    "/etc/ld.so.cache", "/etc/resolv.conf", "/etc/hosts", "/etc/host.conf", "/etc/nsswitch.conf",
    "/etc/gai.conf", "/etc/services", "/etc/localtime", "/dev/null", "/dev/urandom"};
// clang-format on

/// The kinds of access to files that each version of Landlock can limit.
std::uint64_t fileAccess(long version) {
    constexpr int kindsInVersion1 = 13;
    // Versions 2, 3 and 5 each added one kind.
    const auto kinds =
        kindsInVersion1 + (version >= 2 ? 1 : 0) + (version >= 3 ? 1 : 0) + (version >= 5 ? 1 : 0);
    return (std::uint64_t{1} << kinds) - 1;
}

class Ruleset {
public:
    explicit Ruleset(std::uint64_t limitedAccess) {
        landlock_ruleset_attr attributes{};
        attributes.handled_access_fs = limitedAccess;
        descriptor_ = FileDescriptor(static_cast<int>(
            syscall(SYS_landlock_create_ruleset, &attributes, sizeof attributes, 0)));
    }

    /// Allows reading a file, or a folder and everything in it. Ignores a path that does not exist.
    void allowReading(const char* path) {
        const FileDescriptor file(open(path, O_PATH | O_CLOEXEC));
        struct stat status {};
        if (!file || fstat(file.get(), &status) != 0) {
            return;
        }
        const landlock_path_beneath_attr rule{.allowed_access =
                                                  S_ISDIR(status.st_mode) ? readFolder : readFile,
                                              .parent_fd = file.get()};
        isComplete_ = isComplete_ && syscall(SYS_landlock_add_rule, descriptor_.get(),
                                             LANDLOCK_RULE_PATH_BENEATH, &rule, 0) == 0;
    }
    bool enforce() const {
        return descriptor_ && isComplete_ &&
               syscall(SYS_landlock_restrict_self, descriptor_.get(), 0) == 0;
    }

private:
    FileDescriptor descriptor_;
    bool isComplete_ = true;
};

} // namespace

bool limitFiles(const Needs& needs) {
    const auto version =
        syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    if (version < 1) {
        return true;
    }
    Ruleset rules(fileAccess(version));
    if (needs.network) {
        for (const auto* const path : systemPaths) {
            rules.allowReading(path);
        }
        if (!needs.certificates.empty()) {
            rules.allowReading(needs.certificates.c_str());
        }
    }
    return rules.enforce();
}

} // namespace nocta
