#include "ui/Language.h"

#include <QCoreApplication>
#include <QLibraryInfo>

namespace nocta {

namespace {

void install(QTranslator& translator, const QLocale& locale, const QString& name,
             const QString& folder) {
    if (translator.load(locale, name, QStringLiteral("_"), folder)) {
        QCoreApplication::installTranslator(&translator);
    }
}

} // namespace

Language::Language(const QLocale& locale) {
    install(toolkit_, locale, QStringLiteral("qtbase"),
            QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    for (auto* const translator : {&english_, &own_}) { // the last one is asked first
        install(*translator, translator == &own_ ? locale : QLocale(QLocale::English),
                QStringLiteral("nocta"), QStringLiteral(":/translations"));
    }
}

Language::~Language() {
    QCoreApplication::removeTranslator(&own_);
    QCoreApplication::removeTranslator(&english_);
    QCoreApplication::removeTranslator(&toolkit_);
}

} // namespace nocta
