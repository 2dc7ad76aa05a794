#pragma once

#include <QIcon>

#include <string_view>

namespace nocta {

/// A symbol of the program's own set as an icon for a panel: drawn in the text colour of the
/// desktop's palette, with a thin halo of the opposite lightness, as no panel tells how dark it is.
/// Null for a name that is not in the set.
QIcon symbolIcon(std::string_view symbolName);

} // namespace nocta
