#pragma once

#include <functional>
#include <memory>

namespace nocta {

/// The content of a window. The user interface creates views, and the desktop's ports show them.
class View {
public:
    virtual ~View() = default;

    /// The toolkit's object for this view: a QWidget*, or null if there is no toolkit. The view
    /// owns it.
    virtual void* nativeView() = 0;
};

/// Creates the views, so that the code that shows them does not depend on a toolkit.
class Views {
public:
    virtual ~Views() = default;

    /// The Preferences button calls `showPreferences`.
    virtual std::unique_ptr<View> makePopoverContentView(std::function<void()> showPreferences) = 0;
    virtual std::unique_ptr<View> makePreferencesView() = 0;
    virtual std::unique_ptr<View> makeOnboardingView(std::function<void()> onComplete) = 0;
    /// Shows the current stage of the updater.
    virtual std::unique_ptr<View> makeUpdateView() = 0;
    /// Shows the controls of the popover as a menu.
    virtual std::unique_ptr<View> makeStatusMenu(std::function<void()> showPreferences) = 0;
    virtual std::unique_ptr<View> makeBreakOverlayView(std::function<void()> onSkip,
                                                       std::function<void()> onSnooze) = 0;
};

} // namespace nocta
