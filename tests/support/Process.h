#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <string>
#include <sys/types.h>
#include <vector>

namespace nocta {

/// Waits in small steps until the condition holds; returns false after a timeout that is ample even
/// on a busy machine.
bool waitUntil(const std::function<bool()>& condition);

/// A child process; it is killed with this object.
class Process {
public:
    using Environment = std::map<std::string, std::string>;

    /// Starts `command` with the variables added to this process's own; an empty value removes a
    /// variable. Standard output and error go to the file `output` if one is named.
    /// `keptDescriptor` is inherited under its own number.
    explicit Process(const std::vector<std::string>& command, const Environment& variables = {},
                     const std::string& output = {}, int keptDescriptor = -1);
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process();

    pid_t id() const { return id_; }
    void signal(int number) const;

    /// The wait status; -1 if the process does not exit within an ample timeout.
    int wait();

private:
    pid_t id_ = -1;
    int status_ = -1;
};

/// Runs a command and returns its exit status, or -1.
int runToEnd(const std::vector<std::string>& command, const Process::Environment& variables = {});

/// The folder of this test program and of the project's programs.
std::string programFolder();

/// A new folder, removed with its content by the destructor.
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
