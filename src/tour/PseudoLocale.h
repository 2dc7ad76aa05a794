#pragma once

#include <QTranslator>

namespace nocta {

/// A language in which every text is accented, between brackets, and 40 % longer than in English.
/// It shows what has no translation, and what a longer language would not fit into.
class PseudoLocale final : public QTranslator {
public:
    QString translate(const char* context, const char* source, const char* disambiguation,
                      int n) const override;
    bool isEmpty() const override { return false; }

    /// Whether a text is of this language, or has nothing in it to translate.
    static bool isTranslated(const QString& text);
};

} // namespace nocta
