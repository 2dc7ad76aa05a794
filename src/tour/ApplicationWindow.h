#pragma once

#include "platform/Workspace.h"

#include <QPainter>
#include <QRectF>

namespace nocta {

/// What the external display shows, whatever is in front.
extern const RunningApplication colorsApplication;

/// The window of an application that is not Nocta: faces where it is for meetings, a chart where it
/// is that of the colors, else a text to be read.
void paintApplicationWindow(QPainter& painter, const QRectF& window,
                            const RunningApplication& application);

} // namespace nocta
