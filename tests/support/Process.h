#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <string>
#include <sys/types.h>
#include <vector>

namespace nocta {

/// Polls until the condition holds. Returns false after a timeout that is long enough for a busy
/// machine.
bool waitUntil(const std::function<bool()>& condition);

/// A child process. The destructor kills it.
class Process {
public:
    using Environment = std::map<std::string, std::string>;

    /// Starts `command` with the variables added to this process's own; an empty value removes a
    /// variable. Standard output and error go to the file `output` unless it is empty. The child
    /// inherits `keptDescriptor` under the same number.
    explicit Process(const std::vector<std::string>& command, const Environment& variables = {},
                     const std::string& output = {}, int keptDescriptor = -1);
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process();

    pid_t id() const { return id_; }
    void signal(int number) const;

    /// Returns the wait status, or -1 if the process does not exit within a generous timeout.
    int wait();

private:
    pid_t id_ = -1;
    int status_ = -1;
};

/// Runs a command and returns its exit status, or -1 if it did not exit normally.
int runToEnd(const std::vector<std::string>& command, const Process::Environment& variables = {});

/// The folder that contains this test program and the project's programs.
std::string programFolder();

/// A new folder. The destructor removes it and its contents.
class TemporaryFolder {
public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    const std::string& path() const { return path_; }

private:
    std::string path_;
};

std::string contentOf(const std::string& file);
void writeFile(const std::string& file, const std::string& content);

} // namespace nocta
