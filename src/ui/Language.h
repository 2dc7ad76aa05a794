#pragma once

#include <QLocale>
#include <QTranslator>

namespace nocta {

/// Installs the translations of the program and of the toolkit for a language, and removes them
/// when it is destroyed. A string without a translation is shown in English.
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
