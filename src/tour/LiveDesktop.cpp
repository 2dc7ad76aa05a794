#include "tour/LiveDesktop.h"

#include <chrono>

namespace nocta {

namespace {
using namespace std::chrono_literals;

// In points; side by side.
constexpr Rect builtInBounds{0, 0, 1024, 680};
constexpr Rect externalBounds{1024, 0, 960, 600};
} // namespace

LiveDesktop::LiveDesktop() {
    desktop.displays.plug(
        {.id = builtIn, .isBuiltIn = true, .isMain = true, .bounds = builtInBounds});
    desktop.displays.plug({.id = external, .bounds = externalBounds});
    desktop.workspace.frontmost = RunningApplication{"com.example.notes", "Notes"};
}

void LiveDesktop::launch() {
    instances_.emplace(desktop.ports);
    views_.emplace(*instances_);
    program_.emplace(*instances_, *views_);
    desktop.application.launch(*program_);
    scene_.emplace(desktop);
    desktop.runLoop.advance(0s);
}

void LiveDesktop::quit() {
    desktop.application.terminate();
    program_.reset();
}

} // namespace nocta
