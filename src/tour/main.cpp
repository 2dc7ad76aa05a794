// nocta-tour: a short session of Nocta on the virtual desktop. It prints what a person would see
// on each display after every step.

#include "app/NoctaApp.h"
#include "app/SharedInstances.h"
#include "backends/virtual/VirtualDesktop.h"
#include "backends/virtual/VirtualViews.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

namespace {

using namespace nocta;

/// The output level for the brightest input, in per cent.
double top(const std::vector<float>& table) {
    return 100 * double{table.back()};
}

void print(const char* step, const VirtualDesktop& desktop) {
    std::printf("%s\n", step);
    for (const auto& display : desktop.displays.all()) {
        std::printf("  display %u (%s): ", display.id, display.isBuiltIn ? "built in" : "external");
        if (display.red.empty()) {
            std::printf("factory tables");
        } else {
            std::printf("tables up to %.1f %% red, %.1f %% green, %.1f %% blue", top(display.red),
                        top(display.green), top(display.blue));
        }
        if (display.isBuiltIn) {
            std::printf("; backlight %.0f %%", 100 * double{display.backlight});
        }
        std::printf("\n");
    }
}

void visit(VirtualDesktop& desktop, SettingsManager& settings) {
    print("Nocta has started", desktop);
    settings.unifiedBrightness.set(1.0);
    print("brightness 100 %", desktop);
    settings.unifiedBrightness.set(0.0);
    print("brightness 0 %, a faint glow is kept", desktop);
    settings.unifiedBrightness.set(0.3);
    print("brightness 30 %", desktop);
    desktop.displays.plug({.id = 3, .bounds = {4480, 0, 1920, 1080}});
    print("a display is plugged in; it waits for the next change", desktop);
    desktop.keyboard.pressBrightnessUp();
    print("the brightness key, up", desktop);
}

} // namespace

int main() {
    setenv("TZ", "UTC0", 1); // the same day everywhere
    VirtualDesktop desktop;
    desktop.displays.plug({.id = 1, .isBuiltIn = true, .isMain = true});
    desktop.displays.plug(
        {.id = 2, .mode = DisplayMode{2560, 1440}, .bounds = {1920, 0, 2560, 1440}});

    SharedInstances instances(desktop.ports);
    VirtualViews views;
    NoctaApp app(instances, views);
    desktop.application.session = [&] { visit(desktop, instances.settingsManager()); };
    const auto status = app.run();
    print("Nocta has quit", desktop);
    return status;
}
