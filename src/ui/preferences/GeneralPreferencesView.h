#pragma once

#include "app/SharedInstances.h"
#include "ui/controls/FormSection.h"

namespace nocta {

class GeneralPreferencesView final : public FormPage {
public:
    explicit GeneralPreferencesView(SharedInstances& instances);
};

} // namespace nocta
