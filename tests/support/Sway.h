#pragma once

#include "support/Process.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace nocta {

/// A private sway without a screen, named in WAYLAND_DISPLAY and XDG_RUNTIME_DIR while it lives. It
/// has one output, HEADLESS-1. It can start no Xwayland.
class Sway {
public:
    Sway();

    /// Whether the library that sway uses can be made to log gamma tables: it has been changed
    /// since 0.16 in a way that hides them.
    static bool canLogGamma();

    /// Adds another output to the right of those that are there. None can be removed.
    void addOutput() const;

    /// The red, green and blue of a pixel of an output, without gamma.
    std::array<int, 3> colorAt(const std::string& output, int x, int y) const;

    /// What sway answers to a question, such as "get_tree", in JSON.
    std::string answer(const std::string& question) const;

    /// Ends the compositor.
    void kill();

    /// What happened to the ramps of an output: each entry is all levels of red, then of green,
    /// then of blue, or empty if the output's own ramps were restored. A client has to have asked
    /// for the outputs in the order of their names.
    std::vector<std::vector<std::uint16_t>> gammaOf(const std::string& output) const;

    /// The folder of the socket, which is private to this user.
    const std::string& runtimeFolder() const { return folder_.path(); }
    std::string display() const { return "wayland-1"; }

    /// Runs a command of sway, given word by word.
    void message(const std::vector<std::string>& words) const;

private:
    TemporaryFolder folder_;
    std::unique_ptr<Process> process_;
    std::string commands_; ///< the socket
};

} // namespace nocta
