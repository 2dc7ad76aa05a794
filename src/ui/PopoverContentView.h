#pragma once

#include "app/SharedInstances.h"

#include <QVBoxLayout>
#include <QWidget>

#include <functional>

namespace nocta {

/// The content of the popover: the four everyday features, and buttons for everything else. A new
/// view is created each time the popover opens.
class PopoverContentView final : public QWidget {
public:
    PopoverContentView(SharedInstances& instances, std::function<void()> showPreferences);

private:
    void addWarmth(QVBoxLayout& column);
    void addEyeRelief(QVBoxLayout& column);
    void addBreakTimer(QVBoxLayout& column);
    void addFooter(QVBoxLayout& column, std::function<void()> showPreferences);

    SharedInstances& instances_;
    SettingsManager& settings_;
};

} // namespace nocta
