#pragma once

#include "app/AppDelegate.h"
#include "app/SharedInstances.h"
#include "backends/virtual/VirtualDesktop.h"
#include "tour/DesktopScene.h"
#include "ui/WidgetViews.h"

#include <QImage>

#include <optional>

namespace nocta {

/// Runs Nocta on a virtual desktop with a built-in and an external display, and owns the scene that
/// shows the desktop. The desktop outlives the program.
class LiveDesktop {
public:
    static constexpr DisplayId builtIn = 1;
    static constexpr DisplayId external = 2;

    LiveDesktop();
    LiveDesktop(const LiveDesktop&) = delete;
    LiveDesktop& operator=(const LiveDesktop&) = delete;

    VirtualDesktop desktop;

    // The parts of the program. They are valid between `launch` and `quit`.
    SharedInstances& instances() { return *instances_; }
    SettingsManager& settings() { return instances_->settingsManager(); }
    AppDelegate& program() { return *program_; }
    DesktopScene& scene() { return *scene_; }

    void launch();
    /// Returns a picture of all displays side by side, as the user sees them.
    QImage picture();
    /// Ends the program and removes its windows from the scene.
    void quit();

private:
    std::optional<SharedInstances> instances_;
    std::optional<WidgetViews> views_;
    std::optional<AppDelegate> program_;
    std::optional<DesktopScene> scene_;
};

} // namespace nocta
