#include "backends/virtual/VirtualAppWindows.h"

#include <algorithm>
#include <utility>

namespace nocta {

class VirtualAppWindows::Window final : public AppWindow {
public:
    Window(VirtualAppWindows& owner, const Style& style, std::unique_ptr<View> content,
           std::function<void()> closed)
        : shown{.title = std::string(style.title), .style = style, .content = content.get()},
          onClose(std::move(closed)), owner_(owner), content_(std::move(content)) {
        shown.style.title = shown.title;
        owner_.windows_.push_back(this);
    }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    ~Window() override {
        owner_.trace_.record("window close " + shown.title);
        owner_.windows_.remove(this);
    }

    void makeKeyAndOrderFront() override {
        owner_.trace_.record("window makeKeyAndOrderFront " + shown.title);
        shown.isOnScreen = true;
    }

    void orderFrontRegardless() override {
        owner_.trace_.record("window orderFrontRegardless " + shown.title);
        shown.isOnScreen = true;
    }

    Shown shown;
    std::function<void()> onClose;

private:
    VirtualAppWindows& owner_;
    std::unique_ptr<View> content_;
};

std::vector<VirtualAppWindows::Shown> VirtualAppWindows::windows() const {
    std::vector<Shown> windows;
    for (const auto* const window : windows_) {
        windows.push_back(window->shown);
    }
    return windows;
}

bool VirtualAppWindows::isOnScreen(std::string_view title) const {
    return std::ranges::any_of(windows_, [&](const Window* window) {
        return window->shown.title == title && window->shown.isOnScreen;
    });
}

void VirtualAppWindows::close(std::string_view title) {
    const auto found = std::ranges::find(windows_, title, [](const Window* window) {
        return std::string_view(window->shown.title);
    });
    if (found != windows_.end() && std::exchange((*found)->shown.isOnScreen, false)) {
        const auto onClose = (*found)->onClose; // it may destroy the window
        onClose();
    }
}

std::unique_ptr<AppWindow> VirtualAppWindows::makeWindow(const Style& style,
                                                         std::unique_ptr<View> content,
                                                         std::function<void()> onClose) {
    return std::make_unique<Window>(*this, style, std::move(content), std::move(onClose));
}

} // namespace nocta
