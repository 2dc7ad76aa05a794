#pragma once

#include "platform/AppWindows.h"

namespace nocta {

/// The program's windows in Qt, as the window manager dresses them.
class QtAppWindows final : public AppWindows {
public:
    std::unique_ptr<AppWindow> makeWindow(const Style& style, std::unique_ptr<View> content,
                                          std::function<void()> onClose) override;

private:
    class Window;
};

} // namespace nocta
