#include "backends/linux/files/PrivateFolder.h"

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace nocta {

namespace {

bool makeFolder(const std::filesystem::path& folder) {
    return mkdir(folder.c_str(), S_IRWXU) == 0 && chmod(folder.c_str(), S_IRWXU) == 0;
}

} // namespace

std::error_code createPrivateFolders(const std::filesystem::path& folder) {
    if (makeFolder(folder)) {
        return {};
    }
    if (errno == ENOENT && folder.has_parent_path()) {
        if (const auto error = createPrivateFolders(folder.parent_path())) {
            return error;
        }
        if (makeFolder(folder)) {
            return {};
        }
    }
    if (errno != EEXIST) {
        return {errno, std::generic_category()};
    }
    std::error_code error;
    const auto isFolder = std::filesystem::is_directory(folder, error);
    return isFolder || error ? error : std::make_error_code(std::errc::not_a_directory);
}

bool isPrivateFolder(const std::filesystem::path& folder) {
    struct stat status {};
    return stat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
           status.st_uid == geteuid() && (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

} // namespace nocta
