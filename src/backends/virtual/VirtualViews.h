#pragma once

#include "platform/Views.h"

#include <functional>
#include <memory>
#include <utility>

namespace nocta {

/// Creates views without a toolkit. The views paint nothing, and a test can call the actions of
/// their buttons.
class VirtualViews final : public Views {
public:
    int popoversMade = 0;
    int alive = 0;       ///< number of existing popovers and overlays
    int othersAlive = 0; ///< number of existing menus and windows

    // The actions of the buttons in the last view of each kind.
    std::function<void()> showPreferences;
    std::function<void()> completeOnboarding;
    std::function<void()> skip;
    std::function<void()> snooze;

    std::unique_ptr<View> makePopoverContentView(std::function<void()> onPreferences) override {
        ++popoversMade;
        showPreferences = std::move(onPreferences);
        return std::make_unique<Blank>(alive);
    }
    std::unique_ptr<View> makePreferencesView() override {
        return std::make_unique<Blank>(othersAlive);
    }
    std::unique_ptr<View> makeOnboardingView(std::function<void()> onComplete) override {
        completeOnboarding = std::move(onComplete);
        return std::make_unique<Blank>(othersAlive);
    }
    std::unique_ptr<View> makeUpdateView() override { return std::make_unique<Blank>(othersAlive); }
    std::unique_ptr<View> makeStatusMenu(std::function<void()> onPreferences) override {
        showPreferences = std::move(onPreferences);
        return std::make_unique<Blank>(othersAlive);
    }
    std::unique_ptr<View> makeBreakOverlayView(std::function<void()> onSkip,
                                               std::function<void()> onSnooze) override {
        skip = std::move(onSkip);
        snooze = std::move(onSnooze);
        return std::make_unique<Blank>(alive);
    }

private:
    class Blank final : public View {
    public:
        explicit Blank(int& alive) : alive_(alive) { ++alive_; }
        Blank(const Blank&) = delete;
        Blank& operator=(const Blank&) = delete;
        ~Blank() override { --alive_; }
        void* nativeView() override { return nullptr; }

    private:
        int& alive_;
    };
};

} // namespace nocta
