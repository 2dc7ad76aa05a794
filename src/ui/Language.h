#pragma once

#include <QLocale>
#include <QTranslator>

namespace nocta {

/// Installs the texts of a language, the program's own and the toolkit's, while it lives. A text
/// without a translation is shown in English.
class Language {
public:
    explicit Language(const QLocale& locale = QLocale());
    Language(const Language&) = delete;
    Language& operator=(const Language&) = delete;
    ~Language();

private:
    QTranslator english_; ///< for its plural forms
    QTranslator own_;
    QTranslator toolkit_;
};

} // namespace nocta
