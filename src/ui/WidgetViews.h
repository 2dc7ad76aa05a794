#pragma once

#include "app/SharedInstances.h"
#include "platform/Views.h"
#include "ui/Language.h"

namespace nocta {

/// Creates the views as Qt widgets, in the user's language.
class WidgetViews final : public Views {
public:
    explicit WidgetViews(SharedInstances& instances) : instances_(instances) {}

    std::unique_ptr<View> makePopoverContentView(std::function<void()> showPreferences) override;
    std::unique_ptr<View> makePreferencesView() override;
    std::unique_ptr<View> makeOnboardingView(std::function<void()> onComplete) override;
    std::unique_ptr<View> makeUpdateView() override;
    std::unique_ptr<View> makeStatusMenu(std::function<void()> showPreferences) override;
    std::unique_ptr<View> makeBreakOverlayView(std::function<void()> onSkip,
                                               std::function<void()> onSnooze) override;

private:
    SharedInstances& instances_;
    Language language_;
};

} // namespace nocta
