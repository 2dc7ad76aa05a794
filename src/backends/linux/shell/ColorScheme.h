#pragma once

#include "backends/linux/bus/PortalSettings.h"

#include <QObject>

namespace nocta {

/// Makes the windows dark if the user prefers that and Qt does not detect it: Qt needs a plugin for
/// the desktop, and many desktops have no plugin. The preference comes from the desktop's portal.
/// Until the preference is known, or if the user has no preference, the windows keep Qt's palette.
/// If Qt's palette is dark or becomes dark, this class does not change it. This object lives as
/// long as the application.
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
