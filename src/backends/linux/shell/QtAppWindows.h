#pragma once

#include "platform/AppWindows.h"

namespace nocta {

/// The program's windows in Qt, with decorations by the window manager.
class QtAppWindows final : public AppWindows {
public:
    std::unique_ptr<AppWindow> makeWindow(const Style& style, std::unique_ptr<View> content,
                                          std::function<void()> onClose) override;

private:
    class Window;
};

} // namespace nocta
