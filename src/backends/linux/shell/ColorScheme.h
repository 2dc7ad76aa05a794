#pragma once

#include "backends/linux/bus/PortalSettings.h"

#include <QObject>

namespace nocta {

/// Makes the windows dark where the user prefers that and the toolkit has not heard of it: it needs
/// a plugin of the desktop to know, and many desktops have none. What the desktop's portal tells
/// decides; until it is known, and where there is no preference, the windows are as the toolkit has
/// them. A palette that is dark by itself is left alone, whenever it comes. It lives as long as the
/// application.
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
