#pragma once

#include "app/SharedInstances.h"
#include "ui/controls/FormSection.h"

namespace nocta {

class BrightnessPreferencesView final : public FormPage {
public:
    explicit BrightnessPreferencesView(SharedInstances& instances);
};

} // namespace nocta
