#include "backends/linux/IniDefaultsStore.h"

#include "backends/linux/FileContent.h"
#include "backends/linux/FileDescriptor.h"
#include "backends/linux/PrivateFolder.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <iostream>
#include <string>
#include <unistd.h>
#include <utility>

namespace nocta {

namespace {

/// Far above what sixteen settings and their neighbours can need.
constexpr std::size_t largestFile = 1 << 20;

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
    } else if (const auto missing = std::filesystem::read_symlink(file_, error); !error) {
        file_ = file_.parent_path() / missing;
    }
    load();
}

void IniDefaultsStore::load() {
    std::string content;
    const auto error = readFile(file_, largestFile, content);
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
    write();
}

void IniDefaultsStore::removeObjectForKey(std::string_view key) {
    if (!table_.stored().contains(key)) {
        return;
    }
    document_.remove(key);
    table_.remove(key);
    write();
}

void IniDefaultsStore::synchronize() {
    if (!isWritten_) {
        write();
    }
    // The content, and the folder, which holds the name. What cannot do that has done what it can.
    for (const auto& path : {file_, file_.parent_path()}) {
        if (const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
            file) {
            fsync(file.get());
        }
    }
}

void IniDefaultsStore::write() {
    createPrivateFolders(file_.parent_path()); // what matters shows when the file is opened

    const auto temporary = file_.string() + ".new";
    isWritten_ = [&] {
        FileDescriptor const output(
            open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600));
        return output && writeAll(output.get(), document_.text()) && replaceFile(temporary);
    }();
    if (!isWritten_) {
        if (!std::exchange(failureIsSaid_, true)) {
            std::cerr << "nocta: cannot write " << file_.string() << " (" << std::strerror(errno)
                      << "); settings last until Nocta ends" << std::endl;
        }
        unlink(temporary.c_str());
    }
}

/// Puts the finished file in its place; a damaged one is kept under another name.
bool IniDefaultsStore::replaceFile(const std::string& temporary) {
    if (!mustMoveAside_) {
        return rename(temporary.c_str(), file_.c_str()) == 0;
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
    if (rename(temporary.c_str(), file_.c_str()) != 0) {
        rename(aside(number).c_str(), file_.c_str());
        return false;
    }
    mustMoveAside_ = false;
    return true;
}

} // namespace nocta
