#include "backends/linux/shell/GnomeFont.h"

#include <QApplication>
#include <QFont>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <utility>

namespace nocta {

namespace {

const auto appearance = QStringLiteral("org.gnome.desktop.interface");
constexpr double minSize = 4; // points
constexpr double maxSize = 96;
constexpr double minScale = 0.5;
constexpr double maxScale = 3;

/// Sets the font that a description names, such as "Cantarell Bold 11": a family, words for the
/// style, and a size in points. Our windows choose their weights themselves, so the style is
/// dropped. Ignores a description without a family or a size.
void apply(const QString& description, double scale) {
    static const QStringList styleWords = {
        QStringLiteral("Thin"),    QStringLiteral("Light"),   QStringLiteral("Book"),
        QStringLiteral("Regular"), QStringLiteral("Medium"),  QStringLiteral("Semi-Bold"),
        QStringLiteral("Bold"),    QStringLiteral("Heavy"),   QStringLiteral("Black"),
        QStringLiteral("Italic"),  QStringLiteral("Oblique"), QStringLiteral("Condensed")};
    auto words = description.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    const auto size = words.isEmpty() ? 0.0 : words.takeLast().toDouble();
    while (words.size() > 1 && styleWords.contains(words.constLast())) {
        words.removeLast();
    }
    auto family = words.join(QLatin1Char(' '));
    if (family.endsWith(QLatin1Char(','))) {
        family.chop(1);
    }
    const auto isSize = size >= minSize && size <= maxSize; // not a number is none
    if (family.isEmpty() || !isSize) {
        return;
    }
    QFont font(family);
    font.setPointSizeF(size * (scale > 0 ? std::clamp(scale, minScale, maxScale) : 1));
    if (font != QApplication::font()) {
        QApplication::setFont(font);
    }
}

} // namespace

GnomeFont::GnomeFont()
    : settings_({appearance}, [](PortalSettings::Settings settings) {
          const auto values = std::move(settings[appearance]);
          const auto scale = values.value(QStringLiteral("text-scaling-factor"), 1.0);
          apply(values.value(QStringLiteral("font-name")).toString(), scale.toDouble());
      }) {}

} // namespace nocta
