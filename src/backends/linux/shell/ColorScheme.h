#pragma once

#include "backends/linux/bus/PortalSettings.h"

#include <QObject>

namespace nocta {

/// Makes the windows dark if the user prefers that and Qt does not know it: Qt needs a plugin for
/// the desktop, and many desktops have none. The setting from the desktop's portal decides. Until
/// it is known, and where there is no preference, the windows keep Qt's palette. A palette that is
/// already dark is left alone, whenever it arrives. It lives as long as the application.
class ColorScheme final : public QObject {
public:
    ColorScheme();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void apply();

    bool isDarkPreferred_ = false;
    bool isApplying_ = false;
    PortalSettings settings_;
};

} // namespace nocta
