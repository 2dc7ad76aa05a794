#include "backends/virtual/VirtualOverlayWindows.h"

#include "base/AlphaFade.h"

#include <algorithm>
#include <utility>

namespace nocta {

class VirtualOverlayWindows::Window final : public OverlayWindow {
public:
    Window(VirtualOverlayWindows& owner, const Screen& screen, const Style& style,
           std::unique_ptr<View> content)
        : shown{.screen = screen, .style = style, .content = content.get()}, owner_(owner),
          content_(std::move(content)) {
        owner_.windows_.push_back(this);
    }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    ~Window() override {
        orderOut();
        owner_.windows_.remove(this);
    }

    void makeKeyAndOrderFront() override {
        record("makeKeyAndOrderFront");
        shown.isOnScreen = true;
        if (!owner_.shownSince_) {
            owner_.shownSince_ = owner_.runLoop_.monotonicNow();
        }
        owner_.keyScreen = shown.screen.id;
    }
    void orderOut() override {
        if (std::exchange(shown.isOnScreen, false)) {
            record("orderOut");
            if (owner_.keyScreen == shown.screen.id) {
                owner_.keyScreen.reset();
            }
            if (std::ranges::none_of(owner_.windows_, [](const Window* window) {
                    return window->shown.isOnScreen;
                })) {
                owner_.shownSince_.reset();
            }
        }
    }
    void animateAlpha(double target, Duration duration, TimingFunction curve,
                      std::function<void()> completion) override {
        record(target == 0 ? "fade out" : "fade in");
        fade_.start(
            owner_.runLoop_, {.from = shown.alpha, .to = target}, duration, curve,
            [this](double alpha) { shown.alpha = alpha; }, std::move(completion));
    }

    Shown shown;

private:
    void record(const std::string& what) {
        owner_.trace_.record("overlay " + std::to_string(shown.screen.id) + " " + what);
    }

    VirtualOverlayWindows& owner_;
    std::unique_ptr<View> content_;
    AlphaFade fade_;
};

std::vector<VirtualOverlayWindows::Shown> VirtualOverlayWindows::windows() const {
    std::vector<Shown> shown;
    for (const auto* const window : windows_) {
        shown.push_back(window->shown);
    }
    return shown;
}

bool VirtualOverlayWindows::press(std::int64_t keyCode) {
    typing_.press(runLoop_.monotonicNow());
    if (shownSince_ && typing_.isFromBefore(*shownSince_)) {
        return false;
    }
    bool isSwallowed = false;
    monitors_.call({.event = {keyCode}, .isSwallowed = &isSwallowed});
    return !isSwallowed;
}

std::vector<Screen> VirtualOverlayWindows::screens() {
    std::vector<Screen> screens;
    for (const auto& display : displays_.all()) {
        screens.push_back({.id = display.id, .frame = display.bounds});
    }
    return screens;
}

std::unique_ptr<OverlayWindow> VirtualOverlayWindows::makeWindow(const Screen& screen,
                                                                 const Style& style,
                                                                 std::unique_ptr<View> content) {
    return std::make_unique<Window>(*this, screen, style, std::move(content));
}

Subscription
VirtualOverlayWindows::addLocalMonitorForKeyDown(std::function<bool(const KeyDownEvent&)> handler) {
    return monitors_.add([handler = std::move(handler)](const Press& press) {
        if (!*press.isSwallowed) {
            *press.isSwallowed = handler(press.event);
        }
    });
}

} // namespace nocta
