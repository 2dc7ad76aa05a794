#pragma once

#include <QColor>
#include <QPalette>

namespace nocta {

// The few colors that the user interface adds to the desktop's palette, light or dark.

/// Returns the contrast ratio of two opaque colors, from 1 (equal) to 21 (black on white), as
/// defined by the Web Content Accessibility Guidelines 2.1.
double contrastRatio(const QColor& a, const QColor& b);

/// The minimum contrasts for text and for shapes according to these guidelines.
inline constexpr double readableContrast = 4.5;
inline constexpr double visibleContrast = 3;

/// An amber for shapes, as bright as possible while still visible against the window.
QColor accentColor(const QPalette& palette);

/// A color for text on the accent color.
QColor textOnAccent(const QPalette& palette);

/// A color for less important text and symbols, with just enough contrast to be readable.
QColor secondaryColor(const QPalette& palette);

/// A color for the edges of controls, with just enough contrast to be visible.
QColor edgeColor(const QPalette& palette);

/// A mix of the text color and the window color, for fills and marks. `part` is the fraction of the
/// text color (0.0–1.0).
QColor shadeColor(const QPalette& palette, double part);

/// A color for lines between the parts of a view.
QColor hairlineColor(const QPalette& palette);

/// A color for the background of a group in a window.
QColor panelColor(const QPalette& palette);

/// Mixes two colors. `part` is the fraction of `over` (0.0–1.0).
QColor mixed(const QColor& under, const QColor& over, double part);

} // namespace nocta
