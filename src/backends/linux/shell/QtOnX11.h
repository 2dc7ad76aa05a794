#pragma once

#include "platform/Displays.h"

#include <QColor>

#include <functional>

class QObject;
class QWindow;

namespace nocta {

/// Sends the requests that Qt has queued for the X server; Qt itself sends them only when it waits
/// for events. Does nothing without an X server.
void flushQt();

/// Calls `action` once Qt has handled all that the X server has sent to it so far, unless `context`
/// is destroyed first. Calls it immediately without an X server.
void afterEventsOfQt(const QObject& context, std::function<void()> action);

/// Places a window that Qt has shown, in pixels; Qt itself can only place it in whole points. Qt
/// may then leave the last pixel at the right and bottom edges unpainted; the server fills it with
/// `color`. Does nothing without an X server.
void placeByPixels(const QWindow& window, const Rect& pixels, const QColor& color);

} // namespace nocta
