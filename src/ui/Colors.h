#pragma once

#include <QColor>
#include <QPalette>

namespace nocta {

// The few colours that the face adds to the desktop's palette, light or dark.

/// How well one opaque colour can be told from another: 1 not at all – 21 black on white. From the
/// Web Content Accessibility Guidelines 2.1, "contrast ratio".
double contrastRatio(const QColor& a, const QColor& b);

/// What text needs by the same guidelines, and what a shape needs to be made out.
inline constexpr double readableContrast = 4.5;
inline constexpr double visibleContrast = 3;

/// Amber for shapes, as bright as it can be while they stand out from the window.
QColor accentColor(const QPalette& palette);

/// For text on the accent.
QColor textOnAccent(const QPalette& palette);

/// For text of less weight, and what is as quiet: readable, and no stronger than that.
QColor secondaryColor(const QPalette& palette);

/// So much of the text's color on the window's, 0.0–1.0: for fills and marks between the two.
QColor shadeColor(const QPalette& palette, double part);

/// For lines between things.
QColor hairlineColor(const QPalette& palette);

/// For the background of what belongs together on a window.
QColor panelColor(const QPalette& palette);

/// So much of `over` on `under`, 0.0–1.0.
QColor mixed(const QColor& under, const QColor& over, double part);

} // namespace nocta
