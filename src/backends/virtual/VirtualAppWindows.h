#pragma once

#include "backends/virtual/Trace.h"
#include "platform/AppWindows.h"

#include <list>
#include <string>

namespace nocta {

/// The program's own windows, in memory.
class VirtualAppWindows final : public AppWindows {
public:
    explicit VirtualAppWindows(Trace& trace) : trace_(trace) {}

    /// A window of the program, as the user sees it.
    struct Shown {
        std::string title;
        Style style;
        View* content = nullptr;
        bool isOnScreen = false;
    };

    // For tests: what the user does and sees.
    std::vector<Shown> windows() const;
    bool isOnScreen(std::string_view title) const;
    /// Clicks the close button in the title bar.
    void close(std::string_view title);

    // For the program: the functions of the port.
    std::unique_ptr<AppWindow> makeWindow(const Style& style, std::unique_ptr<View> content,
                                          std::function<void()> onClose) override;

private:
    class Window;

    Trace& trace_;
    std::list<Window*> windows_;
};

} // namespace nocta
