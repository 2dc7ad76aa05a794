#pragma once

#include <QImage>
#include <QSize>

namespace nocta {

/// A landscape with the colors and the grain of a photograph, the same in every run. The format is
/// RGB32.
QImage paintWallpaper(const QSize& size);

} // namespace nocta
