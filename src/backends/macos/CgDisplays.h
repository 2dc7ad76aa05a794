#pragma once

#include "backends/macos/Observation.h"
#include "platform/Displays.h"

#import <AppKit/AppKit.h>
#import <CoreGraphics/CoreGraphics.h>

namespace nocta {

/// Changes to the displays are posted on the program's notification center.
class CgDisplays final : public Displays {
public:
    explicit CgDisplays(NotificationCenter& notificationCenter)
        : screenParameters_(passOn(NSApplicationDidChangeScreenParametersNotification,
                                   notificationCenter, didChangeScreenParametersNotification)) {}

    /// CoreGraphics returns only the count if `ids` is empty.
    Status getActiveDisplayList(std::span<DisplayId> ids, std::uint32_t& count) override {
        const CGError error = CGGetActiveDisplayList(static_cast<std::uint32_t>(ids.size()),
                                                     ids.empty() ? nullptr : ids.data(), &count);
        if (error != kCGErrorSuccess) {
            count = 0;
        }
        return error;
    }

    Rect displayBounds(DisplayId display) override {
        const CGRect bounds = CGDisplayBounds(display);
        return {bounds.origin.x, bounds.origin.y, bounds.size.width, bounds.size.height};
    }
    bool displayIsMain(DisplayId display) override { return CGDisplayIsMain(display) != 0; }
    bool displayIsBuiltin(DisplayId display) override { return CGDisplayIsBuiltin(display) != 0; }

    std::optional<DisplayMode> displayCopyDisplayMode(DisplayId display) override {
        const CGDisplayModeRef mode = CGDisplayCopyDisplayMode(display);
        if (mode == nullptr) {
            return std::nullopt;
        }
        const DisplayMode size{static_cast<std::uint32_t>(CGDisplayModeGetWidth(mode)),
                               static_cast<std::uint32_t>(CGDisplayModeGetHeight(mode))};
        CGDisplayModeRelease(mode);
        return size;
    }

private:
    Subscription screenParameters_;
};

} // namespace nocta
