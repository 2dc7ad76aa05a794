#include "support/Process.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace nocta {

namespace {
using namespace std::chrono_literals;
constexpr auto ample = 30s;
constexpr auto step = 2ms;
} // namespace

bool waitUntil(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + ample;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(step);
    }
    return true;
}

Process::Process(const std::vector<std::string>& command, const Environment& variables,
                 const std::string& output, int keptDescriptor) {
    std::vector<char*> arguments;
    for (const auto& word : command) {
        arguments.push_back(const_cast<char*>(word.c_str()));
    }
    arguments.push_back(nullptr);
    id_ = fork();
    if (id_ != 0) {
        return;
    }
    prctl(PR_SET_PDEATHSIG, SIGKILL); // if the test program dies, the child dies too
    for (const auto& [name, value] : variables) {
        if (value.empty()) {
            unsetenv(name.c_str());
        } else {
            setenv(name.c_str(), value.c_str(), 1);
        }
    }
    if (!output.empty()) {
        const auto file = open(output.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
        dup2(file, STDOUT_FILENO);
        dup2(file, STDERR_FILENO);
        close(file);
    }
    if (keptDescriptor >= 0) {
        fcntl(keptDescriptor, F_SETFD, 0);
    }
    execvp(arguments[0], arguments.data());
    _exit(127);
}

Process::~Process() {
    if (status_ == -1) {
        signal(SIGKILL);
        wait();
    }
}

void Process::signal(int number) const {
    kill(id_, number);
}

int Process::wait() {
    if (status_ == -1) {
        waitUntil([this] {
            int status = 0;
            if (waitpid(id_, &status, WNOHANG) != id_) {
                return false;
            }
            status_ = status;
            return true;
        });
    }
    return status_;
}

int runToEnd(const std::vector<std::string>& command, const Process::Environment& variables) {
    Process process(command, variables);
    const auto status = process.wait();
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string programFolder() {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path().string();
}

TemporaryFolder::TemporaryFolder() {
    auto name = (std::filesystem::temp_directory_path() / "nocta-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("cannot make a temporary folder");
    }
    path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string contentOf(const std::string& file) {
    std::ifstream stream(file);
    std::string content;
    std::array<char, 4096> block{};
    // `read` fails without an error if the file is in /proc and its process exits.
    while (stream.read(block.data(), block.size()) || stream.gcount() > 0) {
        content.append(block.data(), static_cast<std::size_t>(stream.gcount()));
    }
    return content;
}

void writeFile(const std::string& file, const std::string& content) {
    std::ofstream(file, std::ios::binary) << content;
}

} // namespace nocta
