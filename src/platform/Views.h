#pragma once

#include <functional>
#include <memory>

namespace nocta {

/// The content of a window, made by the face and shown by a shell port.
class View {
public:
    virtual ~View() = default;

    /// What the desktop's toolkit calls it: a QWidget* on Linux, an NSView* on macOS, null where
    /// there is no toolkit. The view owns it.
    virtual void* nativeView() = 0;
};

/// Makes the views, so that who shows them need not know a toolkit.
class Views {
public:
    virtual ~Views() = default;

    virtual std::unique_ptr<View> makePopoverContentView() = 0;
    virtual std::unique_ptr<View> makeBreakOverlayView(std::function<void()> onSkip,
                                                       std::function<void()> onSnooze) = 0;
};

} // namespace nocta
