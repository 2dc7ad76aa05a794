#pragma once

#include "backends/macos/TapEvents.h"
#include "platform/KeyEvents.h"

#import <AppKit/AppKit.h>
#import <CoreGraphics/CoreGraphics.h>
#include <utility>

namespace nocta {

static_assert(keyDownEventType == kCGEventKeyDown);
static_assert(tapDisabledByTimeoutEventType == kCGEventTapDisabledByTimeout);
static_assert(tapDisabledByUserInputEventType == kCGEventTapDisabledByUserInput);

/// The system refuses the tap until the user has allowed the program to watch the keyboard, in the
/// privacy settings. When the user withdraws the permission, the system reports no error. Instead,
/// the system disables the tap after a key has waited for the tap too long, and enabling the tap
/// again would delay the next keys as well.
class CgKeyEvents final : public KeyEvents {
public:
    Subscription addGlobalMonitorForSystemDefinedEvents(
        std::function<void(const SystemDefinedEvent&)> handler) override {
        const id monitor =
            [NSEvent addGlobalMonitorForEventsMatchingMask:NSEventMaskSystemDefined // 1 << 14
                                                   handler:^(NSEvent* event) {
                                                     handler({event.subtype, event.data1});
                                                   }];
        if (monitor == nil) {
            return {};
        }
        return Subscription([monitor] { [NSEvent removeMonitor:monitor]; });
    }

    Subscription createKeyDownTap(std::function<void(const KeyDownEvent&)> handler) override {
        const auto tap = std::make_shared<Tap>(Tap{std::move(handler)});
        tap->port =
            CGEventTapCreate(kCGSessionEventTap, kCGHeadInsertEventTap, kCGEventTapOptionDefault,
                             CGEventMaskBit(kCGEventKeyDown), keyDown, tap.get());
        if (tap->port == nullptr) {
            return {};
        }
        const CFRunLoopSourceRef source =
            CFMachPortCreateRunLoopSource(kCFAllocatorDefault, tap->port, 0);
        CFRunLoopAddSource(CFRunLoopGetMain(), source, kCFRunLoopCommonModes);
        CFRelease(source); // the run loop retains it
        CGEventTapEnable(tap->port, true);
        return Subscription([tap] {
            CFMachPortInvalidate(tap->port); // also removes its source from the run loop
            CFRelease(tap->port);
        });
    }

private:
    /// The callback's user info points to this struct.
    struct Tap {
        std::function<void(const KeyDownEvent&)> handler;
        CFMachPortRef port = nullptr;
    };

    /// Creating a tap is the only call that fails without the permission.
    static bool isAllowed() {
        const CFMachPortRef probe =
            CGEventTapCreate(kCGSessionEventTap, kCGTailAppendEventTap, kCGEventTapOptionDefault,
                             CGEventMaskBit(kCGEventKeyDown), keyDown, nullptr);
        if (probe == nullptr) {
            return false;
        }
        CFMachPortInvalidate(probe);
        CFRelease(probe);
        return true;
    }

    /// Passes every event on unchanged. If the permission is gone, this ends the tap, and keys no
    /// longer go through it.
    static CGEventRef keyDown(CGEventTapProxy /*proxy*/, CGEventType type, CGEventRef event,
                              void* userInfo) {
        const auto* const tap = static_cast<const Tap*>(userInfo);
        if (tap == nullptr) {
            return event;
        }
        switch (tapEvent(type)) {
        case TapEvent::keyDown:
            tap->handler({CGEventGetIntegerValueField(event, kCGKeyboardEventKeycode)});
            break;
        case TapEvent::disabled:
            if (isAllowed()) {
                CGEventTapEnable(tap->port, true);
            } else {
                CFMachPortInvalidate(tap->port);
            }
            break;
        case TapEvent::other:
            break;
        }
        return event;
    }
};

} // namespace nocta
