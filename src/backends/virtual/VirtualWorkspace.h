#pragma once

#include "backends/virtual/VirtualDisplays.h"
#include "base/CallbackList.h"
#include "platform/Workspace.h"

#include <optional>
#include <utility>
#include <vector>

namespace nocta {

/// The applications and windows of a session, in memory.
class VirtualWorkspace final : public Workspace {
public:
    VirtualWorkspace(Trace& trace, const VirtualDisplays& displays)
        : trace_(trace), displays_(displays) {}

    // For tests: what the user does.
    void bringToFront(std::optional<RunningApplication> application) {
        if (application != frontmost) {
            frontmost = std::move(application);
            activated_.call(frontmost);
        }
    }
    /// Assigning a value changes the application without a notification, as some desktops do.
    std::optional<RunningApplication> frontmost;
    std::optional<std::vector<WindowInfo>> windows = std::vector<WindowInfo>{};
    bool reducesMotion = false;

    // For the program: the functions of the port.
    Subscription observeDidActivateApplication(
        std::function<void(const std::optional<RunningApplication>&)> callback) override {
        trace_.record("observeDidActivateApplication");
        return activated_.add(std::move(callback));
    }
    std::optional<RunningApplication> frontmostApplication() override {
        trace_.record("frontmostApplication");
        return frontmost;
    }
    std::optional<std::vector<WindowInfo>> copyWindowInfo() override {
        trace_.record("copyWindowInfo");
        return windows;
    }
    std::optional<Rect> mainScreenFrame() override {
        return displays_.all().empty() ? std::nullopt
                                       : std::optional(displays_.all().front().bounds);
    }
    bool accessibilityDisplayShouldReduceMotion() override { return reducesMotion; }

private:
    Trace& trace_;
    const VirtualDisplays& displays_;
    CallbackList<std::optional<RunningApplication>> activated_;
};

} // namespace nocta
