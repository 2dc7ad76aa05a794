#pragma once

#include "support/Process.h"

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace nocta {

/// A private X server. DISPLAY contains the server's name.
class XServer {
public:
    /// Xvfb has one output, whose ramp is all zeros at first. Xorg with the dummy driver has
    /// sixteen outputs; the first one is in use.
    enum class Kind { xvfb, xorgDummy };

    /// `outputNames` are the names of the first outputs; Xorg only.
    explicit XServer(Kind kind, const std::vector<std::string>& options = {},
                     const std::vector<std::string>& outputNames = {});

    const std::string& display() const { return display_; }

    /// Kills the server. All clients lose their connections.
    void kill();

    /// Stops the server: it no longer answers.
    void freeze() const;

    /// Plugs in a second output to the right of the first, or unplugs it; Xorg only.
    void plugSecondOutput() const;
    void unplugSecondOutput() const;

    /// Runs xrandr with these options and expects it to succeed.
    void xrandr(const std::vector<std::string>& options) const;

private:
    TemporaryFolder folder_;
    std::string display_;
    std::array<std::string, 2> outputs_ = {"DUMMY0", "DUMMY1"};
    std::unique_ptr<Process> process_;
};

} // namespace nocta
