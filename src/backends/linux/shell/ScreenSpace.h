#pragma once

#include "backends/linux/x11/X11Connection.h"

#include <QRect>

class QScreen;

namespace nocta {

/// Returns the part of a screen that panels leave free, in points. Qt itself takes panels into
/// account only if there is one screen: the property that it reads has one rectangle for the whole
/// desktop. `connection` is null without an X server.
QRect spaceOn(const QScreen& screen, X11Connection* connection);

} // namespace nocta
