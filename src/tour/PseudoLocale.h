#pragma once

#include <QTranslator>

namespace nocta {

/// A made-up language in which every string has accents and brackets and is 40% longer than in
/// English. It shows which strings cannot be translated, and where longer translations would not
/// fit. Its direction may be right to left.
class PseudoLocale final : public QTranslator {
public:
    explicit PseudoLocale(Qt::LayoutDirection direction = Qt::LeftToRight)
        : direction_(direction) {}

    QString translate(const char* context, const char* source, const char* disambiguation,
                      int n) const override;
    bool isEmpty() const override { return false; }

    /// Returns whether a string is in this language or contains nothing to translate.
    static bool isTranslated(const QString& text);

private:
    Qt::LayoutDirection direction_;
};

} // namespace nocta
