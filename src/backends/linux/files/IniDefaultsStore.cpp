#include "backends/linux/files/IniDefaultsStore.h"

#include "backends/linux/files/FileContent.h"
#include "backends/linux/files/FileDescriptor.h"
#include "backends/linux/files/FileLock.h"
#include "backends/linux/files/PrivateFolder.h"

#include <cerrno>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <iostream>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace nocta {

namespace {

using namespace std::chrono_literals;

/// Far more than all settings and the sections of other programs need.
constexpr std::size_t maxFileSize = 1 << 20; // bytes

/// Precedes the ID of the writing process in the name of a temporary file.
constexpr auto temporaryMark = ".new-";

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

/// Whether this is one of our temporary files whose writer has exited. The name is `prefix`, the
/// writer's process ID, a dash and six characters.
bool isLeftTemporary(const std::filesystem::path& path, std::string_view prefix) {
    const auto name = path.filename().string();
    pid_t writer = 0;
    if (!name.starts_with(prefix)) {
        return false;
    }
    const auto* const end = name.data() + name.size();
    const auto number = std::from_chars(name.data() + prefix.size(), end, writer);
    struct stat status {};
    return number.ec == std::errc() && writer > 0 && end - number.ptr == 7 && *number.ptr == '-' &&
           lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           status.st_uid == geteuid() && kill(writer, 0) != 0 && errno == ESRCH;
}

} // namespace

/// The content read from the file.
struct IniDefaultsStore::Content {
    IniDocument document;
    bool isMissing = false;
    bool isDamaged = false;
};

IniDefaultsStore::IniDefaultsStore(std::filesystem::path file, RunLoop& runLoop,
                                   std::chrono::milliseconds lockTimeout)
    : file_(std::move(file)), lockTimeout_(lockTimeout),
      write_(runLoop, [this] { writeChanges(); }), endTurn_(runLoop, [this] { write_.request(); }) {
    // If the settings file is a link, the link stays, and we replace its target.
    std::error_code error;
    if (auto target = std::filesystem::canonical(file_, error); !error) {
        file_ = std::move(target);
    } else if (const auto missing = std::filesystem::read_symlink(file_, error); !error) {
        file_ = file_.parent_path() / missing;
    }
    removeLeftTemporaries();
    document_ = read().document;
    for (const auto& [key, value] : document_.values()) {
        table_.set(key, value);
    }
}

/// Reads the file. A damaged file is reported once.
IniDefaultsStore::Content IniDefaultsStore::read() {
    std::string text;
    const auto error = readFile(file_, maxFileSize, text);
    Content content{.document = IniDocument::parse(text)};
    content.isMissing = error == ENOENT || error == ENOTDIR;
    content.isDamaged = !content.isMissing && (error != 0 || !content.document.isWellFormed());
    if (!std::exchange(mustMoveAside_, content.isDamaged) && content.isDamaged) {
        const auto* const reason = error != 0 ? std::strerror(error) : "it is not an INI file";
        std::cerr << "nocta: cannot read all of " << file_.string() << " (" << reason
                  << "); it will be moved aside" << std::endl;
    }
    return content;
}

std::filesystem::path IniDefaultsStore::lockFile() const {
    return file_.string() + ".lock";
}

/// Removes the temporary files of killed writers, but only while no process is writing: inside a
/// sandbox, a writer that runs outside it can look like a process that does not exist.
void IniDefaultsStore::removeLeftTemporaries() const {
    std::vector<std::filesystem::path> left;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(file_.parent_path(), error), end;
         !error && entry != end; entry.increment(error)) {
        if (isLeftTemporary(entry->path(), file_.filename().string() + temporaryMark)) {
            left.push_back(entry->path());
        }
    }
    if (left.empty()) {
        return;
    }
    if (const FileLock lock(lockFile()); lock.acquire(lockTimeout_)) {
        for (const auto& temporary : left) {
            unlink(temporary.c_str());
        }
    }
}

void IniDefaultsStore::set(DefaultsValue value, std::string_view key) {
    change(key, value);
    table_.set(key, std::move(value));
}

void IniDefaultsStore::removeObjectForKey(std::string_view key) {
    if (!table_.stored().contains(key) && !read().document.values().contains(key)) {
        return;
    }
    change(key, std::nullopt);
    table_.remove(key);
}

void IniDefaultsStore::change(std::string_view key, std::optional<DefaultsValue> value) {
    changes_.insert_or_assign(std::string(key), std::move(value));
    endTurn_.request();
}

void IniDefaultsStore::synchronize() {
    writeChanges();
    // Syncs the content of the file, and the folder, which contains the file's name. Errors are
    // ignored, because some file systems do not support fsync.
    for (const auto& path : {file_, file_.parent_path()}) {
        if (const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
            file) {
            fsync(file.get());
        }
    }
}

void IniDefaultsStore::writeChanges() {
    if (changes_.empty()) {
        return;
    }
    createPrivateFolders(file_.parent_path()); // after an error, opening the file fails
    // Without the lock, the file is still complete, because it is replaced in one step. Only a
    // change that another process writes between our read and the replacement is lost, until that
    // process sets the key again. If the lock's holder is suspended, only the first write waits for
    // it.
    const FileLock lock(lockFile());
    isLockFree_ = lock.acquire(isLockFree_ ? lockTimeout_ : 0ms);
    // If the file is missing or damaged, we write the values in this process's memory.
    if (auto content = read(); !content.isMissing && !content.isDamaged) {
        document_ = std::move(content.document);
    }
    for (const auto& [key, value] : changes_) {
        if (value) {
            document_.set(key, *value);
        } else {
            document_.remove(key);
        }
    }
    if (replaceFile()) {
        changes_.clear();
        mustMoveAside_ = false;
    } else if (!std::exchange(failureIsSaid_, true)) {
        std::cerr << "nocta: cannot write " << file_.string() << " (" << std::strerror(errno)
                  << "); settings will be lost when Nocta exits" << std::endl;
    }
}

/// Writes a new file, which no other process can have opened or linked, and moves it into place.
bool IniDefaultsStore::replaceFile() const {
    auto temporary = file_.string() + temporaryMark + std::to_string(getpid()) + "-XXXXXX";
    const FileDescriptor output(mkostemp(temporary.data(), O_CLOEXEC));
    if (!output) {
        return false;
    }
    const auto isReplaced = writeAll(output.get(), document_.text()) && putInPlace(temporary);
    if (!isReplaced) {
        const auto reason = errno;
        unlink(temporary.c_str());
        errno = reason;
    }
    return isReplaced;
}

/// Moves the finished file into place, and keeps a damaged file under another name.
bool IniDefaultsStore::putInPlace(const std::string& temporary) const {
    if (!mustMoveAside_) {
        return ::rename(temporary.c_str(), file_.c_str()) == 0;
    }
    const auto aside = [&](int number) {
        return file_.string() + (number == 1 ? ".damaged" : ".damaged-" + std::to_string(number));
    };
    int number = 1;
    while (renameat2(AT_FDCWD, file_.c_str(), AT_FDCWD, aside(number).c_str(), RENAME_NOREPLACE) !=
           0) {
        if (errno != EEXIST) {
            return false;
        }
        ++number;
    }
    if (::rename(temporary.c_str(), file_.c_str()) != 0) {
        ::rename(aside(number).c_str(), file_.c_str());
        return false;
    }
    return true;
}

} // namespace nocta
