#pragma once

#include <QIcon>
#include <QString>

namespace nocta {

/// Draws one of the program's own symbols as an icon for a panel. No panel reports how dark it is.
/// Most panels are dark even if the windows are light; Plasma's follows the palette. So the symbol
/// is drawn light or, on Plasma, in the palette's text color, with a thin halo of the opposite
/// lightness that keeps it legible if the guess is wrong. The icon is null if no symbol has this
/// name.
QIcon symbolIcon(const QString& symbolName);

} // namespace nocta
