#pragma once

#include <QIcon>
#include <QString>

namespace nocta {

/// A symbol of the program's own set as an icon for a panel. No panel tells how dark it is: most
/// are dark whatever the windows are, Plasma's follow the palette. So the symbol is drawn light or,
/// on Plasma, in the palette's text colour, with a thin halo of the opposite lightness that keeps
/// it legible where that is wrong. Null for a name that is not in the set.
QIcon symbolIcon(const QString& symbolName);

} // namespace nocta
