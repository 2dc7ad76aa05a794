#include "backends/linux/files/FileContent.h"

#include "backends/linux/files/FileDescriptor.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nocta {

int readFile(const std::filesystem::path& file, std::size_t maxSize, std::string& content,
             int flags) {
    content.clear();
    const FileDescriptor input(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | flags));
    struct stat status {};
    if (!input || fstat(input.get(), &status) != 0) {
        return errno;
    }
    if (!S_ISREG(status.st_mode)) {
        return S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
    }
    std::array<char, 4096> block{};
    while (content.size() <= maxSize) {
        const auto length = read(input.get(), block.data(), block.size());
        if (length < 0) {
            return errno;
        }
        if (length == 0) {
            return 0;
        }
        content.append(block.data(), static_cast<std::size_t>(length));
    }
    content.clear();
    return EFBIG;
}

} // namespace nocta
