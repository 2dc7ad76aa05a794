#pragma once

#include "app/SharedInstances.h"
#include "platform/Views.h"

namespace nocta {

/// Makes the views as Qt widgets.
class WidgetViews final : public Views {
public:
    explicit WidgetViews(SharedInstances& instances) : instances_(instances) {}

    std::unique_ptr<View> makePopoverContentView() override;

private:
    SharedInstances& instances_;
};

} // namespace nocta
