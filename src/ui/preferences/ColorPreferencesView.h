#pragma once

#include "app/SharedInstances.h"
#include "ui/controls/FormSection.h"

namespace nocta {

class ColorPreferencesView final : public FormPage {
public:
    explicit ColorPreferencesView(SharedInstances& instances);
};

} // namespace nocta
