#include "backends/linux/shell/ScreenSpace.h"

#include "backends/linux/x11/PanelStruts.h"

#include <QScreen>
#include <QtMath>

namespace nocta {

QRect spaceOn(const QScreen& screen, X11Connection* connection) {
    if (connection == nullptr || screen.virtualSiblings().size() == 1) {
        return screen.availableGeometry();
    }
    // Qt reports the origin of a screen in pixels, but its size in points.
    const auto points = screen.geometry();
    const auto scale = screen.devicePixelRatio();
    const auto pixels = withoutPanels(
        *connection, {static_cast<double>(points.x()), static_cast<double>(points.y()),
                      points.width() * scale, points.height() * scale});
    const auto x = [&](double pixel) { return points.x() + (pixel - points.x()) / scale; };
    const auto y = [&](double pixel) { return points.y() + (pixel - points.y()) / scale; };
    return {
        QPoint(qCeil(x(pixels.x)), qCeil(y(pixels.y))),
        QPoint(qFloor(x(pixels.x + pixels.width)) - 1, qFloor(y(pixels.y + pixels.height)) - 1)};
}

} // namespace nocta
