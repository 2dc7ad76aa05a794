#pragma once

#include "support/Process.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace nocta {

/// A private headless sway. WAYLAND_DISPLAY and XDG_RUNTIME_DIR contain its address. Sway starts
/// with one output, HEADLESS-1, and without Xwayland.
class Sway {
public:
    Sway();

    /// Whether gamma tables can be logged. Logging does not work with versions of wlroots after
    /// 0.16.
    static bool canLogGamma();

    /// Adds another output to the right of the existing ones. Outputs cannot be removed.
    void addOutput() const;

    /// The red, green and blue levels of a pixel of an output, without gamma.
    std::array<int, 3> colorAt(const std::string& output, int x, int y) const;

    /// Returns sway's reply to a query, such as "get_tree", as JSON.
    std::string answer(const std::string& question) const;

    /// Kills the compositor.
    void kill();

    /// The history of an output's ramps. Each entry contains all red levels, then green, then blue.
    /// An entry is empty if the original ramps were restored. A client must have requested the
    /// outputs' ramp sizes in the order of their names.
    std::vector<std::vector<std::uint16_t>> gammaOf(const std::string& output) const;

    /// The folder of the socket, which is private to this user.
    const std::string& runtimeFolder() const { return folder_.path(); }
    std::string display() const { return "wayland-1"; }

    /// Runs a sway command, given as separate words.
    void message(const std::vector<std::string>& words) const;

private:
    TemporaryFolder folder_;
    std::unique_ptr<Process> process_;
    std::string commands_; ///< the path of the command socket
};

} // namespace nocta
