#pragma once

#include "platform/OverlayWindows.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace nocta {

/// The frame and the alpha of each window.
using SeenOverlays = std::vector<std::pair<Rect, double>>;

/// The contract of the overlay windows on every desktop. `Harness` starts with one display and has
/// `overlayWindows()` and `makeContent()`. `plug()` and `unplug()` add and remove a second display.
/// `frames()` returns the frames of the displays, and `seen()` returns the windows on screen in the
/// order in which they appeared; both read them independently of the port. `letPass(duration)`
/// advances time. `press()` presses the space key and returns whether a window of this program
/// received it.
template <class Harness>
class OverlayWindowsContract : public ::testing::Test {
protected:
    static constexpr OverlayWindows::Style style{.level = 1000, .collectionBehavior = 257};
    static constexpr Duration fade = std::chrono::milliseconds(400);
    static constexpr Duration pause = std::chrono::seconds(1); ///< long enough to end typing

    std::vector<Rect> screenFrames() {
        std::vector<Rect> frames;
        for (const auto& screen : harness.overlayWindows().screens()) {
            frames.push_back(screen.frame);
        }
        return frames;
    }
    std::unique_ptr<OverlayWindow> make(std::size_t screen = 0) {
        auto& windows = harness.overlayWindows();
        return windows.makeWindow(windows.screens().at(screen), style, harness.makeContent());
    }
    /// Animates the alpha. The completion handler appends `letter` to `completed`.
    void animate(OverlayWindow& window, double target, char letter) {
        window.animateAlpha(target, fade, TimingFunction::easeInEaseOut,
                            [this, letter] { completed += letter; });
        EXPECT_EQ(completed, "") << "the run loop should call the completion handler";
    }
    Subscription monitorKeys() {
        return harness.overlayWindows().addLocalMonitorForKeyDown([&](const KeyDownEvent& event) {
            EXPECT_EQ(event.keyCode, spaceKeyCode);
            ++handled;
            return swallows;
        });
    }

    Harness harness;
    std::string completed;
    int handled = 0;
    bool swallows = false;
};

TYPED_TEST_SUITE_P(OverlayWindowsContract);

TYPED_TEST_P(OverlayWindowsContract, ShownWindowsCoverTheDisplaysExactly) {
    this->harness.plug();
    const auto frames = this->harness.frames();
    ASSERT_EQ(this->screenFrames(), frames);
    const auto first = this->make(0);
    const auto second = this->make(1);
    EXPECT_EQ(this->harness.seen(), SeenOverlays{}) << "new windows should be hidden";
    first->makeKeyAndOrderFront();
    second->makeKeyAndOrderFront();
    EXPECT_EQ(this->harness.seen(), (SeenOverlays{{frames.at(0), 0}, {frames.at(1), 0}}));
    this->harness.unplug();
    EXPECT_EQ(this->screenFrames(), this->harness.frames());
}

TYPED_TEST_P(OverlayWindowsContract, WindowDisappearsWhenItIsOrderedOutOrDestroyed) {
    auto window = this->make();
    window->makeKeyAndOrderFront();
    window->orderOut();
    EXPECT_EQ(this->harness.seen().size(), 0U);
    window->makeKeyAndOrderFront();
    EXPECT_EQ(this->harness.seen().size(), 1U);
    window.reset();
    EXPECT_EQ(this->harness.seen().size(), 0U);
}

TYPED_TEST_P(OverlayWindowsContract, FadeEndsAtItsTargetAndIsCompletedOnce) {
    const auto window = this->make();
    window->makeKeyAndOrderFront();
    for (const auto target : {1, 0}) {
        this->completed = "";
        this->animate(*window, target, 'a');
        this->harness.letPass(this->fade / 2);
        EXPECT_EQ(this->completed, "");
        EXPECT_NEAR(this->harness.seen().at(0).second, 0.5, 0.2);
        this->harness.letPass(this->fade);
        EXPECT_EQ(this->completed, "a");
        EXPECT_EQ(this->harness.seen().at(0).second, target);
    }
}

TYPED_TEST_P(OverlayWindowsContract, FadeThatIsReplacedOrDestroyedIsNotCompleted) {
    const auto window = this->make();
    auto destroyed = this->make();
    this->animate(*window, 1, 'a');
    this->animate(*destroyed, 1, 'b');
    this->harness.letPass(this->fade / 2);
    this->animate(*window, 0, 'c');
    destroyed.reset();
    this->harness.letPass(2 * this->fade);
    EXPECT_EQ(this->completed, "c");
}

TYPED_TEST_P(OverlayWindowsContract, KeyReachesTheWindowUnlessAMonitorSwallowsIt) {
    auto monitor = this->monitorKeys();
    const auto window = this->make();
    window->makeKeyAndOrderFront();
    EXPECT_TRUE(this->harness.press());
    EXPECT_EQ(this->handled, 1);
    this->swallows = true;
    EXPECT_FALSE(this->harness.press());
    EXPECT_EQ(this->handled, 2);
    monitor.cancel();
    EXPECT_TRUE(this->harness.press());
    EXPECT_EQ(this->handled, 2);
}

REGISTER_TYPED_TEST_SUITE_P(OverlayWindowsContract, ShownWindowsCoverTheDisplaysExactly,
                            WindowDisappearsWhenItIsOrderedOutOrDestroyed,
                            FadeEndsAtItsTargetAndIsCompletedOnce,
                            FadeThatIsReplacedOrDestroyedIsNotCompleted,
                            KeyReachesTheWindowUnlessAMonitorSwallowsIt);

} // namespace nocta
