#pragma once

#include <QImage>
#include <QSize>

namespace nocta {

/// Paints a landscape with the colors and the grain of a photograph, which is the same in every
/// run. Returns a picture in the format RGB32.
QImage paintWallpaper(const QSize& size);

} // namespace nocta
