#include "tour/PseudoLocale.h"

#include <algorithm>
#include <cmath>

namespace nocta {

namespace {

constexpr double growth = 0.4;

const auto plain = QStringLiteral("AEIOUYaceinosuyz");
const auto accented = QStringLiteral("ÅÉÎÖÛÝåçéîñöšûýž");
const auto rightToLeftMark = QChar(0x200F);
const auto opening = QLatin1Char('[');
const auto closing = QLatin1Char(']');

QChar accentedOf(QChar character) {
    const auto index = plain.indexOf(character);
    return index < 0 ? character : accented.at(index);
}

} // namespace

QString PseudoLocale::translate(const char* context, const char* source,
                                const char* /*disambiguation*/, int /*n*/) const {
    if (qstrcmp(context, "Nocta") != 0) {
        return {};
    }
    const auto english = QString::fromUtf8(source);
    QString text;
    if (direction_ == Qt::RightToLeft) {
        text += rightToLeftMark;
    }
    text += opening;
    for (qsizetype i = 0; i < english.size(); ++i) {
        if (english[i] == QLatin1Char('%') && i + 1 < english.size()) { // a placeholder
            text += english[i++];
            text += english[i];
        } else {
            text += accentedOf(english[i]);
        }
    }
    const auto more =
        static_cast<qsizetype>(std::ceil(growth * static_cast<double>(english.size())));
    return text + QStringLiteral(" öñé").repeated(more / 4 + 1).left(more) + closing;
}

bool PseudoLocale::isTranslated(const QString& text) {
    return (text.startsWith(opening) && text.endsWith(closing)) ||
           std::ranges::none_of(text, [](QChar character) { return character.isLetter(); });
}

} // namespace nocta
