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

/// The kernel's `landlock_ruleset_attr` with the members of later kernels. An older kernel accepts
/// it if those are zero.
struct RulesetAttributes {
    std::uint64_t files = 0;
    std::uint64_t network = 0;
    std::uint64_t scope = 0;
};

constexpr std::uint64_t readFile = LANDLOCK_ACCESS_FS_READ_FILE;
constexpr std::uint64_t readFolder = readFile | LANDLOCK_ACCESS_FS_READ_DIR;
constexpr std::uint64_t writeFolder =
    readFolder | LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_MAKE_REG;

constexpr std::uint64_t bindTcp = 1 << 0;
constexpr std::uint64_t connectTcp = 1 << 1;
constexpr std::uint64_t abstractSockets = 1 << 0;
constexpr std::uint64_t signals = 1 << 1;

/// What a system's libraries read while they resolve names and verify certificates.
constexpr std::array systemFolders = {"/etc/ssl",
                                      "/etc/pki",
                                      "/etc/ca-certificates",
                                      "/usr/lib/ssl",
                                      "/usr/share/pki",
                                      "/usr/share/ca-certificates",
                                      "/usr/share/p11-kit",
                                      "/usr/local/share/ca-certificates",
                                      "/etc/crypto-policies",
                                      "/usr/share/crypto-policies",
                                      "/etc/gnutls",
                                      "/lib",
                                      "/lib64",
                                      "/usr/lib",
                                      "/usr/lib64",
                                      "/usr/local/lib",
                                      "/nix/store",
                                      "/gnu/store"};
constexpr std::array systemFiles = {
    "/etc/resolv.conf", "/etc/hosts",       "/etc/host.conf", "/etc/nsswitch.conf", "/etc/gai.conf",
    "/etc/services",    "/etc/ld.so.cache", "/etc/localtime", "/dev/null",          "/dev/urandom"};

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
    explicit Ruleset(const RulesetAttributes& attributes)
        : descriptor_(static_cast<int>(
              syscall(SYS_landlock_create_ruleset, &attributes, sizeof attributes, 0))) {}

    /// Allows the access to a file, or to a folder and everything in it.
    void allow(int file, std::uint64_t access) {
        const landlock_path_beneath_attr rule{.allowed_access = access, .parent_fd = file};
        isComplete_ = isComplete_ && syscall(SYS_landlock_add_rule, descriptor_.get(),
                                             LANDLOCK_RULE_PATH_BENEATH, &rule, 0) == 0;
    }
    /// Ignores a path that does not exist.
    void allow(const char* path, std::uint64_t access) {
        const FileDescriptor file(open(path, O_PATH | O_CLOEXEC));
        struct stat status {};
        if (file && fstat(file.get(), &status) == 0) {
            allow(file.get(), S_ISDIR(status.st_mode) ? access : access & readFile);
        }
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
    constexpr long versionWithNetwork = 4;
    constexpr long versionWithScopes = 6;
    Ruleset rules(
        {.files = fileAccess(version),
         .network = version < versionWithNetwork ? 0 : bindTcp | (needs.network ? 0 : connectTcp),
         .scope = version < versionWithScopes ? 0 : abstractSockets | signals});
    if (needs.network) {
        for (const auto* const folder : systemFolders) {
            rules.allow(folder, readFolder);
        }
        for (const auto* const file : systemFiles) {
            rules.allow(file, readFile);
        }
        if (!needs.certificates.empty()) {
            rules.allow(needs.certificates.c_str(), readFile);
        }
    }
    if (needs.folder >= 0) {
        rules.allow(needs.folder, needs.writesFolder ? writeFolder : readFolder);
    }
    return rules.enforce();
}

} // namespace nocta
