#include "ui/WidgetViews.h"

#include "ui/BreakOverlayView.h"
#include "ui/PopoverContentView.h"
#include "ui/StatusMenu.h"
#include "ui/UpdateView.h"
#include "ui/onboarding/OnboardingView.h"
#include "ui/preferences/PreferencesView.h"

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

std::unique_ptr<View> WidgetViews::makePopoverContentView(std::function<void()> showPreferences) {
    return std::make_unique<WidgetView>(
        std::make_unique<PopoverContentView>(instances_, std::move(showPreferences)));
}

std::unique_ptr<View> WidgetViews::makePreferencesView() {
    return std::make_unique<WidgetView>(std::make_unique<PreferencesView>(instances_));
}

std::unique_ptr<View> WidgetViews::makeOnboardingView(std::function<void()> onComplete) {
    return std::make_unique<WidgetView>(
        std::make_unique<OnboardingView>(instances_, std::move(onComplete)));
}

std::unique_ptr<View> WidgetViews::makeUpdateView() {
    return std::make_unique<WidgetView>(std::make_unique<UpdateView>(instances_.desktop()));
}

std::unique_ptr<View> WidgetViews::makeStatusMenu(std::function<void()> showPreferences) {
    return std::make_unique<WidgetView>(
        std::make_unique<StatusMenu>(instances_, std::move(showPreferences)));
}

std::unique_ptr<View> WidgetViews::makeBreakOverlayView(std::function<void()> onSkip,
                                                        std::function<void()> onSnooze) {
    auto& desktop = instances_.desktop();
    return std::make_unique<WidgetView>(std::make_unique<BreakOverlayView>(
        instances_.breakTimer(), instances_.settingsManager(), desktop.workspace, desktop.runLoop,
        std::move(onSkip), std::move(onSnooze)));
}

} // namespace nocta
