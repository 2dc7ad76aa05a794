#pragma once

#include <QImage>
#include <QSize>

namespace nocta {

/// A landscape with the colors and the grain of a photograph, the same at every start. The format
/// is RGB32.
QImage paintWallpaper(const QSize& size);

} // namespace nocta
