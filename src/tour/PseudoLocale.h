#pragma once

#include <QTranslator>

namespace nocta {

/// A language in which every text is accented, in brackets, and 40 % longer than in English. It
/// shows which texts have no translation, and where a longer language would not fit. It may be
/// written from right to left.
class PseudoLocale final : public QTranslator {
public:
    explicit PseudoLocale(Qt::LayoutDirection direction = Qt::LeftToRight)
        : direction_(direction) {}

    QString translate(const char* context, const char* source, const char* disambiguation,
                      int n) const override;
    bool isEmpty() const override { return false; }

    /// Whether a text is in this language, or contains nothing to translate.
    static bool isTranslated(const QString& text);

private:
    Qt::LayoutDirection direction_;
};

} // namespace nocta
