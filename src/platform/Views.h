#pragma once

#include <functional>
#include <memory>

namespace nocta {

/// The content of a window, made by the face and shown by a shell port.
class View {
public:
    virtual ~View() = default;

    /// What the face's toolkit calls it: a QWidget*, or null where there is no toolkit. The view
    /// owns it.
    virtual void* nativeView() = 0;
};

/// Makes the views, so that who shows them need not know a toolkit.
class Views {
public:
    virtual ~Views() = default;

    /// `showPreferences` is what the button of that name does.
    virtual std::unique_ptr<View> makePopoverContentView(std::function<void()> showPreferences) = 0;
    virtual std::unique_ptr<View> makePreferencesView() = 0;
    virtual std::unique_ptr<View> makeOnboardingView(std::function<void()> onComplete) = 0;
    /// Of the updater's present stage.
    virtual std::unique_ptr<View> makeUpdateView() = 0;
    /// What the popover offers, as a menu.
    virtual std::unique_ptr<View> makeStatusMenu(std::function<void()> showPreferences) = 0;
    virtual std::unique_ptr<View> makeBreakOverlayView(std::function<void()> onSkip,
                                                       std::function<void()> onSnooze) = 0;
};

} // namespace nocta
