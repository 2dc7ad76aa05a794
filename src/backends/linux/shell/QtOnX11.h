#pragma once

#include "platform/Displays.h"

#include <QColor>

#include <functional>

class QObject;
class QWindow;

namespace nocta {

/// Sends the requests that Qt has queued for the X server. Qt itself sends queued requests only
/// when it waits for events. Does nothing without an X server.
void flushQt();

/// Calls `action` once Qt has handled everything that the X server has sent so far, unless
/// `context` is destroyed first. Without an X server, calls `action` immediately.
void afterEventsOfQt(const QObject& context, std::function<void()> action);

/// Places a window that Qt has shown, in pixels; Qt itself can place windows only in whole points.
/// Qt may then leave the last pixel at the right and bottom edges unpainted; the server fills it
/// with `color`. Does nothing without an X server.
void placeByPixels(const QWindow& window, const Rect& pixels, const QColor& color);

} // namespace nocta
