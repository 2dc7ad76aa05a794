#pragma once

#include "backends/linux/x11/X11Connection.h"
#include "platform/AppWindows.h"

namespace nocta {

/// The program's windows in Qt, with decorations by the window manager.
class QtAppWindows final : public AppWindows {
public:
    /// `connection` is null without an X server.
    explicit QtAppWindows(X11Connection* connection) : connection_(connection) {}

    std::unique_ptr<AppWindow> makeWindow(const Style& style, std::unique_ptr<View> content,
                                          std::function<void()> onClose) override;

private:
    class Window;

    X11Connection* connection_;
};

} // namespace nocta
