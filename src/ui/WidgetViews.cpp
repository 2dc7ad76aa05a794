#include "ui/WidgetViews.h"

#include "ui/BreakOverlayView.h"
#include "ui/PopoverContentView.h"

#include <utility>

namespace nocta {

namespace {

class WidgetView final : public View {
public:
    explicit WidgetView(std::unique_ptr<QWidget> widget) : widget_(std::move(widget)) {}

    void* nativeView() override { return widget_.get(); }

private:
    std::unique_ptr<QWidget> widget_;
};

} // namespace

std::unique_ptr<View> WidgetViews::makePopoverContentView() {
    auto& application = instances_.desktop().application;
    return std::make_unique<WidgetView>(std::make_unique<PopoverContentView>(
        instances_.settingsManager(), [&application] { application.terminate(); }));
}

std::unique_ptr<View> WidgetViews::makeBreakOverlayView(std::function<void()> onSkip,
                                                        std::function<void()> onSnooze) {
    auto& desktop = instances_.desktop();
    return std::make_unique<WidgetView>(std::make_unique<BreakOverlayView>(
        instances_.breakTimer(), instances_.settingsManager(), desktop.workspace, desktop.runLoop,
        std::move(onSkip), std::move(onSnooze)));
}

} // namespace nocta
