#pragma once

#include "platform/Workspace.h"

#include <QPainter>
#include <QRectF>

namespace nocta {

/// The application that the external display always shows, no matter which application is in front.
extern const RunningApplication colorsApplication;

/// Paints the window of an application other than Nocta: faces for a meeting program, a chart for
/// `colorsApplication`, or else a page of text.
void paintApplicationWindow(QPainter& painter, const QRectF& window,
                            const RunningApplication& application);

} // namespace nocta
