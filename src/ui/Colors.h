#pragma once

#include <QColor>
#include <QPalette>

namespace nocta {

// The few colors that the user interface adds to the desktop's palette, light or dark.

/// The contrast ratio of two opaque colors, 1 (equal) – 21 (black on white), from the Web Content
/// Accessibility Guidelines 2.1.
double contrastRatio(const QColor& a, const QColor& b);

/// The minimum contrast for text and for shapes in the same guidelines.
inline constexpr double readableContrast = 4.5;
inline constexpr double visibleContrast = 3;

/// Amber for shapes, as bright as possible with a visible contrast to the window.
QColor accentColor(const QPalette& palette);

/// For text on the accent color.
QColor textOnAccent(const QPalette& palette);

/// For less important text and symbols: just strong enough to be readable.
QColor secondaryColor(const QPalette& palette);

/// A mix of the text color (`part`, 0.0–1.0) and the window color, for fills and marks.
QColor shadeColor(const QPalette& palette, double part);

/// For lines between parts of a view.
QColor hairlineColor(const QPalette& palette);

/// For the background of a group on a window.
QColor panelColor(const QPalette& palette);

/// A mix of `over` (`part`, 0.0–1.0) and `under`.
QColor mixed(const QColor& under, const QColor& over, double part);

} // namespace nocta
