#pragma once

#include <QTranslator>

namespace nocta {

/// A language in which every text is accented, between brackets, and 40 % longer than in English.
/// It shows what has no translation, and what a longer language would not fit into. It may run from
/// the right to the left.
class PseudoLocale final : public QTranslator {
public:
    explicit PseudoLocale(Qt::LayoutDirection direction = Qt::LeftToRight)
        : direction_(direction) {}

    QString translate(const char* context, const char* source, const char* disambiguation,
                      int n) const override;
    bool isEmpty() const override { return false; }

    /// Whether a text is of this language, or has nothing in it to translate.
    static bool isTranslated(const QString& text);

private:
    Qt::LayoutDirection direction_;
};

} // namespace nocta
