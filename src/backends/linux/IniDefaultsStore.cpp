#include "backends/linux/IniDefaultsStore.h"

#include "backends/linux/FileDescriptor.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <iostream>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace nocta {

namespace {

/// Far above what sixteen settings and their neighbours can need.
constexpr std::size_t largestFile = 1 << 20;

/// The whole content; an error number where it cannot be read or is no settings file by its size.
int readFile(const std::filesystem::path& file, std::string& content) {
    const FileDescriptor input(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!input || fstat(input.get(), &status) != 0) {
        return errno;
    }
    if (!S_ISREG(status.st_mode)) {
        return S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
    }
    std::array<char, 4096> block{};
    while (content.size() <= largestFile) {
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

bool writeAll(int file, std::string_view text) {
    while (!text.empty()) {
        const auto length = ::write(file, text.data(), text.size());
        if (length < 0) {
            return false;
        }
        text.remove_prefix(static_cast<std::size_t>(length));
    }
    return true;
}

} // namespace

IniDefaultsStore::IniDefaultsStore(std::filesystem::path file) : file_(std::move(file)) {
    // A settings file that is a link stays one: its target is what is replaced.
    std::error_code error;
    if (auto target = std::filesystem::canonical(file_, error); !error) {
        file_ = std::move(target);
    }
    load();
}

void IniDefaultsStore::load() {
    std::string content;
    const auto error = readFile(file_, content);
    if (error == ENOENT || error == ENOTDIR) {
        return;
    }
    document_ = IniDocument::parse(content);
    for (const auto& [key, value] : document_.values()) {
        table_.set(key, value);
    }
    if (error != 0 || !document_.isWellFormed()) {
        mustMoveAside_ = true;
        const auto* const reason = error != 0 ? std::strerror(error) : "it is not an INI file";
        std::cerr << "nocta: cannot read all of " << file_.string() << " (" << reason
                  << "); it will be moved aside" << std::endl;
    }
}

void IniDefaultsStore::set(DefaultsValue value, std::string_view key) {
    document_.set(key, value);
    table_.set(key, std::move(value));
    write(Durability::eventual);
}

void IniDefaultsStore::removeObjectForKey(std::string_view key) {
    if (!table_.stored().contains(key)) {
        return;
    }
    document_.remove(key);
    table_.remove(key);
    write(Durability::eventual);
}

void IniDefaultsStore::synchronize() {
    if (!table_.stored().empty()) {
        write(Durability::synchronous);
    }
}

void IniDefaultsStore::write(Durability durability) {
    const auto directory = file_.parent_path();
    std::error_code ignored; // what matters shows when the file is opened
    std::filesystem::create_directories(directory, ignored);

    const auto temporary = file_.string() + ".new";
    const auto sync = durability == Durability::synchronous;
    const auto written = [&] {
        if (mustMoveAside_ && !moveAside()) {
            return false;
        }
        FileDescriptor const output(
            open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600));
        return output && writeAll(output.get(), document_.text()) &&
               (!sync || fsync(output.get()) == 0) && rename(temporary.c_str(), file_.c_str()) == 0;
    }();
    if (!written) {
        if (!writeFailed_) {
            writeFailed_ = true;
            std::cerr << "nocta: cannot write " << file_.string() << " (" << std::strerror(errno)
                      << "); settings last until Nocta ends" << std::endl;
        }
        unlink(temporary.c_str());
    } else if (sync) {
        const FileDescriptor folder(open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        fsync(folder.get()); // the rename itself; a file system that cannot has done what it can
    }
}

bool IniDefaultsStore::moveAside() {
    auto aside = file_.string() + ".damaged";
    for (int number = 2; std::filesystem::exists(std::filesystem::symlink_status(aside));
         ++number) {
        aside = file_.string() + ".damaged-" + std::to_string(number);
    }
    mustMoveAside_ = rename(file_.c_str(), aside.c_str()) != 0;
    return !mustMoveAside_;
}

} // namespace nocta
