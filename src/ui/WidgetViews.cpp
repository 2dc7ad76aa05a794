#include "ui/WidgetViews.h"

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

} // namespace nocta
