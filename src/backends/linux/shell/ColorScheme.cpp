#include "backends/linux/shell/ColorScheme.h"

#include <QApplication>
#include <QColor>
#include <QEvent>
#include <QPalette>
#include <QRgb>

#include <array>
#include <utility>

namespace nocta {

namespace {

const auto appearance = QStringLiteral("org.freedesktop.appearance");
constexpr auto preferDark = 1U;

struct DarkColor {
    QPalette::ColorRole role;
    QRgb enabled;
    QRgb disabled;
};

/// Sets every role, so that no role keeps its color from a light palette. The style derives edges
/// and gradients from these colors, and expects the button color to be halfway between `Light` and
/// `Dark`.
constexpr auto darkColors = std::to_array<DarkColor>({
    {QPalette::Window, 0x2a2a2a, 0x2a2a2a},      {QPalette::WindowText, 0xeeeeee, 0x8c8c8c},
    {QPalette::Base, 0x1f1f1f, 0x272727},        {QPalette::AlternateBase, 0x262626, 0x2a2a2a},
    {QPalette::Text, 0xeeeeee, 0x8c8c8c},        {QPalette::PlaceholderText, 0x9a9a9a, 0x6a6a6a},
    {QPalette::Button, 0x383838, 0x303030},      {QPalette::ButtonText, 0xeeeeee, 0x8c8c8c},
    {QPalette::BrightText, 0xffffff, 0xb0b0b0},  {QPalette::Light, 0x545454, 0x484848},
    {QPalette::Midlight, 0x464646, 0x3c3c3c},    {QPalette::Mid, 0x232323, 0x232323},
    {QPalette::Dark, 0x1a1a1a, 0x1a1a1a},        {QPalette::Shadow, 0x000000, 0x000000},
    {QPalette::Highlight, 0xd98a00, 0x4d4d4d},   {QPalette::HighlightedText, 0x000000, 0xa6a6a6},
    {QPalette::Link, 0xf0b450, 0x8c8c8c},        {QPalette::LinkVisited, 0xc9a878, 0x8c8c8c},
    {QPalette::ToolTipBase, 0x383838, 0x383838}, {QPalette::ToolTipText, 0xeeeeee, 0x8c8c8c},
});

QPalette darkPalette() {
    QPalette palette;
    for (const auto& [role, enabled, disabled] : darkColors) {
        palette.setColor(QPalette::Active, role, QColor(enabled));
        palette.setColor(QPalette::Inactive, role, QColor(enabled));
        palette.setColor(QPalette::Disabled, role, QColor(disabled));
    }
#if QT_VERSION >= QT_VERSION_CHECK(6, 6, 0)
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        palette.setColor(group, QPalette::Accent, palette.color(group, QPalette::Highlight));
    }
#endif
    return palette;
}

bool isLight(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() >
           palette.color(QPalette::WindowText).lightness();
}

} // namespace

ColorScheme::ColorScheme()
    : settings_({appearance}, [this](PortalSettings::Settings settings) {
          const auto scheme = settings[appearance].value(QStringLiteral("color-scheme"));
          const auto isDark = scheme.typeId() == QMetaType::UInt && scheme.toUInt() == preferDark;
          if (std::exchange(isDarkPreferred_, isDark) != isDark) {
              apply();
          }
      }) {
    QCoreApplication::instance()->installEventFilter(this);
}

bool ColorScheme::eventFilter(QObject* watched, QEvent* event) {
    // While our palette is set, Qt does not send a theme change to the application, only to its
    // windows.
    const auto isOfTheme = watched->isWindowType()
                               ? event->type() == QEvent::ThemeChange
                               : event->type() == QEvent::ApplicationPaletteChange &&
                                     watched == QCoreApplication::instance();
    if (isOfTheme && isDarkPreferred_) {
        apply();
    }
    return QObject::eventFilter(watched, event);
}

void ColorScheme::apply() {
    if (std::exchange(isApplying_, true)) {
        return; // this event comes from our own change
    }
    QApplication::setPalette(QPalette()); // the desktop's current palette
    if (isDarkPreferred_ && isLight(QApplication::palette())) {
        QApplication::setPalette(darkPalette());
    }
    isApplying_ = false;
}

} // namespace nocta
