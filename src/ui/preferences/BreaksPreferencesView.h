#pragma once

#include "app/SharedInstances.h"
#include "ui/controls/FormSection.h"

namespace nocta {

class BreaksPreferencesView final : public FormPage {
public:
    explicit BreaksPreferencesView(SharedInstances& instances);
};

} // namespace nocta
