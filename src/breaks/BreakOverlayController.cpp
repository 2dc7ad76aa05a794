#include "breaks/BreakOverlayController.h"

#include <chrono>
#include <utility>
#include <variant>

namespace nocta {

namespace {

using namespace std::chrono_literals;

constexpr OverlayWindows::Style coverStyle = {.level = 1000, .collectionBehavior = 1 | 256};
constexpr Duration fadeInDuration = 400ms;
constexpr Duration fadeOutDuration = 300ms;

} // namespace

BreakOverlayController::BreakOverlayController(BreakTimer& breakTimer, OverlayWindows& windows,
                                               Application& application, Views& views,
                                               NotificationCenter& notificationCenter,
                                               RunLoop& runLoop)
    : breakTimer_(breakTimer), windows_(windows), application_(application), views_(views),
      finish_(runLoop, [this] {
          keyMonitor_.cancel();
          overlayWindows_.clear();
          isFading_ = false;
          isShowing.set(false);
      }) {
    cancellables_.push_back(
        notificationCenter.observe(breakDidStartNotification, [this] { show(); }));
    cancellables_.push_back(
        notificationCenter.observe(breakDidEndNotification, [this] { hide(); }));
}

void BreakOverlayController::show() {
    if (isShowing.get()) {
        return;
    }
    isShowing.set(true);
    for (const auto& screen : windows_.screens()) {
        auto view = views_.makeBreakOverlayView([this] { skip(); }, [this] { snooze(); });
        auto window = windows_.makeWindow(screen, coverStyle, std::move(view));
        window->makeKeyAndOrderFront();
        application_.activateIgnoringOtherApps();
        window->animateAlpha(1, fadeInDuration, TimingFunction::easeInEaseOut);
        overlayWindows_.insert_or_assign(screen.id, std::move(window));
    }
    keyMonitor_ = windows_.addLocalMonitorForKeyDown([this](const KeyDownEvent& event) {
        if (event.keyCode != spaceKeyCode) {
            return false;
        }
        skip();
        return true;
    });
}

void BreakOverlayController::orderFront() {
    for (const auto& [screen, window] : overlayWindows_) {
        window->makeKeyAndOrderFront();
    }
    application_.activateIgnoringOtherApps();
}

void BreakOverlayController::skip() {
    breakTimer_.skip();
    hideWithoutBreak();
}

void BreakOverlayController::snooze() {
    breakTimer_.snooze(snoozeMinutes);
    hideWithoutBreak();
}

/// Hides the covers if the break timer was stopped. If it was not stopped, the notification that
/// the break has ended hides the covers.
void BreakOverlayController::hideWithoutBreak() {
    if (!isFading_ && !std::holds_alternative<Active>(breakTimer_.state.get())) {
        hide();
    }
}

void BreakOverlayController::hide() {
    if (!isShowing.get()) {
        return;
    }
    isFading_ = true;
    fading_ = overlayWindows_.size();
    if (fading_ == 0) {
        finish_.request();
    }
    for (const auto& [screen, window] : overlayWindows_) {
        window->animateAlpha(0, fadeOutDuration, TimingFunction::easeIn,
                             [this, cover = window.get()] {
                                 cover->orderOut();
                                 windowHasFaded();
                             });
    }
}

void BreakOverlayController::windowHasFaded() {
    --fading_;
    if (fading_ == 0) {
        finish_.request();
    }
}

} // namespace nocta
