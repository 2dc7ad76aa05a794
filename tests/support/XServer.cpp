#include "support/XServer.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <ranges>
#include <stdexcept>
#include <unistd.h>

namespace nocta {

XServer::XServer(Kind kind, const std::vector<std::string>& options,
                 const std::vector<std::string>& outputNames) {
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0) {
        throw std::runtime_error("cannot make a pipe");
    }
    auto command = kind == Kind::xvfb
                       ? std::vector<std::string>{"Xvfb", "-screen", "0", "1280x800x24"}
                       : std::vector<std::string>{"/usr/lib/xorg/Xorg",
                                                  "-config",
                                                  NOCTA_SOURCE_DIR "/tests/support/dummy-xorg.conf",
                                                  "-logfile",
                                                  folder_.path() + "/log",
                                                  "-novtswitch",
                                                  "-sharevts"};
    for (const auto* const option : {"-noreset", "-nolisten", "tcp", "-displayfd"}) {
        command.emplace_back(option);
    }
    command.push_back(std::to_string(ends[1]));
    command.insert(command.end(), options.begin(), options.end());
    Process::Environment environment;
    for (const auto& name : outputNames) {
        environment["LD_PRELOAD"] = programFolder() + "/libnocta_output_names.so";
        environment["OUTPUT_NAMES"] += name + ' ';
    }
    std::ranges::copy(outputNames | std::views::take(outputs_.size()), outputs_.begin());
    process_ = std::make_unique<Process>(command, environment, folder_.path() + "/output", ends[1]);
    close(ends[1]);

    // The server writes its display number when it is ready; if it dies, the pipe closes.
    char letter = 0;
    while (read(ends[0], &letter, 1) == 1 && letter != '\n') {
        display_ += letter;
    }
    close(ends[0]);
    if (letter != '\n') {
        throw std::runtime_error("the X server did not start: " +
                                 contentOf(folder_.path() + "/output"));
    }
    display_.insert(0, ":");
    setenv("DISPLAY", display_.c_str(), 1);
}

void XServer::kill() {
    process_->signal(SIGKILL);
    process_->wait();
}

void XServer::freeze() const {
    process_->signal(SIGSTOP);
}

void XServer::plugSecondOutput() const {
    xrandr({"--addmode", outputs_[1], "1280x720"});
    xrandr({"--output", outputs_[1], "--mode", "1280x720", "--right-of", outputs_[0]});
}

void XServer::unplugSecondOutput() const {
    xrandr({"--output", outputs_[1], "--off"});
}

void XServer::xrandr(const std::vector<std::string>& options) const {
    std::vector<std::string> command = {"xrandr", "--display", display_};
    command.insert(command.end(), options.begin(), options.end());
    if (runToEnd(command) != 0) {
        throw std::runtime_error("xrandr failed");
    }
}

} // namespace nocta
