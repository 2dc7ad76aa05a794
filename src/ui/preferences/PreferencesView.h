#pragma once

#include "app/SharedInstances.h"

#include <QWidget>

namespace nocta {

/// The content of the preferences window: its tabs, each a form over the settings.
class PreferencesView final : public QWidget {
public:
    explicit PreferencesView(SharedInstances& instances);
};

} // namespace nocta
