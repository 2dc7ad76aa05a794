#pragma once

#include "platform/Displays.h"

#include <QColor>

class QWindow;

namespace nocta {

/// Sends what Qt has asked the X server for so far; Qt itself does so only when it waits for
/// events. Without an X server, nothing.
void flushQt();

/// Places a window that Qt has shown by pixels; Qt itself can place it by whole points alone. At
/// the right and at the bottom Qt may then paint a pixel less than there is: the server fills that
/// with `color`. Without an X server, nothing.
void placeByPixels(const QWindow& window, const Rect& pixels, const QColor& color);

} // namespace nocta
