#pragma once

#include <csignal>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

namespace nocta {

/// Simulates a full disk: while this object exists, no file of this process can grow. Standard
/// error goes to a pipe during that time, because the file to which GoogleTest redirects standard
/// error could not grow either.
class FullDisk {
public:
    FullDisk() : handler_(std::signal(SIGXFSZ, SIG_IGN)), output_(dup(STDERR_FILENO)) {
        if (pipe(pipe_) == 0) {
            dup2(pipe_[1], STDERR_FILENO);
            close(pipe_[1]);
        }
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit none{.rlim_cur = 0, .rlim_max = before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &none);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;
    ~FullDisk() {
        end();
        close(pipe_[0]);
    }

    /// Allows files to grow again, and returns what was printed on standard error until then.
    std::string end() {
        if (output_ >= 0) {
            setrlimit(RLIMIT_FSIZE, &before_);
            std::signal(SIGXFSZ, handler_);
            dup2(output_, STDERR_FILENO); // closes the last writing end
            close(output_);
            output_ = -1;
        }
        std::string said;
        for (char letter = 0; read(pipe_[0], &letter, 1) == 1;) {
            said += letter;
        }
        return said;
    }

private:
    void (*handler_)(int);
    int output_;
    int pipe_[2] = {-1, -1};
    rlimit before_{};
};

} // namespace nocta
