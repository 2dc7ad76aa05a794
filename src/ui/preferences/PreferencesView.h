#pragma once

#include "app/SharedInstances.h"

#include <QWidget>

namespace nocta {

/// The content of the preferences window: a tab for each group of settings.
class PreferencesView final : public QWidget {
public:
    explicit PreferencesView(SharedInstances& instances);
};

} // namespace nocta
